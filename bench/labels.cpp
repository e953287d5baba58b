#include "labels.h"

#include <tqlabel/label.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace tq::bench {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t kNow = 1700000000;
constexpr std::uint32_t kNameAttributes = 4;

void need(bool done, const char* what) {
  if (!done) throw std::runtime_error(what);
}

std::uint32_t size32(std::string_view text) { return static_cast<std::uint32_t>(text.size()); }
std::uint32_t size32(const Bytes& bytes) { return static_cast<std::uint32_t>(bytes.size()); }

// Records of the interface that also carry results point to bytes that are not const.
std::uint8_t* octets(std::string_view text) {
  return reinterpret_cast<std::uint8_t*>(const_cast<char*>(text.data()));
}

const Bytes& certificate() {
  static const Bytes bytes = [] {
    std::ifstream file(TQ_BENCH_CERTIFICATE, std::ios::binary);
    Bytes read{std::istreambuf_iterator<char>(file), {}};
    need(!read.empty(), TQ_BENCH_CERTIFICATE);
    return read;
  }();
  return bytes;
}

// What nobody can compress or guess, as keys and signatures are.
Bytes noise(std::size_t length, std::uint32_t seed) {
  Bytes bytes(length);
  std::ranges::generate(bytes, [&] {
    seed = seed * 1664525 + 1013904223;
    return static_cast<std::uint8_t>(seed >> 24);
  });
  bytes.front() = 0x5A;  // a positive INTEGER, should it be one
  return bytes;
}

class Name {
 public:
  explicit Name(std::string_view common_name) {
    constexpr std::uint8_t kTypes[kNameAttributes] = {6, 10, 11, 3};
    const std::string_view values[kNameAttributes] = {"DE", "Example Organisation", "Protection",
                                                      common_name};
    for (std::uint32_t i = 0; i < kNameAttributes; ++i) {
      PJCertIssuerEntry& entry = entries_[i];
      entry.typeLen = 3;
      entry.type[0] = 0x55;
      entry.type[1] = 0x04;
      entry.type[2] = kTypes[i];
      std::ranges::copy(values[i], entry.value);
      entry.valueLen = size32(values[i]);
      entry.valueTag = 19;
    }
  }
  PJCertIssuer* issuer() { return &issuer_; }

 private:
  PJCertIssuerEntry entries_[kNameAttributes] = {};
  PJCertIssuer issuer_ = {entries_, kNameAttributes, kNameAttributes};
};

class Builder {
 public:
  explicit Builder(Version version) : version_(version), label_(GetHandleLabel()) {
    const std::string_view text = version == Version::k60    ? "6.0"
                                  : version == Version::k111 ? "1.1.1"
                                                             : "1.1.2";
    need(GLSetVersion(label_, octets(text), size32(text)) == 0, "version");
  }
  Builder(const Builder&) = delete;
  Builder& operator=(const Builder&) = delete;
  ~Builder() { FreeHandleLabel(label_); }

  void owner() {
    const std::string_view title = "internal";
    const Bytes serial = noise(8, 1);
    need(SetLabel(label_, octets(title), size32(title)) == 0 &&
             SetHeadSignAlg(label_, octets("sha256WithRSAEncryption"), 23) == 0 &&
             SetEncryptHead(label_, octets("AES"), 3, 0) == 0 &&
             SetHeadModifyTime(label_, kNow) == 0,
         "head");
    if (version_ == Version::k60) {
      need(SetHeadSerialNum(label_, serial.data(), size32(serial)) == 0, "serial number");
    } else {
      need(SetCertSerialAndIssuerToHead(label_, serial.data(), size32(serial), issuer_.issuer()) ==
               0,
           "issuer");
    }
  }

  void signatures(const Bytes& signer = certificate()) {
    Bytes value = noise(signer.size() < 256 ? 64 : 256, 2);
    need(SetHeadSignCert(label_, signer.data(), size32(signer)) == 0 &&
             SetHeadSignValue(label_, value.data(), size32(value)) == 0,
         "head signature");
    if (version_ == Version::k112) {
      std::string name = "sha256WithRSAEncryption";
      Bytes cert = signer;
      const SignAttribute attribute = {name.data(), value.data(), size32(value), cert.data(),
                                       size32(cert)};
      need(SetBodySignAttr(label_, 0, &attribute) == 0, "body signature");
    } else {
      need(SetBodySignCert(label_, signer.data(), size32(signer)) == 0 &&
               SetBodySigVal(label_, value.data(), size32(value)) == 0,
           "body signature");
    }
  }

  void recipient(std::uint32_t number, bool in_head) {
    Bytes serial = noise(8, 100 + number);
    Bytes key = noise(140, 1000 + number);  // a file key as SM2 wraps it
    Bytes subject = {0x30, 0x00};
    PrivilegeEntry pairs[] = {{1, 10}, {2, 20}};
    const EnvelopeInfo envelope = {octets("SM2"), 3,           serial.data(),   8,
                                   key.data(),    size32(key), issuer_.issuer()};
    const PrivilegeInfo privilege = {subject.data(), size32(subject), 1, 5, 2, 1, 0, 1, 100, 200, 2,
                                     pairs};
    need(!in_head || AddEnvelopeToHead(label_, &envelope) == 0, "head envelope");
    need(ADDigitEnvlopeToBody(label_, &envelope, &privilege) == 0, "body envelope");
  }

  void log(std::uint32_t number) {
    const std::string text = "opened by Alice Example";
    const std::string place = "from workstation ws-0001.example.org";
    Bytes session = noise(8, number);
    Bytes address = {10, 0, 0, 1};
    const LogInfo log = {
        number % 100,    octets(text),   size32(text),    reader_.issuer(), session.data(),
        size32(session), address.data(), size32(address), kNow + number,    3,
        octets(place),   size32(place)};
    need(AddLog(label_, &log) == 0, "log");
  }

  void extension(std::uint32_t type) {
    const Bytes value = noise(32, type);
    need(AddExtendValue(label_, type, value.data(), size32(value)) == 0, "extension");
  }

  void markings() {
    Bytes data = noise(64, 3);
    std::string text = "confidential";
    const WaterMark mark = {data.data(), 32, data.data(), 32, 1, 2, text.data(), 0, kNow};
    StampRecord stamp = {};
    stamp.name = octets(text);
    stamp.nameLen = size32(text);
    stamp.seal.name = octets("seal");
    stamp.seal.nameLen = 4;
    stamp.seal.meta = {data.data(),         0, kNow, octets("made by"), 7, kNow, kNow + 1,
                       octets("valid for"), 9};
    stamp.seal.type = 1;
    stamp.seal.data = stamp.seal.element = stamp.seal.bits = stamp.bits = data.data();
    stamp.seal.dataLen = stamp.seal.bitsLen = stamp.bitsLen = size32(data);
    stamp.stamp = {text.data(), 0, {1, 2, 300, 70000}, text.data(), 0, kNow, data.data(), 40};
    need(SetWaterMarkInfo(label_, &mark) == 0 && SetStampInfo(label_, &stamp) == 0, "markings");
    const Finger finger = {data.data(), 16, data.data(), 16, data.data(), 16, 7, {0, nullptr}};
    // Without entries it gives -1, but the record is stored.
    static_cast<void>(SetFingerPrintInfo(label_, &finger));
  }

  void file() {
    const FileCreatorInfo creator = {octets("2026-0042"), 9, octets("Alice Example"), 13,
                                     static_cast<std::uint32_t>(kNow)};
    const ContentAttrInfo content = {
        1,        3,        1048576, octets("report.pdf"), 10, octets("Annual report"), 13, kNow,
        kNow + 1, kNow + 2, kNow + 3};
    need(SetBodyFileCreator(label_, &creator) == 0 && SetContentAtrr(label_, &content) == 0,
         "file");
  }

  [[nodiscard]] Sample finish(std::string name, std::uint32_t entries) {
    Sample sample{std::move(name), version_, entries, {}};
    std::uint32_t length = 0;
    need(EncodeLabel(label_, nullptr, &length) == 0, "size");
    sample.bytes.resize(length);
    need(EncodeLabel(label_, sample.bytes.data(), &length) == 0, "encode");
    return sample;
  }

 private:
  Version version_;
  TqLabel label_;
  Name issuer_{"Example Root Authority"};
  Name reader_{"Alice Example"};
};

Sample labelled(std::string name, Version version, std::uint32_t logs) {
  Builder builder(version);
  builder.owner();
  builder.signatures();
  builder.markings();
  builder.file();
  if (version != Version::k60) {
    for (std::uint32_t i = 0; i < 3; ++i) builder.recipient(i, true);
  }
  for (std::uint32_t i = 0; i < 3; ++i) builder.extension(i);
  for (std::uint32_t i = 0; i < logs; ++i) builder.log(i);
  return builder.finish(std::move(name), logs + (version == Version::k60 ? 3 : 9));
}

}  // namespace

Sample small_label() {
  Builder builder(Version::k111);
  builder.owner();
  builder.signatures({0x30, 0x00});  // known to everybody who reads it
  builder.file();
  builder.recipient(0, false);
  return builder.finish("small", 1);
}

Sample typical_label(Version version) {
  const char* const name = version == Version::k60    ? "typical-6.0"
                           : version == Version::k111 ? "typical-1.1.1"
                                                      : "typical-1.1.2";
  return labelled(name, version, 5);
}

Sample large_label() {
  constexpr std::uint32_t kRecipients = 1000;
  constexpr std::uint32_t kLogs = 10000;
  Builder builder(Version::k111);
  builder.owner();
  builder.signatures();
  builder.file();
  // The interface looks for an earlier envelope of the same recipient each time.
  for (std::uint32_t i = 0; i < kRecipients; ++i) builder.recipient(i, false);
  for (std::uint32_t i = 0; i < kLogs; ++i) builder.log(i);
  return builder.finish("large", kRecipients + kLogs);
}

Sample label_with_logs(std::uint32_t logs) {
  return labelled("logs-" + std::to_string(logs), Version::k111, logs);
}

}  // namespace tq::bench
