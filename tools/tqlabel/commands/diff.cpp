// Compares two labels.

#include <fmt/color.h>

#include <memory>
#include <set>

#include "base/files.h"
#include "commands/program.h"
#include "format/compare.h"
#include "format/handle.h"
#include "format/json.h"
#include "format/print.h"
#include "sealed/edit.h"

namespace tq::tool {
namespace {

enum class Verdict { kHolds, kBroken, kReplaced, kUnknown };

const char* name_of(Verdict verdict) {
  constexpr const char* kNames[] = {"still holds", "broken", "replaced", "cannot be told"};
  return kNames[static_cast<int>(verdict)];
}

// What the signer of the head has signed, or nothing where the library does not write it again.
std::vector<std::uint8_t> head_message(const Label& label) {
  const LabelOwner decoded = label.sealed ? nullptr : decode_label(label.file);
  std::uint32_t length = 0;
  if (!decoded || GetSignatureMessage(decoded.get(), nullptr, &length) != 0) return {};
  std::vector<std::uint8_t> message(length);
  if (GetSignatureMessage(decoded.get(), message.data(), &length) != 0) return {};
  return message;
}

const Item& head_signature(const Label& label) { return *label.head().find("headSign"); }

Verdict head_verdict(const Label& before, const Label& after) {
  if (!std::ranges::equal(head_signature(before).bytes(), head_signature(after).bytes())) {
    return Verdict::kReplaced;
  }
  const std::vector<std::uint8_t> signed_before = head_message(before);
  const std::vector<std::uint8_t> signed_after = head_message(after);
  if (signed_before.empty() || signed_after.empty()) return Verdict::kUnknown;
  return signed_before == signed_after ? Verdict::kHolds : Verdict::kBroken;
}

// Each signer of a body signs the signatures before his own, so one that was changed breaks those
// behind it.
std::vector<Verdict> body_verdicts(const Label& before, const Label& after) {
  const Item* was = before.body().find("multiSign");
  const Item* now = after.body().find("multiSign");
  if (was == nullptr || now == nullptr) return {};
  std::set<std::string_view> known;
  for (const Item& signature : was->children) known.insert(characters_of(signature.bytes()));
  std::vector<Verdict> verdicts;
  bool same = true;
  for (std::size_t i = 0; i < now->children.size(); ++i) {
    const std::string_view signature = characters_of(now->children[i].bytes());
    same = same && i < was->children.size() && signature == characters_of(was->children[i].bytes());
    const Verdict otherwise = known.contains(signature) ? Verdict::kBroken : Verdict::kReplaced;
    verdicts.push_back(same ? Verdict::kHolds : otherwise);
  }
  return verdicts;
}

const char* describe(const Change& change) {
  if (change.before == nullptr) return "added";
  return change.after == nullptr ? "removed" : "changed";
}

// A record in one line.
std::string show(const Item& item) {
  if (item.kind != Kind::kRecord) return show_value(item);
  std::string text;
  for (const Item& child : item.children) {
    if (!text.empty()) text += ", ";
    const std::string value = show(child);
    text += child.kind == Kind::kRecord ? value : fmt::format("{} {}", child.name, value);
  }
  return text;
}

fmt::text_style style_of(const Change& change, bool colored) {
  if (!colored) return {};
  return fmt::fg(change.before == nullptr ? fmt::terminal_color::green : fmt::terminal_color::red);
}

void print_change(const Change& change, bool colored) {
  if (change.before != nullptr && change.after != nullptr) {
    fmt::print("{}: {} -> {}\n", change.path, show(*change.before), show(*change.after));
  } else {
    const Item& item = change.before != nullptr ? *change.before : *change.after;
    fmt::print("{} {}: {}\n", change.path, fmt::styled(describe(change), style_of(change, colored)),
               show(item));
  }
}

Json change_json(const Change& change) {
  const auto value = [](const Item* item) { return item == nullptr ? Json() : to_json(*item); };
  return {{"path", change.path},
          {"change", describe(change)},
          {"before", value(change.before)},
          {"after", value(change.after)}};
}

void print_json(const std::vector<Change>& changes, Verdict head,
                const std::vector<Verdict>& bodies) {
  Json list = Json::array();
  for (const Change& change : changes) list.push_back(change_json(change));
  Json body_signatures = Json::array();
  for (const Verdict body : bodies) body_signatures.push_back(name_of(body));
  const Json json = {{"form", "tqlabel/diff/1"},
                     {"changes", std::move(list)},
                     {"headSignature", name_of(head)},
                     {"bodySignatures", std::move(body_signatures)}};
  fmt::print("{}\n", json.dump(2));
}

void print_text(const std::vector<Change>& changes, Verdict head,
                const std::vector<Verdict>& bodies, bool colored) {
  for (const Change& change : changes) print_change(change, colored);
  if (changes.empty()) return;
  fmt::print("head signature: {}\n", name_of(head));
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    fmt::print("body signature {}: {}\n", i + 1, name_of(bodies[i]));
  }
}

Status diff(const Program& program, const std::string& left, const std::string& right) {
  const LabelFile read_left = read_settled_label(left);
  const LabelFile read_right = read_settled_label(right);
  const Label before = label_in(read_left.bytes, left);
  const Label after = label_in(read_right.bytes, right);
  const std::vector<Change> changes = compare(before.root, after.root);
  const Verdict head = head_verdict(before, after);
  const std::vector<Verdict> bodies = body_verdicts(before, after);
  if (program.json) {
    print_json(changes, head, bodies);
  } else {
    print_text(changes, head, bodies, is_colored(program.color, stdout));
  }
  return changes.empty() ? Status::kYes : Status::kNo;
}

}  // namespace

void add_diff(Program& program) {
  CLI::App* command = add_command(program, "diff", "Tell what differs between two labels",
                                  "tqlabel diff before.label after.label");
  auto paths = std::make_shared<std::pair<std::string, std::string>>();
  command->add_option("A", paths->first, "a label")->required();
  command->add_option("B", paths->second, "what became of it")->required();
  on_chosen(program, *command,
            [&program, paths] { return diff(program, paths->first, paths->second); });
}

}  // namespace tq::tool
