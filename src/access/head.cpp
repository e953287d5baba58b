// Single fields of the head.

#include <ctime>

#include "access/field.h"
#include "core/model/layout.h"

namespace tq {
namespace {

constexpr auto kLabelText = [](TqLabelHandle& label) -> ANYBUF& { return label.head.label; };
constexpr auto kVersionText = [](TqLabelHandle& label) -> ANYBUF& {
  return label.head.versionText;
};
constexpr auto kCustom = [](TqLabelHandle& label) -> ANYBUF& { return label.head.custom; };
constexpr auto kSerialNum = [](TqLabelHandle& label) -> ANYBUF& { return label.head.serialNum; };
constexpr auto kSignCert = [](TqLabelHandle& label) -> ANYBUF& {
  return label.head.headSign.certificate;
};
constexpr auto kSignValue = [](TqLabelHandle& label) -> ANYBUF& {
  return label.head.headSign.value;
};
constexpr auto kCreateTime = [](TqLabelHandle& label) -> std::uint64_t& {
  return label.head.createTime;
};
constexpr auto kModifyTime = [](TqLabelHandle& label) -> std::uint64_t& {
  return label.head.modifyTime;
};
constexpr auto kFeedBackBits = [](TqLabelHandle& label) -> std::uint32_t& {
  return label.head.encryptHead.feedBackBits;
};

}  // namespace
}  // namespace tq

std::int32_t SetLabel(TqLabel label, const std::uint8_t* text, std::uint32_t length) {
  return tq::set_text(label, tq::kLabelText, tq::der::kPrintableString, text, length);
}
std::int32_t GetLabel(TqLabel label, std::uint8_t* buffer, std::uint8_t* length) {
  return tq::get_bytes(label, tq::kLabelText, buffer, length);
}

// A text that is no version is stored all the same: the label then fails to encode.
std::int32_t GLSetVersion(TqLabel label, const std::uint8_t* text, std::uint32_t length) {
  if (tq::set_text(label, tq::kVersionText, tq::der::kPrintableString, text, length) != 0) {
    return -1;
  }
  char terminated[tq::kTextLimit + 1] = {};
  std::memcpy(terminated, text, tq::low8(length));
  static_cast<void>(tq::LBParseVersion(terminated, label->version, label));
  return 0;
}
std::int32_t GLGetVersion(TqLabel label, std::uint8_t* buffer, std::uint8_t* length) {
  return tq::get_bytes(label, tq::kVersionText, buffer, length);
}

std::int32_t SetCustom(TqLabel label, const std::uint8_t* bytes, std::uint32_t length) {
  if (label == nullptr || (bytes == nullptr && length != 0)) return -1;
  const bool set = tq::replace(label->head.custom, bytes, length, tq::der::kOctetString);
  return set ? 0 : -1;
}
std::int32_t GetCustom(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return tq::get_bytes(label, tq::kCustom, buffer, length);
}

std::int32_t SetHeadSerialNum(TqLabel label, const std::uint8_t* serial, std::uint32_t length) {
  return tq::set_text(label, tq::kSerialNum, tq::der::kInteger, serial, length);
}
std::int32_t GetHeadSerialNum(TqLabel label, std::uint8_t* buffer, std::uint8_t* length) {
  return tq::get_bytes(label, tq::kSerialNum, buffer, length);
}

std::int32_t SetHeadSignCert(TqLabel label, const std::uint8_t* cert, std::uint32_t certLen) {
  return tq::set_bytes(label, tq::kSignCert, tq::der::kSequence, cert, certLen);
}
std::int32_t GetHeadSignCert(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return tq::get_bytes(label, tq::kSignCert, buffer, length);
}

std::int32_t SetHeadSignValue(TqLabel label, const std::uint8_t* value, std::uint32_t valueLen) {
  return tq::set_bytes(label, tq::kSignValue, tq::der::kBitString, value, valueLen);
}
std::int32_t GetHeadSignValue(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  return tq::get_bytes(label, tq::kSignValue, buffer, length);
}

std::int32_t SetHeadCreateTime(TqLabel label) {
  return tq::set_value(label, tq::kCreateTime, static_cast<std::uint64_t>(std::time(nullptr)));
}
std::int32_t GetHeadCreateTime(TqLabel label, std::uint64_t* time) {
  return tq::get_value(label, tq::kCreateTime, time);
}

std::int32_t SetHeadModifyTime(TqLabel label, std::uint64_t time) {
  return tq::set_value(label, tq::kModifyTime, time);
}
std::int32_t GetHeadModifyTime(TqLabel label, std::uint64_t* time) {
  return tq::get_value(label, tq::kModifyTime, time);
}

std::int32_t SetHeadFeedBackBits(TqLabel label, std::uint32_t bits) {
  return tq::set_value(label, tq::kFeedBackBits, tq::low8(bits));
}
std::int32_t GetHeadFeedBackBits(TqLabel label, std::uint8_t* bits) {
  return tq::get_value(label, tq::kFeedBackBits, bits);
}

std::int32_t SetCertSerialAndIssuerToHead(TqLabel label, const std::uint8_t* serial,
                                          std::uint32_t serialLen, const PJCertIssuer* issuer) {
  if (label == nullptr || serial == nullptr || issuer == nullptr) return -1;
  const tq::Layout layout = tq::layout_of(*label);
  if (!layout.known()) return -1;
  const std::int32_t result = SetHeadSerialNum(label, serial, serialLen);
  if (result != 0 || layout.v60) return result;
  return ConvertIssuerName2PJCertIssuer(issuer, &label->head.issuer);
}

std::int32_t GetCertSerialAndIssuerToHead(TqLabel label, std::uint8_t* serial,
                                          std::uint8_t* serialLen, PJCertIssuer** issuer) {
  if (label == nullptr || serialLen == nullptr || issuer == nullptr) return -1;
  const tq::Layout layout = tq::layout_of(*label);
  if (!layout.known()) return -1;
  const std::int32_t result = GetHeadSerialNum(label, serial, serialLen);
  if (result != 0 || layout.v60) return result;
  return ConvertPJCertIssuer2IssuerName(&label->head.issuer, issuer);
}
