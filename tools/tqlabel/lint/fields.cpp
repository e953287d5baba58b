// What fields of a label say together.

#include <fmt/format.h>

#include <set>

#include "format/values.h"
#include "lint/rules.h"

namespace tq::tool {
namespace {

std::uint64_t seconds_at(const std::optional<Place>& time) { return time ? (*time)->seconds() : 0; }

struct Order {
  std::string_view earlier;
  std::string_view later;
  const char* why;
};

constexpr Order kOrders[] = {
    {"head.createTime", "head.modifyTime", "the label was changed before it was made"},
    {"body.fileCreator.creatorTime", "body.content.modifyTime",
     "the file was changed before it was made"},
    {"body.fileCreator.creatorTime", "body.content.expiryTime",
     "the file expires before it was made"},
    {"body.fileCreator.creatorTime", "body.content.abolishTime",
     "the file was abolished before it was made"},
    {"body.content.expiryTime", "body.content.destroyTime",
     "the file is to be destroyed before it expires"},
    {"body.content.abolishTime", "body.content.destroyTime",
     "the file is to be destroyed before it is abolished"},
};

void dates(const Label& label, Findings& out) {
  for (const Order& order : kOrders) {
    const std::uint64_t earlier = seconds_at(place_at(label, order.earlier));
    const std::optional<Place> later = place_at(label, order.later);
    const std::uint64_t seconds = seconds_at(later);
    if (earlier == 0 || seconds == 0 || earlier <= seconds) continue;
    out.add(Code::kDates, *later,
            fmt::format("{}: {} is before {}", order.why, show_time(seconds), show_time(earlier)));
  }
}

// Position 0 is the newest.
void log_order(const Label& label, Findings& out) {
  std::uint64_t newer = der::kLastTime;
  for_entries(label, "body.logs", [&](const Place& log) {
    const std::optional<Place> time = Place{log.path + ".logTime", log->find("logTime")};
    const std::uint64_t seconds = seconds_at(time);
    if (seconds > newer) out.add(Code::kDates, *time, "newer than the log in front of it");
    if (seconds != 0) newer = seconds;
  });
}

void cipher(const Label& label, Findings& out) {
  const Place algorithm = *place_at(label, "head.encryptHead.algorithm");
  const bool named = !algorithm->content().empty();
  if (named && !label.sealed) {
    out.add(Code::kCipherWithoutSeal, algorithm, "a cipher is named, but the body is in the clear");
  }
  if (label.sealed && !named) {
    out.add(Code::kSealWithoutCipher, algorithm, "no cipher is named, but the body is encrypted");
  }
}

void sealed_body(const Label& label, Findings& out) {
  constexpr std::size_t kShortest = 128;
  const std::size_t size = label.body().content().size();
  if (!label.sealed || size >= kShortest) return;
  out.add(Code::kShortSealedBody, {"body", &label.body()},
          fmt::format("{}, which are handed out as none", show_size(size)));
}

void padding(const Label& label, Findings& out) {
  const std::optional<Place> place = place_at(label, "padding");
  if (!place) return;
  const Bytes bytes = (*place)->content();
  const auto first = std::ranges::find_if(bytes, [](der::Octet octet) { return octet != 0; });
  if (first == bytes.end()) return;
  out.add(Code::kPadding, *place, &*first, fmt::format("the padding has 0x{:02X} here", *first));
}

void hidden_extensions(const Label& label, Findings& out) {
  std::set<std::uint32_t> types;
  for_entries(label, "body.extends", [&](const Place& entry) {
    const std::uint32_t type = entry->find("extendType")->integer();
    if (types.insert(type).second) return;
    out.add(Code::kHiddenExtension, entry,
            fmt::format("behind another one of type {}, which is found in its place", type));
  });
}

void signers(const Label& label, Findings& out) {
  const Bytes head = (*place_at(label, "head.headSign.algorithm"))->content();
  std::set<std::string_view> certificates;
  for_entries(label, "body.multiSign", [&](const Place& sign) {
    const Bytes algorithm = sign->find("algorithm")->content();
    if (algorithm.empty()) return;
    if (!std::ranges::equal(algorithm, head)) {
      out.add(Code::kSignerAlgorithm, sign,
              fmt::format("by {}, handed out as by {}", show_object_id(algorithm),
                          show_object_id(head)));
    }
    if (!certificates.insert(key_of(sign->find("certificate")->bytes())).second) {
      out.add(Code::kSignerTwice, sign, "this certificate has signed before");
    }
  });
}

constexpr void (*kRules[])(const Label&, Findings&) = {
    dates, log_order, cipher, sealed_body, padding, hidden_extensions, signers};

}  // namespace

void check_fields(const Label& label, Findings& out) {
  for (const auto rule : kRules) rule(label, out);
}

}  // namespace tq::tool
