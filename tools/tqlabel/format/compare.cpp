#include "format/compare.h"

#include <algorithm>
#include <array>
#include <deque>
#include <unordered_map>

namespace tq::tool {
namespace {

std::string_view bytes_of(const Item* item) {
  if (item == nullptr || item->element.start == nullptr) return {};
  return characters_of(item->bytes());
}

// The fields by which an entry is recognised when others have changed; none for an entry that is
// always as it was written.
struct Identity {
  std::string_view list;
  std::string_view record;                 // within the entry
  std::array<std::string_view, 2> fields;  // the second may be empty
};
constexpr Identity kIdentities[] = {
    {"envelopes", {}, {"issuer", "serial"}}, {"bodyEnvelopes", "envelope", {"issuer", "serial"}},
    {"extends", {}, {"extendType"}},         {"extPriList", {}, {"priType"}},
    {"multiSign", {}, {"certificate"}},      {"fingerPrintList", {}, {"actionSubject"}},
};

std::string identity_of(std::string_view list, const Item& entry) {
  const auto* row = std::ranges::find(kIdentities, list, &Identity::list);
  if (row == std::end(kIdentities)) return std::string(bytes_of(&entry));
  const Item* record = row->record.empty() ? &entry : entry.find(row->record);
  std::string identity;
  for (const std::string_view field : row->fields) {
    identity += bytes_of(record == nullptr ? nullptr : record->find(field));
  }
  return identity;
}

bool are_equal(const Item& before, const Item& after) {
  if (before.kind == Kind::kValues || after.kind == Kind::kValues) {
    return std::ranges::equal(before.children, after.children, are_equal);
  }
  if (before.element.start == nullptr || after.element.start == nullptr) {
    return before.element.start == after.element.start;
  }
  return std::ranges::equal(before.bytes(), after.bytes());
}

class Comparison {
 public:
  void compare(const std::string& path, const Item& before, const Item& after) {
    if (are_equal(before, after)) return;
    if (before.kind == Kind::kRecord && after.kind == Kind::kRecord) {
      records(path, before, after);
    } else if (before.kind == Kind::kList || after.kind == Kind::kList) {
      lists(path, before, after);
    } else {
      changes_.push_back({path, &before, &after});
    }
  }
  std::vector<Change> take() { return std::move(changes_); }

 private:
  void records(const std::string& path, const Item& before, const Item& after) {
    for (const Item& child : before.children) {
      if (child.kind == Kind::kIgnored) continue;
      const Item* same = after.find(child.name);
      const std::string at = child_path(path, child, 0);
      same == nullptr ? changes_.push_back({at, &child, nullptr}) : compare(at, child, *same);
    }
    for (const Item& child : after.children) {
      if (child.kind == Kind::kIgnored || before.find(child.name) != nullptr) continue;
      changes_.push_back({child_path(path, child, 0), nullptr, &child});
    }
    ignored(path, before, after);
  }

  // What stands behind the last known element has no names: it is compared by its place.
  void ignored(const std::string& path, const Item& before, const Item& after) {
    const auto first_of = [](const Item& record) {
      return std::ranges::find(record.children, Kind::kIgnored, &Item::kind);
    };
    auto left = first_of(before);
    auto right = first_of(after);
    while (left != before.children.end() || right != after.children.end()) {
      const Item* gone = left == before.children.end() ? nullptr : &*left++;
      const Item* come = right == after.children.end() ? nullptr : &*right++;
      if (gone != nullptr && come != nullptr && are_equal(*gone, *come)) continue;
      changes_.push_back({path + ".ignored", gone, come});
    }
  }

  void lists(const std::string& path, const Item& before, const Item& after) {
    const std::size_t known = changes_.size();
    std::unordered_map<std::string, std::deque<std::size_t>> places;
    for (std::size_t i = 0; i < before.children.size(); ++i) {
      places[identity_of(before.name, before.children[i])].push_back(i);
    }
    std::vector<bool> kept(before.children.size());
    for (std::size_t i = 0; i < after.children.size(); ++i) {
      const Item& entry = after.children[i];
      const std::string at = child_path(path, entry, i);
      const auto found = places.find(identity_of(after.name, entry));
      if (found == places.end() || found->second.empty()) {
        changes_.push_back({at, nullptr, &entry});
        continue;
      }
      kept[found->second.front()] = true;
      compare(at, before.children[found->second.front()], entry);
      found->second.pop_front();
    }
    for (std::size_t i = 0; i < before.children.size(); ++i) {
      const Item& entry = before.children[i];
      if (!kept[i]) changes_.push_back({child_path(path, entry, i), &entry, nullptr});
    }
    if (changes_.size() == known) changes_.push_back({path, &before, &after});
  }

  std::vector<Change> changes_;
};

}  // namespace

std::vector<Change> compare(const Item& before, const Item& after) {
  Comparison comparison;
  comparison.compare({}, before, after);
  return comparison.take();
}

}  // namespace tq::tool
