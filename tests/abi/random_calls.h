#ifndef TQ_TESTS_ABI_RANDOM_CALLS_H
#define TQ_TESTS_ABI_RANDOM_CALLS_H

// Random sequences of calls against a model of what the label holds. What one call at a time cannot
// show: fields that share bytes with a buffer that a later call releases, lists in an order that
// only a deletion or a re-keying gives them, bodies that take the place of others.

#include "abi/random_fields.h"

namespace tq::abi {

class Driver : public FieldDriver {
 public:
  using FieldDriver::FieldDriver;

  void step() {
    static constexpr void (Driver::*kCalls[])() = {
        &Driver::set_bytes,     &Driver::set_bytes,  &Driver::set_value,    &Driver::set_signature,
        &Driver::set_cipher,    &Driver::set_issuer, &Driver::set_content,  &Driver::set_creator,
        &Driver::set_marking,   &Driver::set_signer, &Driver::add_envelope, &Driver::add_new_log,
        &Driver::add_extension, &Driver::remove,     &Driver::set_count,    &Driver::rekey,
        &Driver::keep_body,     &Driver::swap_body,  &Driver::round_trip,   &Driver::round_trip};
    (this->*kCalls[below(std::size(kCalls))])();
    check(label_, model_);
  }

 private:
  // A failure loses the earlier envelope of the recipient all the same.
  void add_envelope() {
    static const Bytes kWrappings[] = {text("SM2"), text("rsa"), text("unknown"), Bytes(32, 'A')};
    BodyEnvelope made;
    HeadEnvelope& envelope = made.envelope;
    envelope = {somebody(), one_of(kWrappings), some(300)};
    if (below(9) == 0) envelope.to.issuer.assign(11, {kCommonName, 19, text("Root")});
    made.privileges.data = sequence();
    made.privileges.values = {flip(), any(), any(), flip(), flip(), flip(), any(), any()};
    for (std::uint32_t i = below(4); i != 0; --i) {
      made.privileges.pairs.emplace_back(static_cast<std::uint16_t>(any()), any());
    }
    const bool known = envelope.alg.size() == 3;
    const std::size_t attributes = envelope.to.issuer.size();
    const bool taken = known && attributes != 0 && attributes < 11 && !model_.v60();
    if (flip()) {
      EXPECT_EQ(add_to_head(label_, envelope), taken ? 0 : -1);
      replace_envelope(model_.head_envelopes, envelope, taken);
    } else {
      EXPECT_EQ(add_to_body(label_, envelope, made.privileges), taken ? 0 : -1);
      std::ranges::reverse(made.privileges.pairs);
      replace_envelope(model_.body_envelopes, made, taken);
    }
  }
  template <class Envelope>
  void replace_envelope(std::vector<Envelope>& list, Envelope made, bool taken) {
    if (model_.v60()) return;
    const auto earlier = Model::find(list, recipient_of(made));
    if (earlier != list.end()) list.erase(earlier);
    Bytes& name = envelope_of(made).alg;
    std::ranges::transform(name, name.begin(),
                           [](std::uint8_t letter) { return std::toupper(letter); });
    if (taken) list.insert(list.begin(), std::move(made));
  }

  void add_new_log() {
    Filled<LogInfo> log(any());
    const Name& name = one_of(kNames);
    Issuer issuer(name);
    log.record.issuer = &issuer.record();
    EXPECT_EQ(AddLog(label_, &log.record), name.empty() ? -1 : 0);
    if (!name.empty()) model_.logs.insert(model_.logs.begin(), {describe(log.record), name});
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
      remove_recipient(somebody());
    }
  }

  void remove_recipient(const Recipient& to) {
    const auto in_head = Model::find(model_.head_envelopes, to);
    const auto in_body = Model::find(model_.body_envelopes, to);
    const bool head = in_head != model_.head_envelopes.end();
    const bool both = head && in_body != model_.body_envelopes.end();
    EXPECT_EQ(DelPrivilegeFromLabel(label_, to.serial.data(), kHighBits | size32(to.serial),
                                    Issuer(to.issuer).get()),
              both ? 0 : -1);
    if (head) model_.head_envelopes.erase(in_head);
    if (both) model_.body_envelopes.erase(in_body);
  }

  void set_count() {
    const Recipient to = somebody();
    const std::uint32_t count = any();
    const auto found = Model::find(model_.body_envelopes, to);
    const bool there = found != model_.body_envelopes.end();
    EXPECT_EQ(SetAlreadyReadCountsToLabel(label_, to.serial.data(), kHighBits | size32(to.serial),
                                          Issuer(to.issuer).get(), count),
              there ? 0 : -1);
    if (there) std::get<kReadCount>(found->privileges.values) = count;
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
        EXPECT_EQ(fetch(read), list[current].privileges.data);
        next = current + 1;
      }
      Bytes key = some(200);
      key.push_back(2);
      EXPECT_EQ(
          SetCurrentEmuEnvolop(enumerator, key.data(), size32(key) - 1, key.data(), size32(key)),
          0);
      list[current].envelope.key = key;
      HeadEnvelope made = list[current].envelope;
      made.key.pop_back();
      replace_envelope(model_.head_envelopes, std::move(made), true);
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
    // Without a cipher nobody is asked for, by serial number everybody is let in.
    const Recipient to = somebody();
    auto& list = model_.head_envelopes;
    const bool found = Model::find(list, to) != list.end();
    const bool by_serial = Model::find(list, {to.serial, {}}) != list.end();
    const std::uint32_t length = kHighBits | size32(to.serial);
    EXPECT_EQ(
        HavePrivilegeOfHead(der.data(), size, to.serial.data(), length, Issuer(to.issuer).get()),
        needs && found ? 1 : 0);
    EXPECT_EQ(HavePrivilege(der.data(), size, to.serial.data(), length),
              needs && !by_serial ? -1 : 0);
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

}  // namespace tq::abi

#endif
