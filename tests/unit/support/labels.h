#ifndef TQ_TESTS_SUPPORT_LABELS_H
#define TQ_TESTS_SUPPORT_LABELS_H

// Labels of every version, and calls of encoders and decoders with bytes instead of nodes.

#include <cstring>
#include <optional>

#include "core/entry/label.h"
#include "unit/support/fill.h"

namespace tq::test {

struct Version {
  std::string_view text;
  std::uint8_t sub_version;
};

inline constexpr Version k60 = {"6.0", 0};
inline constexpr Version k11 = {"1.1", 0};
inline constexpr Version k111 = {"1.1.1", '1'};
inline constexpr Version k112 = {"1.1.2", '2'};
inline constexpr Version kVersions[] = {k60, k11, k111, k112};

// Fields that borrow their bytes.
inline ANYBUF field(std::string_view text, std::uint32_t type = der::kPrintableString) {
  return view_of(text.data(), static_cast<std::uint32_t>(text.size()), type);
}
inline ANYBUF field(const Bytes& bytes, std::uint32_t type = der::kOctetString) {
  return view_of(bytes.data(), static_cast<std::uint32_t>(bytes.size()), type);
}
void field(Bytes&& bytes, std::uint32_t type = 0) = delete;  // would not outlive the field

inline Bytes content(const ANYBUF& field) {
  return field.data == nullptr ? Bytes{} : bytes_of(&field);
}

// A handle's stand-in that has nothing but its version.
inline TqLabelHandle label_of(const Version& version) {
  TqLabelHandle label{};
  label.subVersion = version.sub_version;
  std::memcpy(label.version, version.text.data(), sizeof label.version);
  label.head.versionText = field(version.text);
  return label;
}
inline Scope scope_of(const Version& version) { return tq::scope_of(label_of(version)); }

// A whole label filled at random, which is released with its scope.
struct RandomLabel : Pinned {
  TqLabelHandle label;

  RandomLabel(const Version& version, std::uint32_t seed) : label(label_of(version)) {
    const Scope scope = tq::scope_of(label);
    walk(kLabel, label, scope, Fill(Lengths::kEdges, seed, scope));
  }
  ~RandomLabel() {
    FreeHead(&label.head);
    FreeBody(&label.body);
    FreeANYBUF(&label.pad);
  }
};

// A letter for each element, and the elements of a word.
struct Alphabet {
  std::string_view letters;
  std::vector<Bytes> elements;

  [[nodiscard]] Bytes spell(std::string_view word) const {
    Bytes bytes;
    for (const char letter : word) bytes = concat(bytes, elements.at(letters.find(letter)));
    return bytes;
  }
};

// What an encoder puts in its slot: nothing after a failure, no bytes where it leaves it empty.
template <class Encoder, class... Arguments>
std::optional<Bytes> encoded(Encoder encoder, Arguments... arguments) {
  ANYBUF* slot = nullptr;
  if (encoder(arguments..., &slot) != 0) {
    EXPECT_EQ(slot, nullptr);
    return std::nullopt;
  }
  const Node node(slot);
  return node ? bytes_of(node.get()) : Bytes{};
}

// Whether a decoder takes the bytes, which end where their block ends.
template <class Decoder, class... Arguments>
bool decodes(Decoder decoder, const Bytes& bytes, Arguments... arguments) {
  const Bytes exact(bytes.begin(), bytes.end());
  const ANYBUF element = field(exact);
  return decoder(&element, arguments...) == 0;
}

}  // namespace tq::test

#endif
