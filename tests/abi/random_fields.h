#ifndef TQ_TESTS_ABI_RANDOM_FIELDS_H
#define TQ_TESTS_ABI_RANDOM_FIELDS_H

// Random calls of the setters that store one value or one record, each with what it does to the
// model of the label.

#include <random>
#include <span>

#include "abi/observed.h"

namespace tq::abi {

inline const char* const kSignAlgorithms[] = {"sm3WithSM2Encryption", "sha256WithRSAEncryption"};
inline const Name kNames[] = {
    {{kCountry, 19, text("XX")}, {kCommonName, 12, text("Root")}},
    {{kCommonName, 19, text("Root")}},
    {{kEmail, 4, text("a@b.xx")}, {kCommonName, 30, Bytes{0, 'R'}}},
    Name(10, {kCommonName, 19, pattern(128)}),
    {},  // finds everybody; nobody is stored with it
};
inline const Bytes kSerials[] = {{1}, {2}, {0, 0x80}, pattern(128)};

// What a driver chooses by: a generator, or bytes for as long as they last.
class Choices {
 public:
  explicit Choices(std::uint32_t seed) : random_(seed) {}
  explicit Choices(std::span<const std::uint8_t> bytes) : bytes_(bytes), given_(true) {}

  [[nodiscard]] bool used_up() const { return given_ && bytes_.empty(); }
  std::uint32_t any() {
    if (!given_) return static_cast<std::uint32_t>(random_());
    return octet() | octet() << 8 | octet() << 16 | octet() << 24;
  }
  std::uint32_t below(std::size_t limit) {
    const bool few = given_ && limit <= 256;
    return (few ? octet() : any()) % static_cast<std::uint32_t>(limit);
  }

 private:
  std::uint32_t octet() {
    if (bytes_.empty()) return 0;
    const std::uint8_t first = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return first;
  }

  std::mt19937 random_;
  std::span<const std::uint8_t> bytes_;
  bool given_ = false;
};

class FieldDriver {
 public:
  FieldDriver(const char* version, Choices choices) : choices_(choices) {
    model_.version = version;
    set(label_, GLSetVersion, text(version));
  }

  [[nodiscard]] bool used_up() const { return choices_.used_up(); }
  [[nodiscard]] TqLabel label() const { return label_; }

 protected:
  std::uint32_t below(std::size_t limit) { return choices_.below(limit); }
  std::uint32_t any() { return choices_.any(); }
  bool flip() { return below(2) == 0; }
  template <class Values>
  const auto& one_of(const Values& values) {
    return values[below(std::size(values))];
  }
  // Often nothing, which many calls take for a sign.
  Bytes some(std::size_t limit) { return pattern(below(5) == 0 ? 0 : below(limit), below(26)); }
  Bytes sequence(std::size_t limit = 300) { return tlv(0x30, tlv(0x04, some(limit))); }
  Recipient somebody() { return {one_of(kSerials), one_of(kNames)}; }

  void set_bytes() {
    const std::size_t index = below(std::size(kBytes));
    const ByteRule& rule = kBytes[index];
    Bytes bytes = flip() ? pattern(64, below(26)) : some(300);
    if (index == kHeadCertificate || index == kCertificate) bytes = flip() ? Bytes{} : sequence();
    const bool taken = rule.takes(size32(bytes));
    EXPECT_EQ(rule.set(label_, pointer(bytes), size32(bytes)), taken ? 0 : -1) << rule.name;
    bytes.resize(size32(bytes) & rule.counted);
    if (taken) model_.bytes[index] = bytes;
  }

  void set_value() {
    const std::size_t time = below(std::size(kTimes));
    std::uint64_t& set = model_.times[time];
    if (kTimes[time].set != nullptr) {
      set = flip() ? below(3) : kLastSecond - below(3);
      EXPECT_EQ(kTimes[time].set(label_, set), 0);
    } else {
      const std::time_t before = std::time(nullptr);
      const std::uint64_t ago = time == kCreated ? 0 : 1;  // a second: it has passed already
      EXPECT_EQ((time == kCreated ? SetHeadCreateTime : AbolishSF)(label_), 0);
      EXPECT_EQ(kTimes[time].get(label_, &set), 0);
      EXPECT_GE(set + ago, static_cast<std::uint64_t>(before));
      EXPECT_LE(set + ago, static_cast<std::uint64_t>(std::time(nullptr)));
    }
    const std::size_t number = below(std::size(kNumbers));
    const std::uint32_t value = flip() ? any() : below(300);
    const bool taken = number != kFileAlign || is_aligned(model_.version);
    EXPECT_EQ(kNumbers[number].set(label_, value), taken ? 0 : -1);
    if (taken) model_.numbers[number] = value;
  }

  // An unknown name removes the earlier one in the "1.1" family and is as good as any in "6.0".
  void set_signature() {
    const std::string name = below(5) == 0 ? "unknown" : one_of(kSignAlgorithms);
    const bool known = name != "unknown" || model_.v60();
    EXPECT_EQ(SetHeadSignAlg(label_, text(name).data(), size32(text(name))), known ? 0 : -1);
    model_.sign_algorithm = known ? name : "";
  }

  void set_cipher() {
    static const char* const kCiphers[] = {"AES.256.CBC", "SM4", "", "unknown"};
    const std::string name = one_of(kCiphers);
    const std::uint32_t bits = below(256);
    const bool taken = name != "unknown" || model_.v60();
    const std::uint32_t length = kHighBits | size32(text(name));
    EXPECT_EQ(SetEncryptHead(label_, text(name + "?").data(), length, kHighBits | bits),
              taken ? 0 : -1);
    if (!taken) return;
    model_.cipher = model_.v60() ? name : name.substr(0, name.find('.'));
    if (model_.v60() || !name.empty()) model_.feedback_bits = bits;
  }

  void set_issuer() {
    const auto [serial, name] = somebody();
    const bool taken = model_.v60() || !name.empty();
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label_, serial.data(), kHighBits | size32(serial),
                                           Issuer(name).get()),
              taken ? 0 : -1);
    model_.bytes[kSerial] = serial;
    if (taken && !model_.v60()) model_.issuer = name;
  }

  void set_content() {
    const Filled<ContentAttrInfo> filled(any());
    const ContentAttrInfo& content = filled.record;
    const bool fresh = model_.bytes[kName].empty() && model_.bytes[kTitle].empty();
    EXPECT_EQ(SetContentAtrr(label_, &content), fresh ? 0 : -1) << "works once";
    if (!fresh) return;
    model_.bytes[kName].assign(content.fileName, content.fileName + content.fileNameLen);
    model_.bytes[kTitle].assign(content.fileTitle, content.fileTitle + content.fileTitleLen);
    const std::uint32_t numbers[] = {content.fileType, content.secrecy, content.fileSize};
    std::ranges::copy(numbers, model_.numbers);
    const std::uint64_t times[] = {content.modifyTime, content.expiryTime, content.abolishTime,
                                   content.destroyTime};
    std::ranges::copy(times, model_.times + kModified);
  }

  void set_creator() {
    Bytes number = some(40);
    Bytes second = some(40);
    const FileCreatorInfo creator{number.data(), size32(number), second.data(), size32(second),
                                  below(1000)};
    if (flip()) {
      EXPECT_EQ(SetBodyFileCreator(label_, &creator), 0);
      if (!second.empty()) model_.creator = second;
      model_.creator_time = creator.time;
    } else {
      number.push_back(0);
      EXPECT_EQ(GLSetFileNo(label_, reinterpret_cast<const char*>(number.data())), 0);
    }
    if (!number.empty()) model_.file_number = number;
  }

  void set_marking() {
    const std::uint32_t which = below(3);
    if (which == 0) {
      const Filled<WaterMark> mark(any());
      EXPECT_EQ(SetWaterMarkInfo(label_, &mark.record), 0);
      model_.water_mark = describe(mark.record);
    } else if (which == 1) {
      Filled<StampRecord> filled(any());
      EXPECT_EQ(SetStampInfo(label_, &filled.record), 0);
      // The second text is stored with its own length, but with the bytes of the data.
      Stamp& stamp = filled.record.stamp;
      Bytes stored(stamp.data, stamp.data + stamp.dataLen);
      stored.resize(stamp.text2Len, 0);
      stamp.text2 = reinterpret_cast<char*>(stored.data());
      model_.stamp = describe(filled.record);
    } else {
      const Filled<Finger> finger(any());
      EXPECT_EQ(SetFingerPrintInfo(label_, &finger.record), 0);
      const FingerList& list = finger.record.list;
      std::reverse(list.entries, list.entries + list.count);
      model_.finger = describe(finger.record);
    }
  }

  // Outside "1.1.2" there is one signature: what its own setters refuse is passed over.
  void set_signer() {
    const bool append = flip();
    const Signer signer{one_of(kSignAlgorithms), some(70), sequence()};
    EXPECT_EQ(add_signer(label_, append, signer.algorithm.c_str(), signer.cert, signer.value), 0);
    if (model_.multi()) {
      // The record that is there from the start is empty: appending leaves it so.
      if (append && model_.signers.empty()) model_.signers.emplace_back();
      if (!append) model_.signers.clear();
      // A null value is a missing one, and leaves its record empty, too.
      model_.signers.push_back(signer.value.empty() ? Signer{} : signer);
    } else if (!signer.value.empty()) {
      model_.bytes[kCertificate] = signer.cert;
      if (signer.value.size() % 32 == 0) model_.bytes[kSignature] = signer.value;
    }
  }

  Choices choices_;
  Label label_;
  Model model_;
};

}  // namespace tq::abi

#endif
