#include <utility>

#include "core/entry/label.h"

namespace tq {
namespace {

using Bytes = Block<std::uint8_t>;

// Makes a handle with a copy of the first octets of a label behind it and reads its head; the
// cursor is left behind the head.
[[nodiscard]] LabelOwner decode_head(const Outline& outline, std::size_t length, der::Cursor& in) {
  LabelOwner label(make_zeroed<TqLabelHandle>(1, length).release());
  if (!label) return nullptr;
  auto* const bytes = static_cast<std::uint8_t*>(static_cast<void*>(label.get() + 1));
  std::memcpy(bytes, outline.head.start, length);
  in = der::Cursor(bytes, length);
  if (!read_head(label->head, *label, true, in)) return nullptr;
  return label;
}

[[nodiscard]] bool read_body(TqLabelHandle& label, der::Cursor& in) {
  Scope scope = scope_of(label);
  scope.views = true;
  return decltype(kBody)::read_element(label.body, scope, in);
}

// The length of an encrypted body, as its callers have always been told: an element with a length
// of one octet counts as empty.
[[nodiscard]] std::uint32_t sealed_header(const der::Element& element) {
  return 2 + (element.start[1] & 0x7FU);
}

}  // namespace

}  // namespace tq

std::int32_t DecodeLabel(const std::uint8_t* der, std::uint32_t derLen, TqLabel* label) {
  tq::Outline outline;
  if (label == nullptr || !tq::outline(der, derLen, outline) || !outline.has_body) return -1;
  const std::size_t length = std::size_t{outline.head.size()} + outline.body.size();
  tq::der::Cursor in(nullptr, 0);
  tq::LabelOwner decoded = tq::decode_head(outline, length, in);
  if (!decoded || !tq::read_body(*decoded, in)) return -1;
  *label = decoded.release();
  return 0;
}

std::int32_t DecodeLabelEncrypted(const std::uint8_t* der, std::uint32_t derLen,
                                  std::uint8_t* buffer, std::uint32_t* length, TqLabel* label) {
  tq::Outline outline;
  if (length == nullptr || !tq::outline(der, derLen, outline) || !outline.has_body ||
      outline.body.tag() != tq::der::kOctetString) {
    return -1;
  }
  const std::uint32_t header = tq::sealed_header(outline.body);
  const std::uint32_t sealed = outline.body.size() - header;
  if (buffer == nullptr) {
    *length = sealed;
    return 0;
  }
  if (label == nullptr || *length < sealed) return -1;
  tq::der::Cursor in(nullptr, 0);
  tq::LabelOwner decoded = tq::decode_head(outline, outline.head.size(), in);
  if (!decoded) return -1;
  if (sealed != 0) std::memcpy(buffer, outline.body.start + header, sealed);
  *length = sealed;
  *label = decoded.release();
  return 0;
}

std::int32_t DecodeLabelDecrypted(TqLabel label, const std::uint8_t* der, std::uint32_t derLen) {
  tq::der::Element element;
  if (label == nullptr || !tq::layout_of(*label).known() ||
      !tq::der::read_outermost(der, derLen, tq::der::kSequence, element)) {
    return -1;
  }
  tq::Bytes bytes(static_cast<std::uint8_t*>(Asn1Malloc(element.size())));
  if (!bytes) return -1;
  std::memcpy(bytes.get(), element.start, element.size());
  tq::FreeBody(&label->body);
  label->body = {};
  Asn1Free(std::exchange(label->openedBytes, bytes.release()));
  tq::der::Cursor in(label->openedBytes, element.size());
  if (tq::read_body(*label, in)) return 0;
  tq::FreeBody(&label->body);  // no body at all rather than half of one
  label->body = {};
  return -1;
}
