// What happens when there is no memory, and how little of it whole labels need. The test program's
// own allocator stands in front of the libraries' pair.

#include "abi/records.h"
#include "unit/support/allocations.h"

namespace tq::abi {
namespace {

using test::allocations;
using test::fail_each_allocation;

// No test of this program may leave anything behind.
class LeakCheck : public testing::EmptyTestEventListener {
 public:
  void OnTestStart(const testing::TestInfo& /*test*/) override { before_ = allocations().blocks; }
  void OnTestEnd(const testing::TestInfo& test) override {
    if (test.result()->Failed()) return;
    EXPECT_EQ(allocations().blocks, before_) << "not released";
  }

 private:
  std::size_t before_ = 0;
};
[[maybe_unused]] const bool kLeaksAreChecked = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new LeakCheck);
  return true;
}();

class EachFailure : public testing::TestWithParam<const char*> {
 protected:
  const Label label_ = full_label(GetParam());
};

TEST_P(EachFailure, OfEncodingLeavesLabelAndBufferAsTheyWere) {
  for (const Getter how : {EncodeLabel, EncodeLabelPad, EncodeBodyPlaint, GetSignatureMessage,
                           sealed<EncodeLabelEncrypted>, sealed<EncodeLabelPadEncrypted>}) {
    const Bytes expected = encode(label_, how);
    fail_each_allocation([&] {
      Bytes buffer(expected.size(), 0xEE);
      std::uint32_t size = size32(buffer);
      const bool succeeded = how(label_, buffer.data(), &size) == 0;
      EXPECT_EQ(size, expected.size());
      EXPECT_EQ(buffer, succeeded ? expected : Bytes(expected.size(), 0xEE));
      return succeeded;
    });
    EXPECT_EQ(encode(label_, how), expected);
  }
}

TEST_P(EachFailure, OfDecodingMakesNoHandle) {
  const Bytes der = encode(label_);
  const Bytes sealed = encode_sealed(label_, pattern(200));
  const Bytes body = encode(label_, EncodeBodyPlaint);
  fail_each_allocation([&] {
    TqLabel plain = nullptr;
    TqLabel opened = nullptr;
    Bytes room(200, 0xEE);
    std::uint32_t size = 200;
    const bool decoded = DecodeLabel(der.data(), size32(der), &plain) == 0;
    EXPECT_EQ(plain != nullptr, decoded);
    FreeHandleLabel(plain);
    const bool unsealed =
        DecodeLabelEncrypted(sealed.data(), size32(sealed), room.data(), &size, &opened) == 0;
    EXPECT_EQ(opened != nullptr, unsealed);
    EXPECT_EQ(room, unsealed ? pattern(200) : Bytes(200, 0xEE));
    const bool filled = DecodeLabelDecrypted(opened, body.data(), size32(body)) == 0;
    FreeHandleLabel(opened);
    return decoded && unsealed && filled;
  });
}

TEST_P(EachFailure, OfASetterLosesNothing) {
  const Bytes before = get(label_, GetCustom);
  const Bytes after(before.rbegin(), before.rend());
  fail_each_allocation([&] {
    const bool succeeded = SetCustom(label_, after.data(), size32(after)) == 0;
    EXPECT_EQ(get(label_, GetCustom), succeeded ? after : before);
    return succeeded;
  });
}

// One label that comes to hold everything, and whose getters make a copy of it.
TEST_P(EachFailure, OfAnyCallLosesNothing) {
  const Filled<WaterMark> mark;
  const Filled<StampRecord> stamp;
  const Filled<Finger> finger;
  const Filled<ContentAttrInfo> content;
  const Bytes version = text(GetParam());
  const bool v60 = is_60(GetParam());
  fail_each_allocation([&] {
    const Label label;
    SignEnum* signatures = nullptr;
    Bytes room(32);
    SignAttribute out{nullptr, room.data(), 32, room.data(), 32};
    const bool succeeded =
        label && GLSetVersion(label, version.data(), size32(version)) == 0 &&
        fill_bare(label) == 0 && SetHeadSignAlg(label, text(kSignAlg).data(), 23) == 0 &&
        add_log(label, 1) == 0 && AddExtendValue(label, 1, room.data(), 32) == 0 &&
        (v60 || add_to_head(label, {recipient(1)}) == 0) &&
        (v60 || add_to_body(label, {recipient(1)}, {kSubject, {}, {{1, 2}}}) == 0) &&
        SetWaterMarkInfo(label, &mark.record) == 0 && SetStampInfo(label, &stamp.record) == 0 &&
        SetFingerPrintInfo(label, &finger.record) == 0 &&
        SetContentAtrr(label, &content.record) == 0 && take<WaterMark>(GetWaterMarkInfo, label) &&
        take<StampRecord>(GetStampInfo, label) && take<Finger>(GetFingerPrintInfo, label) &&
        take<LogInfo>(GetLog, label, 0U) &&
        add_signer(label, false, kSignAlg, kBodyCert, pattern(32)) == 0 &&
        add_signer(label, true, kSignAlg, kBodyCert, pattern(32)) == 0 &&
        SetLabelPadSize(label, 9) == 0 && CreateEmurateSign(label, &signatures) == 0 &&
        GetNextSign(signatures, &out) == 0;
    EXPECT_EQ(DestroySignEmura(signatures), 0);
    return succeeded;
  });
}

INSTANTIATE_TEST_SUITE_P(Each, EachFailure, testing::ValuesIn(kVersions), name_of);

std::size_t calls_of(const auto& action) {
  const std::size_t before = allocations().calls;
  action();
  return allocations().calls - before;
}

TEST(Allocations, AreOnePerListEntryAndAFew) {
  EXPECT_EQ(calls_of([] { const Label label; }), 1U);
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Bytes plain = encode(label);
    const std::size_t bare = calls_of([&] { EXPECT_TRUE(decode(plain)); });
    EXPECT_LE(bare, 4U + (is_60(version) ? 0 : 1)) << "the issuer has a second attribute";
    for (std::uint32_t i = 0; i < 50; ++i) {
      EXPECT_EQ(AddExtendValue(label, i, pattern(4).data(), 4), 0);
    }
    const Bytes der = encode(label);
    EXPECT_LE(calls_of([&] { EXPECT_TRUE(decode(der)); }), bare + 50);
    Bytes buffer(der.size());
    std::uint32_t size = size32(buffer);
    EXPECT_LE(calls_of([&] { EXPECT_EQ(EncodeLabel(label, buffer.data(), &size), 0); }), 3U);
    EXPECT_EQ(calls_of([&] { EXPECT_EQ(HavePadded(der.data(), size32(der), &size), 0); }), 0U);
  }
}

}  // namespace
}  // namespace tq::abi
