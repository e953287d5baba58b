#include "sealed/layout.h"

#include <algorithm>

#include "base/failure.h"
#include "crypto/stream.h"
#include "sealed/body.h"

namespace tq::tool {
namespace {

using Encoded = std::vector<std::uint8_t>;

std::uint32_t size_around(TqLabel label, Bytes body) {
  std::uint32_t length = 0;
  if (EncodeLabelPadEncrypted(label, body.data(), static_cast<std::uint32_t>(body.size()), nullptr,
                              &length) != 0) {
    throw_not_encodable();
  }
  return length;
}

Encoded encode_around(TqLabel label, Bytes body) {
  std::uint32_t length = size_around(label, body);
  Encoded bytes(length);
  if (EncodeLabelPadEncrypted(label, body.data(), static_cast<std::uint32_t>(body.size()),
                              bytes.data(), &length) != 0) {
    throw_not_encodable();
  }
  return bytes;
}

// Finds the padding with which the label has that size. A longer padding may need a longer length
// before it, so that some sizes are passed over.
bool pad_to(TqLabel label, Bytes body, std::size_t size) {
  constexpr std::size_t kLongestLength = 8;
  if (SetLabelPadSize(label, 0) != 0) throw_not_encodable();
  const std::size_t least = size_around(label, body);
  if (least > size) return false;
  const std::size_t most = size - least;
  for (std::size_t less = 0; less <= std::min(most, kLongestLength); ++less) {
    if (SetLabelPadSize(label, static_cast<std::uint32_t>(most - less)) != 0) throw_not_encodable();
    if (size_around(label, body) == size) return true;
  }
  return false;
}

[[noreturn]] void refuse(const std::string& file, std::string why) {
  throw Failure{.status = Status::kMalformed,
                .why = std::move(why),
                .file = file,
                .advice = "tqlabel inspect shows what stands there"};
}

std::size_t padding_of(Bytes bytes, const Outline& outline) {
  const auto before = static_cast<std::size_t>(outline.body.start - bytes.data());
  der::Cursor rest(outline.body.start + outline.body.size(),
                   bytes.size() - before - outline.body.size());
  der::Element padding;
  return rest.next(padding) ? padding.length : 0;
}

}  // namespace

void throw_not_encodable() {
  throw Failure{.status = Status::kMalformed, .why = "the label does not encode"};
}

Encoded head_element(TqLabel label) {
  constexpr std::size_t kAnyBody = 128;
  const Encoded bytes = encode_around(label, Encoded(kAnyBody));
  Outline parts;
  if (!outline(bytes.data(), static_cast<std::uint32_t>(bytes.size()), parts)) {
    throw_not_encodable();
  }
  return {parts.head.start, parts.head.start + parts.head.size()};
}

std::size_t roomy_size(TqLabel label, std::size_t growth) {
  constexpr std::size_t kLeastRoom = 8192;
  const std::size_t size =
      head_element(label).size() + encoded(label, EncodeBodyPlaint).size() + growth;
  const std::size_t roomy = size + std::max(size, kLeastRoom);
  return (roomy + kLabelUnit - 1) / kLabelUnit * kLabelUnit;
}

Encoded seal_label(TqLabel label, const FileKeys& keys, std::size_t size) {
  SetLabelAlignSize(label, static_cast<std::uint32_t>(size));
  const Encoded head = head_element(label);
  Secret body = encoded(label, EncodeBodyPlaint);
  // Zeros behind the body move the size to one that a padding reaches.
  for (const std::size_t zeros : {std::size_t{0}, kBlockSize}) {
    body.resize(body.size() + zeros);
    const Encoded room(sealed_body_size(body.size()));
    if (pad_to(label, room, size)) return encode_around(label, seal_body(head, body, keys));
  }
  return {};
}

SealedLabel read_sealed_label(Bytes bytes, const std::string& file) {
  const auto length = static_cast<std::uint32_t>(bytes.size());
  if (LabelBodyWeatherEnc(bytes.data(), static_cast<std::int32_t>(length)) != 1) {
    refuse(file, "no label with an encrypted body");
  }
  SealedLabel sealed;
  Outline parts;
  std::uint32_t body_length = length;
  sealed.body.resize(length);
  TqLabel label = nullptr;
  if (!outline(bytes.data(), length, parts) || !parts.has_padding ||
      DecodeLabelEncrypted(bytes.data(), length, sealed.body.data(), &body_length, &label) != 0) {
    refuse(file, "not the label of a sealed file");
  }
  sealed.label.reset(label);
  sealed.body.resize(body_length);
  sealed.head = {parts.head.start, parts.head.size()};
  const auto padding = static_cast<std::uint32_t>(padding_of(bytes, parts));
  if (SetLabelPadSize(label, padding) != 0) throw_not_encodable();
  if (!std::ranges::equal(encode_around(label, sealed.body), bytes)) {
    refuse(file, "the label is not in the form that it was sealed in");
  }
  return sealed;
}

}  // namespace tq::tool
