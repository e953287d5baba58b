#include "crypto/openssl.h"

#include <openssl/err.h>

#include "base/failure.h"

namespace tq::tool {

void require(bool done, const std::string& what, const std::string& file) {
  if (done) return;
  const char* reason = ERR_reason_error_string(ERR_peek_last_error());
  ERR_clear_error();
  throw Failure{.status = Status::kCrypto,
                .why = reason == nullptr ? what : what + ": " + reason,
                .file = file};
}

}  // namespace tq::tool
