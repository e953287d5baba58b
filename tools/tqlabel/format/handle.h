#ifndef TQLABEL_TOOL_FORMAT_HANDLE_H
#define TQLABEL_TOOL_FORMAT_HANDLE_H

// Labels as the library holds them.

#include "base/text.h"
#include "core/entry/label.h"

namespace tq::tool {

using tq::LabelOwner;

inline Bytes bytes_of(const ANYBUF& field) {
  return field.data == nullptr ? Bytes() : Bytes(field.data, field.length);
}

// A label with its body in the clear, or null where it does not decode.
inline LabelOwner decode_label(Bytes der) {
  TqLabel label = nullptr;
  static_cast<void>(DecodeLabel(der.data(), static_cast<std::uint32_t>(der.size()), &label));
  return LabelOwner(label);
}

}  // namespace tq::tool

#endif
