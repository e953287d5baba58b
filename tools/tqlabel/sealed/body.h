#ifndef TQLABEL_TOOL_SEALED_BODY_H
#define TQLABEL_TOOL_SEALED_BODY_H

#include <vector>

#include "base/text.h"
#include "crypto/derive.h"

namespace tq::tool {

// How large a body is when it is sealed.
[[nodiscard]] std::size_t sealed_body_size(std::size_t size);

// IV, ciphertext and authenticator of a body; the latter is for the element of the head, too.
[[nodiscard]] std::vector<std::uint8_t> seal_body(Bytes head, Bytes body, const FileKeys& keys);

// Throws where head or body is not what was sealed.
[[nodiscard]] Secret open_body(Bytes head, Bytes sealed, const FileKeys& keys);

}  // namespace tq::tool

#endif
