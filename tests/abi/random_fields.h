#ifndef TQ_TESTS_ABI_RANDOM_FIELDS_H
#define TQ_TESTS_ABI_RANDOM_FIELDS_H

// Random calls of the setters that store one value or one record, each with what it does to the
// model of the label.

#include <ctime>
#include <random>

#include "abi/model.h"

namespace tq::abi {

inline constexpr std::uint64_t kLastSecond = 253402300799;  // of the year 9999

inline const char* const kSignAlgorithms[] = {"sm3WithSM2Encryption", "sha256WithRSAEncryption"};
inline const char* const kWrappings[] = {"SM2", "RSA"};
inline const Name kNames[] = {
    {{kCountry, 19, text("XX")}, {kCommonName, 12, text("Root")}},
    {{kCommonName, 19, text("Root")}},
    {{kEmail, 22, text("a@b.xx")}, {kCommonName, 30, Bytes{0, 'R'}}},
    {{kCountry, 19, text("XX")}, {kCommonName, 19, text("Other")}},
    {},  // finds everybody; nobody is stored with it
};
inline constexpr std::uint32_t kFullNames = 4;
inline const Bytes kSerials[] = {{1}, {2}, {0, 0x80}};

class FieldDriver {
 public:
  FieldDriver(const char* version, std::uint32_t seed) : random_(seed) {
    model_.version = version;
    set(label_, GLSetVersion, text(version));
  }

 protected:
  std::uint32_t below(std::size_t limit) { return any() % static_cast<std::uint32_t>(limit); }
  std::uint32_t any() { return static_cast<std::uint32_t>(random_()); }
  bool flip() { return below(2) == 0; }
  template <class Values>
  const auto& one_of(const Values& values) {
    return values[below(std::size(values))];
  }
  // Often nothing, which many calls take for a sign.
  Bytes some(std::size_t limit) { return pattern(below(5) == 0 ? 0 : below(limit), below(26)); }
  Bytes sequence(std::size_t limit = 300) { return tlv(0x30, tlv(0x04, some(limit))); }
  std::uint64_t second() { return flip() ? below(3) : kLastSecond - below(3); }
  const Name& full_name() { return kNames[below(kFullNames)]; }

  void set_bytes() {
    const std::size_t index = below(std::size(kBytes));
    const ByteRule& rule = kBytes[index];
    Bytes bytes = some(rule.kind == Kind::kText ? 140 : 256);
    if (rule.kind == Kind::kElement)
      bytes = index == kHeadCertificate && flip() ? Bytes{} : sequence();
    if (rule.kind == Kind::kUnits && flip())
      bytes = some(5).empty() ? Bytes{} : pattern(64, below(26));
    const bool taken = rule.kind == Kind::kText    ? !bytes.empty() && bytes.size() <= 128
                       : rule.kind == Kind::kUnits ? bytes.size() % 32 == 0
                                                   : true;
    const std::uint32_t size = size32(bytes);
    bytes.push_back(0);  // so that there is a pointer to no bytes
    EXPECT_EQ(rule.set(label_, bytes.data(), size), taken ? 0 : -1) << rule.name;
    bytes.pop_back();
    if (taken) model_.bytes[index] = bytes;
  }

  void set_value() {
    const std::size_t time = below(std::size(kTimes));
    const auto before = static_cast<std::uint64_t>(std::time(nullptr)) - 1;
    if (kTimes[time].set != nullptr) {
      model_.times[time] = second();
      EXPECT_EQ(kTimes[time].set(label_, model_.times[time]), 0);
    } else {
      EXPECT_EQ((time == kCreated ? SetHeadCreateTime : AbolishSF)(label_), 0);
      EXPECT_EQ(kTimes[time].get(label_, &model_.times[time]), 0);
      EXPECT_GE(model_.times[time], before);
      EXPECT_LE(model_.times[time], before + 60);
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
    const bool known = name != "unknown" || is_60(model_.version);
    EXPECT_EQ(SetHeadSignAlg(label_, text(name).data(), size32(text(name))), known ? 0 : -1);
    model_.sign_algorithm = known ? name : "";
  }

  void set_cipher() {
    static const char* const kCiphers[] = {"AES.256.CBC", "SM4", "", "unknown"};
    const std::string name = one_of(kCiphers);
    const std::uint32_t bits = below(256);
    const bool v60 = is_60(model_.version);
    const bool taken = name != "unknown" || v60;
    const std::int32_t result = SetEncryptHead(label_, text(name + "?").data(),
                                               static_cast<std::uint32_t>(name.size()), bits);
    EXPECT_EQ(result, taken ? 0 : -1);
    if (!taken) return;
    model_.cipher = v60 ? name : name.substr(0, name.find('.'));
    if (v60 || !name.empty()) model_.feedback_bits = bits;
  }

  void set_issuer() {
    const Issuer issuer(one_of(kNames));
    const Bytes& serial = one_of(kSerials);
    const bool taken = is_60(model_.version) || issuer.get()->count != 0;
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label_, serial.data(), size32(serial), issuer.get()),
              taken ? 0 : -1);
    model_.bytes[kSerial] = serial;
    if (taken && model_.v11()) model_.issuer = attributes_of(issuer.get());
  }

  void set_record() {
    Bytes first = some(40);
    Bytes second_text = some(40);
    if (flip()) {
      const ContentAttrInfo content{below(9),
                                    below(9),
                                    below(9),
                                    first.data(),
                                    size32(first),
                                    second_text.data(),
                                    size32(second_text),
                                    second(),
                                    second(),
                                    second(),
                                    second()};
      const bool fresh = model_.bytes[kName].empty() && model_.bytes[kTitle].empty();
      EXPECT_EQ(SetContentAtrr(label_, &content), fresh ? 0 : -1) << "works once";
      if (!fresh) return;
      model_.bytes[kName] = first;
      model_.bytes[kTitle] = second_text;
      const std::uint32_t numbers[] = {content.fileType, content.secrecy, content.fileSize};
      std::copy(std::begin(numbers), std::end(numbers), model_.numbers);
      model_.times[kModified] = content.modifyTime;
      model_.times[kExpires] = content.expiryTime;
      model_.times[kAbolished] = content.abolishTime;
      model_.times[kDestroyed] = content.destroyTime;
    } else if (flip()) {
      const FileCreatorInfo creator{first.data(), size32(first), second_text.data(),
                                    size32(second_text), below(1000)};
      EXPECT_EQ(SetBodyFileCreator(label_, &creator), 0);
      if (!first.empty()) model_.file_number = first;
      if (!second_text.empty()) model_.creator = second_text;
      model_.creator_time = creator.time;
    } else {
      first.push_back(0);
      EXPECT_EQ(GLSetFileNo(label_, reinterpret_cast<const char*>(first.data())), 0);
      model_.file_number = first;
    }
  }

  void set_marking() {
    Bytes bytes = some(60);
    bytes.push_back('.');
    const std::uint32_t size = size32(bytes);
    Bytes element = sequence();
    Bytes small = sequence(60);
    std::string words(below(20), 'w');
    const auto counted = static_cast<std::uint32_t>(words.size() + 1);
    const std::uint32_t which = below(3);
    if (which == 0) {
      const WaterMark mark{bytes.data(), size,         bytes.data(), size,    below(9),
                           below(9),     words.data(), counted,      second()};
      EXPECT_EQ(SetWaterMarkInfo(label_, &mark), 0);
      model_.water_mark = describe(mark);
    } else if (which == 1) {
      const Meta meta{small.data(), static_cast<std::uint8_t>(small.size()),
                      second(),     bytes.data(),
                      size,         second(),
                      second(),     bytes.data(),
                      size};
      const Seal seal{bytes.data(), size, meta,           static_cast<std::uint8_t>(below(256)),
                      bytes.data(), size, element.data(), size32(element),
                      bytes.data(), size};
      StampRecord record{bytes.data(), size, seal, {}, bytes.data(), size};
      record.stamp = {words.data(), counted,  {1, below(9), 3, 4}, words.data(),
                      counted,      second(), bytes.data(),        size};
      EXPECT_EQ(SetStampInfo(label_, &record), 0);
      // The second text is stored with its own length, but with the bytes of the data.
      Bytes stored = bytes;
      stored.resize(counted, 0);
      record.stamp.text2 = reinterpret_cast<char*>(stored.data());
      model_.stamp = describe(record);
    } else {
      std::vector<FingerEntry> entries(1 + below(3), {small.data(), size32(small), {}});
      for (FingerEntry& entry : entries) entry.action[below(9)] = 1;
      const Finger finger{bytes.data(), size, bytes.data(), size,
                          bytes.data(), size, below(1000),  {size32_of(entries), entries.data()}};
      EXPECT_EQ(SetFingerPrintInfo(label_, &finger), 0);
      std::reverse(entries.begin(), entries.end());
      model_.finger = describe(finger);
    }
  }
  template <class Value>
  static std::uint32_t size32_of(const std::vector<Value>& values) {
    return static_cast<std::uint32_t>(values.size());
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
      model_.bytes[kBodyCertificate] = signer.cert;
      if (signer.value.size() % 32 == 0) model_.bytes[kBodySign] = signer.value;
    }
  }

  std::mt19937 random_;
  Label label_;
  Model model_;
};

}  // namespace tq::abi

#endif
