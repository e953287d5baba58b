#include "crypto/party.h"

#include <fmt/format.h>
#include <openssl/decoder.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <algorithm>
#include <array>

#include "base/failure.h"
#include "base/files.h"
#include "format/certificate.h"

namespace tq::tool {
namespace {

using X509Owner = Owned<X509, X509_free>;

// One step of reading, so that a key is in memory once.
constexpr std::size_t kMostKeyFile = 65535;
constexpr int kLeastRsaBits = 2048;
constexpr std::size_t kMostAttributes = 10;

[[noreturn]] void refuse(const std::string& file, std::string why, std::string advice = {}) {
  throw Failure{
      .status = Status::kCrypto, .why = std::move(why), .file = file, .advice = std::move(advice)};
}

X509Owner parse(Bytes bytes, const std::string& file) {
  const unsigned char* at = bytes.data();
  X509Owner parsed(d2i_X509(nullptr, &at, static_cast<long>(bytes.size())));
  if (parsed && at == bytes.data() + bytes.size()) return parsed;
  const Owned<BIO, BIO_free> in(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
  parsed.reset(PEM_read_bio_X509(in.get(), nullptr, nullptr, nullptr));
  ERR_clear_error();
  if (!parsed) refuse(file, "not a certificate in PEM or DER");
  return parsed;
}

KeyKind kind_of(EVP_PKEY* key, const std::string& file) {
  if (EVP_PKEY_is_a(key, "SM2") == 1) return KeyKind::kSm2;
  if (EVP_PKEY_is_a(key, "RSA") != 1) refuse(file, "the key is neither RSA nor SM2");
  if (EVP_PKEY_get_bits(key) < kLeastRsaBits) refuse(file, "an RSA key of less than 2048 bits");
  return KeyKind::kRsa;
}

// As labels can hold it: these types of attributes and of strings, and one attribute in each
// relative name.
bool can_hold(const X509_NAME_ENTRY* entry) {
  constexpr std::array kTypes = {NID_commonName,        NID_countryName,
                                 NID_localityName,      NID_stateOrProvinceName,
                                 NID_organizationName,  NID_organizationalUnitName,
                                 NID_pkcs9_emailAddress};
  constexpr std::array kTags = {V_ASN1_UTF8STRING, V_ASN1_PRINTABLESTRING, V_ASN1_IA5STRING,
                                V_ASN1_BMPSTRING};
  const int type = OBJ_obj2nid(X509_NAME_ENTRY_get_object(entry));
  const int tag = ASN1_STRING_type(X509_NAME_ENTRY_get_data(entry));
  return std::ranges::find(kTypes, type) != kTypes.end() &&
         (type == NID_pkcs9_emailAddress ? tag == V_ASN1_IA5STRING
                                         : std::ranges::find(kTags, tag) != kTags.end());
}

PJCertIssuerEntry entry_of(const X509_NAME_ENTRY* entry, const std::string& file) {
  PJCertIssuerEntry made = {};
  const ASN1_OBJECT* type = X509_NAME_ENTRY_get_object(entry);
  const ASN1_STRING* value = X509_NAME_ENTRY_get_data(entry);
  const Bytes octets = {OBJ_get0_data(type), OBJ_length(type)};
  const Bytes text = {ASN1_STRING_get0_data(value),
                      static_cast<std::size_t>(ASN1_STRING_length(value))};
  if (!can_hold(entry) || octets.size() > sizeof made.type || text.size() > sizeof made.value) {
    refuse(file, "a label cannot hold the name of the certificate's issuer",
           "the attributes CN, C, L, ST, O, OU and email of up to 128 bytes fit");
  }
  std::ranges::copy(octets, made.type);
  std::ranges::copy(text, made.value);
  made.typeLen = static_cast<std::uint32_t>(octets.size());
  made.valueLen = static_cast<std::uint32_t>(text.size());
  made.valueTag = static_cast<std::uint32_t>(ASN1_STRING_type(value));
  return made;
}

std::vector<PJCertIssuerEntry> issuer_of(const X509* certificate, const std::string& file) {
  const X509_NAME* name = X509_get_issuer_name(certificate);
  const int count = X509_NAME_entry_count(name);
  std::vector<PJCertIssuerEntry> entries;
  for (int i = 0; i < count; ++i) {
    const X509_NAME_ENTRY* entry = X509_NAME_get_entry(name, i);
    if (X509_NAME_ENTRY_set(entry) != i) {
      refuse(file, "a relative name of the certificate's issuer has several attributes");
    }
    entries.push_back(entry_of(entry, file));
  }
  if (entries.empty() || entries.size() > kMostAttributes) {
    refuse(file, "the issuer of the certificate does not have 1 to 10 attributes");
  }
  return entries;
}

std::vector<std::uint8_t> serial_of(const X509* certificate, const std::string& file) {
  constexpr int kHeader = 2;
  constexpr int kMostOctets = 127;
  const ASN1_INTEGER* serial = X509_get0_serialNumber(certificate);
  const int size = i2d_ASN1_INTEGER(serial, nullptr);
  if (size <= kHeader || size > kHeader + kMostOctets) {
    refuse(file, "a serial number of more than 127 bytes");
  }
  std::vector<std::uint8_t> element(static_cast<std::size_t>(size));
  unsigned char* at = element.data();
  i2d_ASN1_INTEGER(serial, &at);
  element.erase(element.begin(), element.begin() + kHeader);
  return element;
}

std::vector<std::uint8_t> encode(const X509* certificate) {
  const int size = i2d_X509(certificate, nullptr);
  require(size > 0, "encoding a certificate");
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  unsigned char* at = bytes.data();
  i2d_X509(certificate, &at);
  return bytes;
}

Key read_private_key(const std::string& file, Bytes passphrase) {
  std::vector<std::uint8_t> bytes = read_small_file(file, kMostKeyFile);
  const OnExit wipe([&] { OPENSSL_cleanse(bytes.data(), bytes.size()); });
  EVP_PKEY* made = nullptr;
  const Owned<OSSL_DECODER_CTX, OSSL_DECODER_CTX_free> decoder(OSSL_DECODER_CTX_new_for_pkey(
      &made, nullptr, nullptr, nullptr, EVP_PKEY_KEYPAIR, nullptr, nullptr));
  require(decoder != nullptr, "decoding a key", file);
  if (!passphrase.empty()) {
    OSSL_DECODER_CTX_set_passphrase(decoder.get(), passphrase.data(), passphrase.size());
  }
  const unsigned char* at = bytes.data();
  std::size_t left = bytes.size();
  const bool read = OSSL_DECODER_from_data(decoder.get(), &at, &left) == 1;
  ERR_clear_error();
  if (!read) {
    refuse(file, "not a private key in PEM or DER", "give the passphrase of an encrypted one");
  }
  return Key(made);
}

}  // namespace

PJCertIssuer Party::issuer_name() const {
  const auto count = static_cast<std::uint32_t>(issuer.size());
  return {const_cast<PJCertIssuerEntry*>(issuer.data()), count, count};
}

bool Party::is_in_force(std::time_t when) const {
  const X509Owner parsed = parse(certificate, file);
  return X509_cmp_time(X509_get0_notBefore(parsed.get()), &when) < 0 &&
         X509_cmp_time(X509_get0_notAfter(parsed.get()), &when) > 0;
}

void Party::require_in_force(std::time_t when) const {
  const X509Owner parsed = parse(certificate, file);
  if (X509_cmp_time(X509_get0_notBefore(parsed.get()), &when) >= 0) {
    refuse(file, "the certificate of " + subject + " was not yet in force");
  }
  if (X509_cmp_time(X509_get0_notAfter(parsed.get()), &when) <= 0) {
    refuse(file, "the certificate of " + subject + " had expired");
  }
}

Party party_of(Bytes certificate, const std::string& file) {
  const X509Owner parsed = parse(certificate, file);
  Party party;
  party.file = file;
  party.certificate = encode(parsed.get());
  party.serial = serial_of(parsed.get(), file);
  party.issuer = issuer_of(parsed.get(), file);
  party.subject = read_certificate(party.certificate).value_or(Certificate{}).subject;
  party.public_key.reset(X509_get_pubkey(parsed.get()));
  if (!party.public_key) refuse(file, "the certificate has no key that can be read");
  party.kind = kind_of(party.public_key.get(), file);
  return party;
}

Party read_party(const std::string& certificate_file) {
  return party_of(read_small_file(certificate_file, kMostKeyFile), certificate_file);
}

Party read_party(const std::string& certificate_file, const std::string& key_file,
                 Bytes passphrase) {
  Party party = read_party(certificate_file);
  party.private_key = read_private_key(key_file, passphrase);
  if (EVP_PKEY_eq(party.private_key.get(), party.public_key.get()) == 1) return party;
  ERR_clear_error();
  refuse(key_file, "not the private key of " + escaped_path(certificate_file));
}

std::string chain_fault(const Party& party, const std::vector<std::string>& trusted,
                        std::time_t when) {
  const Owned<X509_STORE, X509_STORE_free> store(X509_STORE_new());
  require(store != nullptr, "making a store of certificates");
  for (const std::string& file : trusted) {
    const X509Owner anchor = parse(read_small_file(file, kMostKeyFile), file);
    require(X509_STORE_add_cert(store.get(), anchor.get()) == 1, "trusting a certificate", file);
  }
  const X509Owner certificate = parse(party.certificate, party.file);
  const Owned<X509_STORE_CTX, X509_STORE_CTX_free> context(X509_STORE_CTX_new());
  require(context != nullptr &&
              X509_STORE_CTX_init(context.get(), store.get(), certificate.get(), nullptr) == 1,
          "checking a chain");
  // What is named is trusted, be it a root or not.
  X509_STORE_CTX_set_flags(context.get(), X509_V_FLAG_PARTIAL_CHAIN);
  X509_STORE_CTX_set_time(context.get(), 0, when);
  const bool trusts = X509_verify_cert(context.get()) == 1;
  const int error = X509_STORE_CTX_get_error(context.get());
  ERR_clear_error();
  return trusts ? std::string() : X509_verify_cert_error_string(error);
}

Secret read_passphrase(const std::string& file) {
  if (file.empty()) return {};
  std::vector<std::uint8_t> bytes = read_small_file(file, kMostKeyFile);
  const OnExit wipe([&] { OPENSSL_cleanse(bytes.data(), bytes.size()); });
  return {bytes.begin(), std::ranges::find(bytes, '\n')};
}

}  // namespace tq::tool
