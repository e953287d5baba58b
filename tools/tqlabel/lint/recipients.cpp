// Which envelope a lookup finds: the first whose serial number is the one that is asked for and
// whose issuer has every attribute that is asked for, of whatever string type.

#include <fmt/format.h>

#include <set>

#include "format/values.h"
#include "lint/rules.h"

namespace tq::tool {
namespace {

// Among the issuers of one serial number each is compared with each, hence the limit.
constexpr std::size_t kMostIssuers = 64;

// A set of attributes; each has a number that stands for type and value.
using Issuer = std::vector<std::size_t>;

bool is_within(const Issuer& part, const Issuer& whole) {
  return part.size() <= whole.size() && std::ranges::all_of(part, [&](std::size_t attribute) {
           return std::ranges::binary_search(whole, attribute);
         });
}

class Attributes {
 public:
  Issuer issuer(const Item& name) {
    std::set<std::size_t> numbers;
    for (const Item& item : name.children) {
      const Attribute parts = attribute_of(item);
      numbers.insert(
          numbers_.try_emplace({key_of(parts.type), key_of(parts.value)}, numbers_.size())
              .first->second);
    }
    return {numbers.begin(), numbers.end()};
  }

 private:
  std::map<std::pair<std::string_view, std::string_view>, std::size_t> numbers_;
};

struct Recipient {
  Place place;
  Issuer issuer;
};

// The envelopes of one serial number: the first of each issuer.
struct Group {
  std::map<Issuer, std::string> first;  // to its path
  std::vector<Recipient> compared;

  [[nodiscard]] bool finds(const Issuer& issuer) const {
    return first.contains(issuer) || first.size() > kMostIssuers ||
           std::ranges::any_of(
               compared, [&](const Recipient& other) { return is_within(issuer, other.issuer); });
  }
};

using Groups = std::map<std::string_view, Group>;

const Item& envelope_of(const Item& entry) {
  const Item* inner = entry.find("envelope");
  return inner == nullptr ? entry : *inner;
}

class Recipients {
 public:
  Recipients(const Label& label, std::string_view list, Attributes& attributes, Findings& out) {
    for_entries(label, list, [&](const Place& place) {
      const Item& envelope = envelope_of(*place);
      add(place, key_of(envelope.find("serial")->content()),
          attributes.issuer(*envelope.find("issuer")), out);
    });
    for (const auto& [serial, group] : groups_) compare(group, out);
  }

  // Those who have no envelope in the other list.
  template <class Function>
  void without(const Recipients& other, Function function) const {
    for (const auto& [serial, recipient] : all_) {
      const auto group = other.groups_.find(serial);
      if (group == other.groups_.end() || !group->second.finds(recipient.issuer)) {
        function(recipient.place);
      }
    }
  }

 private:
  void add(const Place& place, std::string_view serial, Issuer issuer, Findings& out) {
    Group& group = groups_[serial];
    const auto [first, is_new] = group.first.try_emplace(issuer, place.path);
    if (!is_new) {
      out.add(Code::kHiddenRecipient, place, "never found: same recipient as " + first->second);
      return;
    }
    if (group.compared.size() < kMostIssuers) group.compared.push_back({place, issuer});
    all_.emplace_back(serial, Recipient{place, std::move(issuer)});
  }

  static void compare(const Group& group, Findings& out) {
    for (const Recipient& recipient : group.compared) {
      const auto other = std::ranges::find_if(group.compared, [&](const Recipient& candidate) {
        return &candidate != &recipient && is_within(recipient.issuer, candidate.issuer);
      });
      if (other == group.compared.end()) continue;
      const bool now = other->place->element.start < recipient.place->element.start;
      out.add(Code::kAmbiguousRecipient, recipient.place,
              fmt::format("its recipient is given that of {}{}", other->place.path,
                          now ? "" : " once this one is gone"));
    }
  }

  Groups groups_;
  std::vector<std::pair<std::string_view, Recipient>> all_;
};

}  // namespace

void check_recipients(const Label& label, Findings& out) {
  constexpr std::string_view kHead = "head.encryptHead.envelopes";
  constexpr std::string_view kBody = "body.bodyEnvelopes";
  if (label.layout.v60) {
    for (const std::string_view path : {kHead, kBody}) {
      const std::optional<Place> list = place_at(label, path);
      if (!list || (*list)->children.empty()) continue;
      out.add(Code::kOutOfReach, *list, "no function finds an envelope by recipient in \"6.0\"");
    }
    return;
  }
  Attributes attributes;
  const Recipients head(label, kHead, attributes, out);
  if (label.sealed) return;
  const Recipients body(label, kBody, attributes, out);
  body.without(head, [&](const Place& place) {
    out.add(Code::kBodyOnly, place, "its recipient has no envelope in the head");
  });
  head.without(body, [&](const Place& place) {
    out.add(Code::kHeadOnly, place, "its recipient has no envelope in the body");
  });
}

}  // namespace tq::tool
