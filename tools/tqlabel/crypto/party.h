#ifndef TQLABEL_TOOL_CRYPTO_PARTY_H
#define TQLABEL_TOOL_CRYPTO_PARTY_H

// Who seals, signs or opens a file: a certificate, and perhaps its private key.

#include <tqlabel/label.h>

#include <ctime>
#include <string>
#include <vector>

#include "base/text.h"
#include "crypto/openssl.h"
#include "crypto/secret.h"

namespace tq::tool {

enum class KeyKind { kRsa, kSm2 };

struct Party {
  std::string file;                       // where the certificate comes from
  std::vector<std::uint8_t> certificate;  // DER
  std::vector<std::uint8_t> serial;       // content octets of the INTEGER
  std::vector<PJCertIssuerEntry> issuer;
  std::string subject;
  Key public_key;
  KeyKind kind = KeyKind::kRsa;
  Key private_key = nullptr;

  // For calls of the library, which copy it.
  [[nodiscard]] PJCertIssuer issuer_name() const;
  [[nodiscard]] bool is_in_force(std::time_t when) const;
  // Throws unless the certificate was in force then.
  void require_in_force(std::time_t when) const;
};

// A certificate with a key of either kind; what a label has no room for is refused.
[[nodiscard]] Party party_of(Bytes certificate, const std::string& file);

// The same from a file in PEM or DER.
[[nodiscard]] Party read_party(const std::string& certificate_file);

// With the private key from a file in PEM or DER, which must be that of the certificate. A
// passphrase may be empty.
[[nodiscard]] Party read_party(const std::string& certificate_file, const std::string& key_file,
                               Bytes passphrase);

// Why a certificate does not lead to one of those that are trusted, in files in PEM or DER, at that
// time; empty where it does (RFC 5280).
[[nodiscard]] std::string chain_fault(const Party& party, const std::vector<std::string>& trusted,
                                      std::time_t when);

// The first line of a file; nothing without a file.
[[nodiscard]] Secret read_passphrase(const std::string& file);

}  // namespace tq::tool

#endif
