// Random sequences of calls against a model of what the label holds. What one call at a time cannot
// show: fields that share bytes with a buffer that a later call releases, lists in an order that
// only a deletion or a re-keying gives them, bodies that take the place of others.
//
// A failure names its seed and step; TQLABEL_SEED=N replays that one seed.

#include "abi/observed.h"
#include "abi/random_fields.h"

namespace tq::abi {
namespace {

constexpr std::uint32_t kStepsPerSeed = 200;
constexpr std::uint32_t kSeeds = 6;

class Driver : public FieldDriver {
 public:
  using FieldDriver::FieldDriver;

  void step() {
    static constexpr void (Driver::*kCalls[])() = {
        &Driver::set_bytes,  &Driver::set_bytes,    &Driver::set_value,  &Driver::set_signature,
        &Driver::set_cipher, &Driver::set_issuer,   &Driver::set_record, &Driver::set_marking,
        &Driver::set_signer, &Driver::add_envelope, &Driver::add_log,    &Driver::add_extension,
        &Driver::remove,     &Driver::set_count,    &Driver::rekey,      &Driver::keep_body,
        &Driver::swap_body,  &Driver::round_trip,   &Driver::round_trip};
    (this->*kCalls[below(std::size(kCalls))])();
    check(label_, model_);
  }

 private:
  void add_envelope() {
    std::string algorithm = below(6) == 0 ? "unknown" : one_of(kWrappings);
    Envelope made{{one_of(kSerials), full_name()}, algorithm, some(300), sequence(), {}, {}};
    made.key.push_back(1);
    Issuer issuer(made.person.issuer);
    EnvelopeInfo envelope{};
    envelope.alg = reinterpret_cast<std::uint8_t*>(algorithm.data());
    envelope.algLen = static_cast<std::uint8_t>(algorithm.size());
    envelope.serial = made.person.serial.data();
    envelope.serialLen = static_cast<std::uint8_t>(made.person.serial.size());
    envelope.key = made.key.data();
    envelope.keyLen = size32(made.key);
    envelope.issuer = &issuer.record();
    PrivilegeEntry pairs[3] = {};
    for (PrivilegeEntry& pair : pairs) {
      pair.type = static_cast<std::uint16_t>(below(65536));
      pair.value = any();
    }
    PrivilegeInfo privilege{made.subject.data(),
                            size32(made.subject),
                            1,
                            below(9),
                            below(9),
                            0,
                            1,
                            0,
                            any(),
                            40,
                            below(4),
                            pairs};
    made.values = values_of(privilege);
    for (std::uint32_t i = privilege.entryCount; i-- > 0;) {
      made.pairs.emplace_back(pairs[i].type, pairs[i].value);
    }
    const bool known = algorithm != "unknown";
    const std::int32_t expected = known && model_.v11() ? 0 : -1;
    for (const bool body : {false, true}) {
      if (below(4) == 0) continue;
      EXPECT_EQ(body ? ADDigitEnvlopeToBody(label_, &envelope, &privilege)
                     : AddEnvelopeToHead(label_, &envelope),
                expected);
      if (!model_.v11()) continue;
      auto& list = body ? model_.body_envelopes : model_.head_envelopes;
      const auto earlier = Model::find(list, made.person);
      if (earlier != list.end()) list.erase(earlier);
      if (known) list.insert(list.begin(), made);
    }
  }

  void add_log() {
    Bytes one = some(256);
    Bytes two = some(600);
    one.push_back(1);
    two.push_back(1);
    Bytes number = {0x11, static_cast<std::uint8_t>(below(256))};
    Issuer issuer(one_of(kNames));
    one.resize(std::min<std::size_t>(one.size(), 255));  // what can be read back
    const LogInfo log{below(999),    one.data(), size32(one),   &issuer.record(),
                      number.data(), 2,          number.data(), 2,
                      second(),      any(),      two.data(),    size32(two)};
    const bool taken = issuer.get()->count != 0;
    EXPECT_EQ(AddLog(label_, &log), taken ? 0 : -1);
    if (taken)
      model_.logs.insert(model_.logs.begin(), {describe(log), attributes_of(issuer.get())});
  }

  void add_extension() {
    Bytes value = some(300);
    value.push_back(1);
    const Extension made{below(4) + (flip() ? 0x10000 : 0), value};
    EXPECT_EQ(AddExtendValue(label_, made.type, value.data(), size32(value)), 0);
    model_.extensions.insert(model_.extensions.begin(), made);
  }

  void remove() {
    const std::uint32_t which = below(12);
    if (which == 0) {
      EXPECT_EQ(DelAlLog(label_), 0);
      model_.logs.clear();
    } else if (which < 4) {
      // 0 removes all; another position removes one and gives -1 all the same.
      const auto position = static_cast<std::int32_t>(below(5)) - 1;
      const bool all = position == 0 && !model_.logs.empty();
      const bool there = position > 0 && position < static_cast<std::int32_t>(model_.logs.size());
      EXPECT_EQ(DelLog(label_, position), all ? 0 : -1);
      if (all) model_.logs.clear();
      if (there) model_.logs.erase(model_.logs.begin() + position);
    } else if (which < 8) {
      const std::uint32_t type = below(4);
      const auto found = std::find_if(model_.extensions.begin(), model_.extensions.end(),
                                      [&](const Extension& each) { return each.type == type; });
      const bool there = found != model_.extensions.end();
      // The high bits do not count.
      EXPECT_EQ(DelExtendAttr(label_, type + (flip() ? 0x30000 : 0)), there ? 0 : -1);
      if (there) model_.extensions.erase(found);
    } else {
      remove_person({one_of(kSerials), one_of(kNames)});
    }
  }

  void remove_person(const Person& person) {
    const Issuer issuer(person.issuer);
    const auto in_head = Model::find(model_.head_envelopes, person);
    const auto in_body = Model::find(model_.body_envelopes, person);
    const bool head = in_head != model_.head_envelopes.end();
    const bool both = head && in_body != model_.body_envelopes.end();
    EXPECT_EQ(
        DelPrivilegeFromLabel(label_, person.serial.data(), size32(person.serial), issuer.get()),
        both ? 0 : -1);
    if (head) model_.head_envelopes.erase(in_head);
    if (both) model_.body_envelopes.erase(in_body);
  }

  void set_count() {
    const Person person{one_of(kSerials), one_of(kNames)};
    const Issuer issuer(person.issuer);
    const std::uint32_t count = any();
    const auto found = Model::find(model_.body_envelopes, person);
    const bool there = found != model_.body_envelopes.end();
    EXPECT_EQ(SetAlreadyReadCountsToLabel(label_, person.serial.data(), size32(person.serial),
                                          issuer.get(), count),
              there ? 0 : -1);
    if (there) found->values[kReadCount] = count;
  }

  // All envelopes or the first few; reading one before it gets its key is what moves on.
  void rekey() {
    DigitEnvolopEnum* enumerator = nullptr;
    auto& list = model_.body_envelopes;
    ASSERT_EQ(CreatEmurateDigitEnvolop(&enumerator, label_), list.empty() ? -1 : 0);
    if (list.empty()) return;
    std::reverse(list.begin(), list.end());
    model_.head_envelopes.clear();
    std::size_t current = 0;
    std::size_t next = 0;
    for (std::uint32_t calls = below(3 * list.size()); calls != 0 && current < list.size();
         --calls) {
      EXPECT_EQ(HaveNextDigitEnvolop(enumerator), next < list.size() ? 0 : 1);
      if (below(5) != 0) {
        const auto read = [&](std::uint8_t* buffer, std::uint32_t* length) {
          return GetCurrentDigitEnvolop(enumerator, buffer, length);
        };
        EXPECT_EQ(fetch(read), list[current].subject);
        next = current + 1;
      }
      Bytes key = some(200);
      key.push_back(2);
      EXPECT_EQ(
          SetCurrentEmuEnvolop(enumerator, key.data(), size32(key) - 1, key.data(), size32(key)),
          0);
      Envelope made = list[current];
      list[current].key = key;
      made.key.assign(key.begin(), key.end() - 1);
      const auto earlier = Model::find(model_.head_envelopes, made.person);
      if (earlier != model_.head_envelopes.end()) model_.head_envelopes.erase(earlier);
      model_.head_envelopes.insert(model_.head_envelopes.begin(), made);
      current = next;
    }
    if (current == list.size()) {
      std::uint8_t byte = 0;
      EXPECT_EQ(SetCurrentEmuEnvolop(enumerator, &byte, 1, &byte, 1), -1) << "all have theirs";
    }
    EXPECT_EQ(DestroyEmura(enumerator), 0);
  }

  void keep_body() {
    if (!model_.body_encodes()) return;
    kept_ = {encode(label_, EncodeBodyPlaint), model_.written()};
  }

  // A body that does not decode leaves none behind, unless it is no element at all.
  void swap_body() {
    if (kept_.first.empty()) return;
    Bytes body = kept_.first;
    const std::uint32_t which = below(4);
    if (which == 0) body.pop_back();
    // Where the certificate lies, between the two, any element passes.
    if (which == 1) body[parse(body).children[flip() ? 0 : 2].start] = 0x0A;
    EXPECT_EQ(DecodeLabelDecrypted(label_, body.data(), size32(body)), which < 2 ? -1 : 0);
    if (which == 1) model_ = model_.with_empty_body();
    if (which > 1) model_ = model_.with_body_of(kept_.second);
  }

  void round_trip() {
    EXPECT_EQ(SetLabelPadSize(label_, below(300)), 0);
    const bool padded = flip();
    const bool plain = flip();
    const Bytes der = plain ? round_trip_plain(padded) : round_trip_sealed(padded);
    EXPECT_EQ(der.empty(), !model_.head_encodes() || (plain && !model_.body_encodes()));
    if (der.empty()) return;
    const auto size = static_cast<std::int32_t>(der.size());
    std::uint32_t flag = 9;
    EXPECT_EQ(HavePadded(der.data(), size32(der), &flag), 0);
    EXPECT_EQ(flag, padded ? 1U : 0U);
    const bool needs = !model_.cipher.empty();
    EXPECT_EQ(LabelBodyWeatherEnc(der.data(), size), needs ? 1 : 0);
    const Person person{one_of(kSerials), one_of(kNames)};
    const bool found = Model::find(model_.head_envelopes, person) != model_.head_envelopes.end();
    EXPECT_EQ(HavePrivilegeOfHead(der.data(), size, person.serial.data(), size32(person.serial),
                                  Issuer(person.issuer).get()),
              needs && found ? 1 : 0);
  }

  Bytes round_trip_plain(bool padded) {
    Bytes der = encode(label_, padded ? EncodeLabelPad : EncodeLabel);
    if (der.empty()) return der;
    Label decoded = decode(der);
    EXPECT_EQ(encode(decoded), encode(label_));
    adopt(std::move(decoded), model_.written());
    return der;
  }

  // Where the body does not encode, any bytes are as good as an encrypted one.
  Bytes round_trip_sealed(bool padded) {
    Bytes body = encode(label_, EncodeBodyPlaint);
    EXPECT_EQ(body.empty(), !model_.body_encodes());
    const bool opens = !body.empty();
    if (!opens) body = pattern(200);
    const Bytes plain = body;
    for (std::uint8_t& octet : body) octet ^= 0x5A;
    Bytes der =
        encode_sealed(label_, body, padded ? EncodeLabelPadEncrypted : EncodeLabelEncrypted);
    if (der.empty()) return der;
    Bytes sealed(body.size());
    std::uint32_t length = size32(sealed);
    TqLabel slot = nullptr;
    EXPECT_EQ(DecodeLabelEncrypted(der.data(), size32(der), sealed.data(), &length, &slot), 0);
    EXPECT_EQ(sealed, body);
    Label decoded(slot);
    Model expected = model_.written().with_empty_body();
    check(decoded, expected);
    if (opens) {
      EXPECT_EQ(DecodeLabelDecrypted(decoded, plain.data(), size32(plain)), 0);
      EXPECT_EQ(encode(decoded, EncodeBodyPlaint), plain);
      expected = model_.written();
    }
    adopt(std::move(decoded), expected);
    return der;
  }

  // The new handle holds what the old one did; which of the two goes on does not matter.
  void adopt(Label decoded, const Model& expected) {
    check(decoded, expected);
    if (flip()) return;
    label_ = std::move(decoded);
    model_ = expected;
  }

  std::pair<Bytes, Model> kept_;  // a body as bytes, and what it holds
};

class RandomCalls : public testing::TestWithParam<const char*> {};

TEST_P(RandomCalls, LeaveInALabelWhatTheirModelHolds) {
  const char* const asked = std::getenv("TQLABEL_SEED");
  const std::uint32_t first = asked == nullptr ? 1 : static_cast<std::uint32_t>(std::atoi(asked));
  const std::uint32_t seeds = asked != nullptr || quick() ? 1 : kSeeds;
  for (std::uint32_t seed = first; seed < first + seeds; ++seed) {
    Driver driver(GetParam(), seed);
    for (std::uint32_t step = 0; step < kStepsPerSeed; ++step) {
      SCOPED_TRACE("TQLABEL_SEED=" + std::to_string(seed) + ", step " + std::to_string(step));
      driver.step();
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EachVersion, RandomCalls, testing::ValuesIn(kVersions));

}  // namespace
}  // namespace tq::abi
