#ifndef TQ_TESTS_ABI_GIVEN_H
#define TQ_TESTS_ABI_GIVEN_H

// What calls of the exported functions are made on, and all that they may change.

#include "abi/observed.h"

namespace tq::abi {

// What there is to release, and room for what a call makes.
template <class T, auto kFree>
struct Slot : test::Pinned {
  ~Slot() {
    for (T* each : {made, out}) kFree(each);
  }
  T* taken() { return std::exchange(made, nullptr); }

  T* made = nullptr;
  T* out = nullptr;
};
inline void release_mark(WaterMark* mark) {
  if (mark != nullptr) Released()(mark);
}

// More elements of each kind than an encoder counts without an allocation.
inline void widen(TqLabel label, const char* version) {
  for (std::uint32_t i = 0; i < 300; ++i) {
    EXPECT_EQ(AddExtendValue(label, i + 9, pattern(1).data(), 1), 0);
    if (is_multi_sign(version)) {
      EXPECT_EQ(add_signer(label, true, kSignAlg, kBodyCert, pattern(2)), 0);
    }
    if (i < 150 && !is_60(version)) {
      EXPECT_EQ(add_to_head(label, {{{7, static_cast<std::uint8_t>(i)}, recipient(1).issuer}}), 0);
    }
  }
}

// Labels in the forms that decoders take.
struct Coded {
  explicit Coded(const char* of_version) : version(of_version) {
    const Label label = full_label(version);
    full = encode(label);
    addressed = is_60(version) ? label_60_with_envelopes(2) : full;
    sealed = encode_sealed(label, pattern(200));
    body = encode(label, EncodeBodyPlaint);
    widen(label, version);
    wide = encode(label);
  }
  [[nodiscard]] std::int32_t length() const { return static_cast<std::int32_t>(addressed.size()); }

  const char* version;
  Bytes full, addressed, sealed, body, wide;
};

inline const Bytes kNew = tlv(0x30, pattern(30));
inline const std::uint8_t* const kBytesOf = kNew.data();
inline const Filled<WaterMark> kMark(2);
inline const Filled<StampRecord> kStamp(2);
inline const Filled<Finger> kFinger(2);
inline const Filled<LogInfo> kLog(2);
inline const Filled<ContentAttrInfo> kContent(2);
inline const Recipient kKnown = {{1}, {{kCommonName, 19, text("A")}}};
inline const std::uint8_t* const kOne = kKnown.serial.data();
inline const Issuer kIssuer(kKnown.issuer);
inline constexpr std::uint32_t kSpace = 1 << 15;

// What calls are made on. The labels hold all that was set at the same times.
struct Given : test::Pinned {
  explicit Given(const Coded& from)
      : coded(from),
        label(decode(from.full)),
        other(decode(from.addressed)),
        wide(decode(from.wide)) {
    set(label, GLSetVersion, text(from.version));
    set(bare, GLSetVersion, text(from.version));
    set(bare, SetBodySignCert, kBodyCert);
    EXPECT_EQ(fill_bare(bare) | GLSetFileType(bare, 7) | SetLabelPadSize(label, 5), 0);
    handle.made = GetHandleLabel();
    block.made = Asn1Malloc(8);
    EXPECT_EQ(QZAsn1SetNull(&node.made) | CreateEmurateSign(label, &signers.made), 0);
    EXPECT_EQ(CreatEmurateDigitEnvolop(&envelopes.made, other), 0);
    EXPECT_EQ(ConvertIssuerName2PJCertIssuer(kIssuer.get(), &name), 0);
    EXPECT_EQ(ConvertPJCertIssuer2IssuerName(&name, &issuer.made), 0);
    EXPECT_EQ(GetLog(label, 0, &log.made) | GetWaterMarkInfo(label, &mark.made), 0);
    EXPECT_EQ(GetStampInfo(label, &stamp.made) | GetFingerPrintInfo(label, &finger.made), 0);
  }
  ~Given() {  // the name has one attribute
    for (const ANYBUF& each : {name.type, name.value}) Asn1Free(each.data);
  }

  ANYBUF* input(const Bytes& bytes) { return input_.emplace(bytes).node(); }
  SignAttribute* signature() {
    signature_ = {algorithm_, room.data(), kSpace, more.data(), kSpace};
    return &signature_;
  }
  MultiSignData* request() {
    request_ = {nullptr, 0, room.data(), kSpace};
    return &request_;
  }
  FileCreatorInfo* creator() {
    creator_ = {room.data(), 4, more.data(), 5, 6};
    return &creator_;
  }
  ContentAttrInfo* content() {
    content_.fileName = room.data();
    content_.fileTitle = more.data();
    return &content_;
  }
  LabelSizeInfo* sizes() { return &(sizes_ = {}); }
  [[nodiscard]] std::int32_t sign(bool append) const {
    return add_signer(label, append, "SM3WithSM2Encryption", kNew, kNew);
  }
  // The children are the element's from then on.
  template <class Build>
  std::int32_t built(Build build) {
    const std::int32_t result = build(node.made, &node.out);
    if (result == 0) node.made = nullptr;
    return result;
  }

  const Coded& coded;
  const Label label, bare, other, wide;
  Bytes room = Bytes(kSpace, 0xEE), more = room;
  std::uint32_t size = kSpace, number = 77;
  std::int32_t capacity = kSpace;
  std::uint64_t time = 77;
  std::uint8_t narrow = 255, bits = 77;
  void* previous = nullptr;
  X509Name name{};
  Slot<void, Asn1Free> block;
  Slot<ANYBUF, DIFreeAnybuf> node;
  Slot<TqLabelHandle, FreeHandleLabel> handle;
  Slot<SignEnum, DestroySignEmura> signers;
  Slot<DigitEnvolopEnum, DestroyEmura> envelopes;
  Slot<PJCertIssuer, FreeIssuerName> issuer;
  Slot<LogInfo, FreeLog> log;
  Slot<WaterMark, release_mark> mark;
  Slot<StampRecord, FreeStampA> stamp;
  Slot<Finger, FreeFingerPrintInfo> finger;

 private:
  std::optional<test::Input> input_;
  char algorithm_[64] = {};
  SignAttribute signature_{};
  MultiSignData request_{};
  FileCreatorInfo creator_{};
  ContentAttrInfo content_{};
  LabelSizeInfo sizes_{};
};

// All that a call may change, but for the name: that is the caller's.
struct State {
  explicit State(const Given& g) : buffers{g.room, g.more} {
    Model unsigned_one;
    unsigned_one.signers.emplace_back();
    seen = describe(observe(g.label, unsigned_one));
    for (const Label* each : {&g.label, &g.bare, &g.other, &g.wide}) {
      encoded.push_back(encode(*each, EncodeLabelPad));
    }
    for (const void* each : std::initializer_list<const void*>{
             g.block.out, g.node.out, g.handle.out, g.signers.out, g.envelopes.out, g.issuer.out,
             g.log.out, g.mark.out, g.stamp.out, g.finger.out, g.previous}) {
      made.push_back(each != nullptr);
    }
    values = {g.size, g.number, g.capacity, static_cast<std::int64_t>(g.time), g.narrow, g.bits};
  }
  bool operator==(const State&) const = default;

  std::string seen;
  std::vector<Bytes> encoded;
  std::vector<Bytes> buffers;
  std::vector<bool> made;
  std::vector<std::int64_t> values;
};

// A recipient who brings neither issuer nor pairs where he need not.
template <class Get>
std::int32_t receive(bool with_issuer, Get get) {
  Room room(kKnown);
  if (!with_issuer) room.envelope.issuer = nullptr;
  room.privilege.entries = nullptr;
  const std::int32_t result = get(&room.envelope, &room.privilege);
  if (!with_issuer) FreeIssuerName(room.envelope.issuer);
  Asn1Free(room.privilege.entries);
  return result;
}

}  // namespace tq::abi

#endif
