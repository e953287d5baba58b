#ifndef TQLABEL_TOOL_SEALED_LAYOUT_H
#define TQLABEL_TOOL_SEALED_LAYOUT_H

// Labels as the bytes in front of the content.

#include <string>
#include <vector>

#include "crypto/derive.h"
#include "sealed/format.h"

namespace tq::tool {

[[noreturn]] void throw_not_encodable();

// The bytes that an encoder of the library gives. What does not encode is thrown.
template <class Encoder>
[[nodiscard]] Secret encoded(TqLabel label, Encoder encoder) {
  std::uint32_t length = 0;
  Secret bytes;
  bool done = encoder(label, nullptr, &length) == 0;
  if (done) bytes.resize(length);
  done = done && encoder(label, bytes.data(), &length) == 0;
  if (!done) throw_not_encodable();
  return bytes;
}
// The element of the head, as it stands in the sealed label.
[[nodiscard]] std::vector<std::uint8_t> head_element(TqLabel label);

// A size with room for edits to come, for a label that is to grow by so much.
[[nodiscard]] std::size_t roomy_size(TqLabel label, std::size_t growth);

// The label with its body sealed, of exactly that size, which it also states as its alignment;
// nothing where it is larger.
[[nodiscard]] std::vector<std::uint8_t> seal_label(TqLabel label, const FileKeys& keys,
                                                   std::size_t size);

// A sealed label before it is opened.
struct SealedLabel {
  LabelOwner label;  // with an empty body
  Bytes head;        // within the bytes it was read from
  std::vector<std::uint8_t> body;
};

// Throws unless the bytes are such a label in the one form that it has: no byte of it is free.
[[nodiscard]] SealedLabel read_sealed_label(Bytes bytes, const std::string& file);

}  // namespace tq::tool

#endif
