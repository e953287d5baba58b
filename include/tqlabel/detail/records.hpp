/**
 * @file
 * What the C++ interface takes and hands out. Fields are those of the C records of like names.
 */
#ifndef TQLABEL_DETAIL_RECORDS_HPP
#define TQLABEL_DETAIL_RECORDS_HPP

#include <tqlabel/label.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/** @cond cpp */
namespace tqlabel {

/** Bytes that are handed out. */
using Bytes = std::vector<std::uint8_t>;
/** Bytes that are taken; they need not outlive the call. */
using ByteView = std::span<const std::uint8_t>;
/** Seconds since the Unix epoch; 0 is "not set". */
using Seconds = std::uint64_t;

/** The bytes of a text. */
[[nodiscard]] inline ByteView as_octets(std::string_view text) noexcept {
  return {static_cast<const std::uint8_t*>(static_cast<const void*>(text.data())), text.size()};
}
/** Bytes of the standard's type. */
[[nodiscard]] inline ByteView as_octets(std::span<const std::byte> bytes) noexcept {
  return {static_cast<const std::uint8_t*>(static_cast<const void*>(bytes.data())), bytes.size()};
}

/** String types of the attributes of a name. */
enum class StringType : std::uint32_t { kUtf8 = 12, kPrintable = 19, kIa5 = 22, kBmp = 30 };

/** One attribute of an issuer name; attribute() makes it by name. */
struct Attribute {
  Bytes type;        /**< content octets of the type's identifier, to 16 */
  std::string value; /**< the string, to 128 bytes */
  StringType string_type = StringType::kPrintable; /**< kUtf8 is written as kPrintable */
  bool operator==(const Attribute&) const = default;
};

/** An issuer name, of up to 10 attributes. */
using Issuer = std::vector<Attribute>;

/** A recipient, by the certificate; an issuer of few attributes matches many names. */
struct Recipient {
  Bytes serial; /**< content octets of the serial number, to 255 */
  Issuer issuer;
  bool operator==(const Recipient&) const = default;
};

/** An envelope: the key of the file, wrapped for one recipient. */
struct Envelope {
  Recipient recipient;
  std::string algorithm;
  Bytes key;
  bool operator==(const Envelope&) const = default;
};

/** One pair of a privilege record. */
struct PrivilegePair {
  std::uint16_t type = 0;
  std::uint32_t value = 0;
  bool operator==(const PrivilegePair&) const = default;
};

/** What a recipient may do; numbers and flags have no meaning to the library. */
struct Privileges {
  Bytes data; /**< the recipient's certificate or another DER element */
  bool flag1 = false;
  std::uint32_t number1 = 0;
  std::uint32_t read_count = 0;
  bool flag2 = false;
  bool flag3 = false;
  bool flag4 = false;
  std::uint32_t number3 = 0;
  std::uint32_t number4 = 0;
  std::vector<PrivilegePair> pairs; /**< in reverse order once stored */
  bool operator==(const Privileges&) const = default;
};

/** An envelope of the body with its privileges. */
struct BodyEnvelope {
  Envelope envelope;
  Privileges privileges;
  bool operator==(const BodyEnvelope&) const = default;
};

/** New wrapped keys of one recipient, for Label::rekey(). */
struct WrappedKeys {
  Bytes head;
  Bytes body;
};

/** A signature of the body. */
struct Signature {
  std::string algorithm;
  Bytes value;
  Bytes certificate;
  bool operator==(const Signature&) const = default;
};

/** The cipher of the body. */
struct Cipher {
  std::string name;
  std::uint8_t feedback_bits = 0;
  bool operator==(const Cipher&) const = default;
};

/** The content fields of the body. */
struct Content {
  std::uint32_t file_type = 0;
  std::uint32_t secrecy = 0;
  std::uint32_t file_size = 0;
  std::string file_name;
  std::string file_title;
  Seconds modified = 0;
  Seconds expiry = 0;
  Seconds abolition = 0;
  Seconds destruction = 0;
  bool operator==(const Content&) const = default;
};

/** The file creator record of the body. */
struct FileCreator {
  std::string file_number;
  std::string text;
  std::uint32_t time = 0;
  bool operator==(const FileCreator&) const = default;
};

/** A log entry. */
struct Log {
  std::uint32_t number = 0;
  std::string text1; /**< to 255 bytes */
  Issuer issuer;     /**< at least one attribute */
  Bytes array1;      /**< content octets of an INTEGER, to 255 */
  Bytes array2;      /**< content octets of an INTEGER, to 255 */
  Seconds time = 0;
  std::uint32_t value = 0;
  std::string text2;
  bool operator==(const Log&) const = default;
};

/** An extension value. */
struct Extension {
  std::uint32_t type = 0;
  Bytes value;
  bool operator==(const Extension&) const = default;
};

/** Releases records that the library has made. */
struct Release {
  void operator()(WaterMark* mark) const noexcept {
    FreetWaterMarkInfo(mark);
    Asn1Free(mark->text);
    Asn1Free(mark);
  }
  void operator()(StampRecord* stamp) const noexcept { FreeStampA(stamp); }
  void operator()(Finger* finger) const noexcept { FreeFingerPrintInfo(finger); }
  void operator()(LogInfo* log) const noexcept { FreeLog(log); }
  void operator()(PJCertIssuer* issuer) const noexcept { FreeIssuerName(issuer); }
  void operator()(SignEnum* signatures) const noexcept { DestroySignEmura(signatures); }
  void operator()(DigitEnvolopEnum* envelopes) const noexcept { DestroyEmura(envelopes); }
  void operator()(TqLabelHandle* label) const noexcept { FreeHandleLabel(label); }
};
/** A record of the C interface with its owner. */
template <class Record>
using Owned = std::unique_ptr<Record, Release>;

}  // namespace tqlabel
/** @endcond */

#endif
