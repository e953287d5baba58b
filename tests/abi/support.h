#ifndef TQ_TESTS_ABI_SUPPORT_H
#define TQ_TESTS_ABI_SUPPORT_H

// Labels as a user's program has them: handles with an owner, bytes in vectors, and elements of
// encoded labels as trees that a test may rearrange. The trees are read by OpenSSL.

#include <gtest/gtest.h>
#include <openssl/asn1.h>
#include <tqlabel/label.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "unit/support/bytes.h"

namespace tq::abi {

using test::Bytes;
using test::concat;
using test::hex;
using test::quick;
using test::text;
using test::tlv;

inline constexpr const char* kVersions[] = {"6.0", "1.1", "1.1.1", "1.1.2"};
inline bool is_60(std::string_view version) { return version == "6.0"; }
inline bool is_multi_sign(std::string_view version) { return version == "1.1.2"; }
inline bool is_aligned(std::string_view version) { return version.size() == 5; }

// "1.1.2" as "112", for names.
inline std::string digits_of(std::string_view version) {
  std::string digits(version);
  std::erase(digits, '.');
  return digits;
}
inline std::string name_of(const testing::TestParamInfo<const char*>& version) {
  return digits_of(version.param);
}

inline std::uint32_t size32(const Bytes& bytes) { return static_cast<std::uint32_t>(bytes.size()); }

// Bytes that tell a copy from a shifted or repeated one.
inline Bytes pattern(std::size_t length, std::size_t seed = 1) {
  Bytes bytes(length);
  for (std::size_t i = 0; i < length; ++i) {
    bytes[i] = static_cast<std::uint8_t>('A' + (i * i + seed) % 26);
  }
  return bytes;
}

// How objects of C libraries are released by a unique_ptr.
template <auto kFree>
struct Free {
  template <class T>
  void operator()(T* object) const {
    kFree(object);
  }
};

class Label {
 public:
  Label() : handle_(GetHandleLabel()) {}
  explicit Label(TqLabel handle) : handle_(handle) {}
  operator TqLabel() const { return handle_.get(); }

 private:
  std::unique_ptr<TqLabelHandle, Free<FreeHandleLabel>> handle_;
};

using Setter = std::int32_t (*)(TqLabel, const std::uint8_t*, std::uint32_t);
using Getter = std::int32_t (*)(TqLabel, std::uint8_t*, std::uint32_t*);
using SealedEncoder = std::int32_t (*)(TqLabel, const std::uint8_t*, std::uint32_t, std::uint8_t*,
                                       std::uint32_t*);

// A getter with an 8-bit length, as one with a 32-bit length.
template <auto kGet>
std::int32_t widened(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  if (length == nullptr) return kGet(label, buffer, nullptr);
  auto narrow = static_cast<std::uint8_t>(*length);
  const std::int32_t result = kGet(label, buffer, &narrow);
  *length = narrow;
  return result;
}

// Calls twice, for the size and for the bytes, and holds the call to the rules of its buffer: a
// size query and an exact fit agree, one octet less changes nothing. Nothing comes back on failure.
template <class Call>
Bytes fetch(Call call) {
  std::uint32_t size = 0xABCDEF;
  if (call(nullptr, &size) != 0) {
    EXPECT_EQ(size, 0xABCDEFU) << "a failed size query stored a length";
    return {};
  }
  Bytes bytes(size + 1, 0xEE);
  if (size != 0) {
    std::uint32_t short_by_one = size - 1;
    EXPECT_EQ(call(bytes.data(), &short_by_one), -1);
    EXPECT_EQ(short_by_one, size - 1);
    EXPECT_EQ(bytes, Bytes(size + 1, 0xEE));
  }
  EXPECT_EQ(call(bytes.data(), &size), 0);
  EXPECT_EQ(size + 1, bytes.size());
  EXPECT_EQ(bytes.back(), 0xEE) << "written past the length";
  bytes.pop_back();
  return bytes;
}

inline Bytes encode(TqLabel label, Getter how = EncodeLabel) {
  return fetch([&](std::uint8_t* buffer, std::uint32_t* size) { return how(label, buffer, size); });
}
inline Bytes get(TqLabel label, Getter getter) { return encode(label, getter); }
inline Bytes encode_sealed(TqLabel label, const Bytes& body,
                           SealedEncoder how = EncodeLabelEncrypted) {
  return fetch([&](std::uint8_t* buffer, std::uint32_t* size) {
    return how(label, body.data(), size32(body), buffer, size);
  });
}

// A handle, or none: then the slot was left alone.
inline Label decode(const Bytes& der) {
  TqLabel slot = nullptr;
  const std::int32_t result = DecodeLabel(der.data(), size32(der), &slot);
  EXPECT_EQ(result == 0, slot != nullptr);
  return Label(slot);
}

inline void set(TqLabel label, Setter setter, const Bytes& bytes) {
  static constexpr std::uint8_t kNone = 0;  // no bytes, but not null
  EXPECT_EQ(setter(label, bytes.empty() ? &kNone : bytes.data(), size32(bytes)), 0);
}

inline const Bytes kCommonName = hex("55 04 03");
inline const Bytes kCountry = hex("55 04 06");
inline const Bytes kEmail = hex("2A 86 48 86 F7 0D 01 09 01");

class Issuer {
 public:
  struct Attribute {
    Bytes type;
    std::uint32_t tag;
    Bytes value;
    bool operator==(const Attribute&) const = default;
  };

  explicit Issuer(const std::vector<Attribute>& attributes) {
    for (const Attribute& attribute : attributes) {
      PJCertIssuerEntry entry{
          {}, size32(attribute.type), {}, size32(attribute.value), attribute.tag};
      std::ranges::copy(attribute.type, entry.type);
      std::ranges::copy(attribute.value, entry.value);
      entries_.push_back(entry);
    }
    record_ = {entries_.data(), static_cast<std::uint32_t>(entries_.size()), 0};
  }
  Issuer(const Issuer&) = delete;
  Issuer& operator=(const Issuer&) = delete;

  [[nodiscard]] const PJCertIssuer* get() const { return &record_; }
  PJCertIssuer& record() { return record_; }

 private:
  std::vector<PJCertIssuerEntry> entries_;
  PJCertIssuer record_{};
};

using Name = std::vector<Issuer::Attribute>;

inline Name attributes_of(const PJCertIssuer* issuer) {
  Name attributes;
  for (std::uint32_t i = 0; i < issuer->count; ++i) {
    const PJCertIssuerEntry& entry = issuer->entries[i];
    attributes.push_back({{entry.type, entry.type + entry.typeLen},
                          entry.valueTag,
                          {entry.value, entry.value + entry.valueLen}});
  }
  return attributes;
}

inline const Bytes kHeadCert = hex("30 08 02 01 05 04 03 0A 0B 0C");
inline const Bytes kBodyCert = hex("30 04 02 02 01 07");
inline const char* const kSignAlg = "sha256WithRSAEncryption";

inline std::int32_t add_signer(TqLabel label, bool append, const char* name, Bytes cert,
                               Bytes value) {
  std::string algorithm(name);
  const SignAttribute signer{algorithm.data(), value.data(), size32(value), cert.data(),
                             size32(cert)};
  return SetBodySignAttr(label, append ? 1 : 0, &signer);
}

// An encoder around some encrypted body.
template <auto kSeal>
std::int32_t sealed(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return kSeal(label, kHeadCert.data(), 10, buffer, length);
}

// What a head cannot do without; the algorithms stay empty.
inline std::int32_t fill_bare(TqLabel label) {
  const Issuer issuer({{kCountry, 19, text("CN")}, {kCommonName, 19, text("Root")}});
  const Bytes serial = hex("00 C4 11");
  return SetLabel(label, text("Secret").data(), 6) |
         SetCertSerialAndIssuerToHead(label, serial.data(), 3, issuer.get());
}

// A small label: with `cipher`, one whose body is to be encrypted.
inline void fill(TqLabel label, const char* version, bool cipher = true) {
  set(label, GLSetVersion, text(version));
  EXPECT_EQ(fill_bare(label), 0);
  set(label, SetHeadSignAlg, text(kSignAlg));
  set(label, SetHeadSignCert, kHeadCert);
  EXPECT_EQ(SetEncryptHead(label, text("AES.256.CBC").data(), cipher ? 11 : 0, 8), 0);
  if (is_multi_sign(version)) {
    EXPECT_EQ(add_signer(label, false, kSignAlg, kBodyCert, pattern(32)), 0);
  } else {
    set(label, SetBodySignCert, kBodyCert);
  }
}

// Every field that has a setter of its own holds something.
inline void fill_fields(TqLabel label, const char* version) {
  fill(label, version);
  set(label, SetCustom, pattern(40));
  set(label, SetHeadSignValue, pattern(64, 2));
  if (!is_multi_sign(version)) set(label, SetBodySigVal, pattern(96, 3));
  set(label, SetFileName, text("plan.txt"));
  set(label, GLSetFileTitle, text("The plan"));
  EXPECT_EQ(SetHeadCreateTime(label) | SetHeadModifyTime(label, 1700000000), 0);
  EXPECT_EQ(SetModifyTime(label, 1600000000) | SetExpired(label, 1900000000), 0);
  EXPECT_EQ(SetDestroyTime(label, 253402300799), 0);  // the end of the year 9999
  EXPECT_EQ(GLSetFileType(label, 7) | SetFileSecc(label, 3) | GLSetFileSize(label, ~0U), 0);
  EXPECT_EQ(SetFileAlignSize(label, 4096), is_aligned(version) ? 0 : -1);
  EXPECT_EQ(SetFileUnEffectSize(label, 17) | SetLabelAlignSize(label, 512), 0);
  EXPECT_EQ(SetLabelPadSize(label, 5) | GLSetFileNo(label, "No. 1"), 0);
}

// An element of an encoded label.
struct Element {
  std::uint8_t tag = 0;
  Bytes content;                  // of a primitive element
  std::vector<Element> children;  // of a constructed one
  std::size_t start = 0;          // where it lay

  [[nodiscard]] bool constructed() const { return (tag & 0x20) != 0; }
  [[nodiscard]] Bytes der() const {
    Bytes inner = content;
    for (const Element& child : children) inner = concat(inner, child.der());
    return tlv(tag, inner);
  }
};

// Splits elements down to the primitive ones; each constructed one must be filled exactly.
inline std::vector<Element> split(const std::uint8_t* start, const std::uint8_t* at,
                                  const std::uint8_t* end) {
  std::vector<Element> elements;
  while (at < end) {
    const std::uint8_t* content = at;
    long length = 0;
    int tag = 0;
    int form = 0;
    if ((ASN1_get_object(&content, &length, &tag, &form, end - at) & 0x81) != 0) {
      ADD_FAILURE() << "malformed, or of indefinite length";
      return {};
    }
    Element element{*at, {}, {}, static_cast<std::size_t>(at - start)};
    at = content + length;
    if (element.constructed()) {
      element.children = split(start, content, at);
    } else {
      element.content.assign(content, at);
    }
    elements.push_back(std::move(element));
  }
  return elements;
}

inline Element parse(const Bytes& der) {
  const std::vector<Element> elements = split(der.data(), der.data(), der.data() + der.size());
  EXPECT_EQ(elements.size(), 1U);
  return elements.empty() ? Element{} : elements.front();
}

}  // namespace tq::abi

#endif
