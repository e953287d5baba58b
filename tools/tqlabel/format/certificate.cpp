#include "format/certificate.h"

#include <openssl/bio.h>
#include <openssl/x509.h>

#include <ctime>
#include <limits>
#include <memory>

#include "format/values.h"

namespace tq::tool {
namespace {

struct Releases {
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(BIO* bio) const { BIO_free(bio); }
};

// OpenSSL's own text, and then fit for a terminal.
std::string show(const X509_NAME* name) {
  const std::unique_ptr<BIO, Releases> out(BIO_new(BIO_s_mem()));
  constexpr unsigned long kFlags = (XN_FLAG_RFC2253 | XN_FLAG_SEP_CPLUS_SPC) &
                                   ~static_cast<unsigned long>(XN_FLAG_DN_REV) &
                                   ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB);
  if (!out || X509_NAME_print_ex(out.get(), name, 0, kFlags) < 0) return "not readable";
  const char* text = nullptr;
  const long length = BIO_get_mem_data(out.get(), &text);
  return escaped(bytes_of({text, static_cast<std::size_t>(length)}), Encoding::kUtf8, "");
}

std::string show(const ASN1_TIME* time) {
  std::tm parts = {};
  if (ASN1_TIME_to_tm(time, &parts) != 1) return "no time";
  char text[32] = {};
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return {text, length};
}

}  // namespace

std::optional<Certificate> read_certificate(Bytes element) {
  if (element.size() > static_cast<std::size_t>(std::numeric_limits<long>::max())) return {};
  const unsigned char* at = element.data();
  const std::unique_ptr<X509, Releases> parsed(
      d2i_X509(nullptr, &at, static_cast<long>(element.size())));
  if (!parsed || at != element.data() + element.size()) return {};
  return Certificate{.subject = show(X509_get_subject_name(parsed.get())),
                     .issuer = show(X509_get_issuer_name(parsed.get())),
                     .not_before = show(X509_get0_notBefore(parsed.get())),
                     .not_after = show(X509_get0_notAfter(parsed.get())),
                     .sha256 = sha256_hex(element)};
}

}  // namespace tq::tool
