#ifndef TQLABEL_TOOL_FORMAT_CERTIFICATE_H
#define TQLABEL_TOOL_FORMAT_CERTIFICATE_H

// What is shown of an X.509 certificate.

#include <optional>
#include <string>

#include "base/text.h"

namespace tq::tool {

struct Certificate {
  std::string subject;
  std::string issuer;
  std::string not_before;
  std::string not_after;
  std::string sha256;
};

// Nothing where the element is no certificate.
[[nodiscard]] std::optional<Certificate> read_certificate(Bytes element);

}  // namespace tq::tool

#endif
