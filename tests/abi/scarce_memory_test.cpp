// What happens when there is no memory, and how little of it whole labels need. The test program's
// own allocator stands in front of the libraries' pair.

#include "abi/support.h"
#include "unit/support/allocations.h"

namespace tq::abi {
namespace {

using test::allocations;
using test::fail_each_allocation;
using test::NoLeaks;

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

TEST(Allocator, OfTheProgramServesBothLibraries) {
  const std::size_t before = allocations().calls;
  ANYBUF* node = nullptr;
  ASSERT_EQ(QZAsn1SetNull(&node), 0);
  EXPECT_GT(allocations().calls, before);
  DIFreeAnybuf(node);
  const std::size_t between = allocations().calls;
  FreeHandleLabel(GetHandleLabel());
  EXPECT_EQ(allocations().calls, between + 1) << "one block per handle";
  const NoLeaks no_leaks;
  { const Label label; }
  EXPECT_TRUE(no_leaks.hold());
}

class EachFailure : public testing::TestWithParam<const char*> {};

TEST_P(EachFailure, OfEncodingLeavesLabelAndBufferAsTheyWere) {
  Label label;
  fill_records(label, GetParam());
  const Bytes secret = pattern(200);
  for (const Getter how : {EncodeLabel, EncodeLabelPad, EncodeBodyPlaint, GetSignatureMessage}) {
    const Bytes expected = encode(label, how);
    fail_each_allocation([&] {
      Bytes buffer(expected.size(), 0xEE);
      std::uint32_t size = size32(buffer);
      const bool succeeded = how(label, buffer.data(), &size) == 0;
      EXPECT_EQ(size, expected.size());
      EXPECT_EQ(buffer, succeeded ? expected : Bytes(expected.size(), 0xEE));
      return succeeded;
    });
    EXPECT_EQ(encode(label, how), expected);
  }
  for (const SealedEncoder how : {EncodeLabelEncrypted, EncodeLabelPadEncrypted}) {
    const Bytes expected = encode_sealed(label, secret, how);
    fail_each_allocation([&] {
      std::uint32_t size = 7;
      const bool succeeded = how(label, secret.data(), size32(secret), nullptr, &size) == 0;
      EXPECT_EQ(size, succeeded ? expected.size() : 7);
      return succeeded;
    });
  }
}

TEST_P(EachFailure, OfDecodingMakesNoHandle) {
  Label label;
  fill_records(label, GetParam());
  const Bytes der = encode(label);
  const Bytes sealed = encode_sealed(label, pattern(200));
  const std::size_t decoding = fail_each_allocation([&] {
    TqLabel slot = nullptr;
    const bool succeeded = DecodeLabel(der.data(), size32(der), &slot) == 0;
    EXPECT_EQ(slot != nullptr, succeeded);
    FreeHandleLabel(slot);
    return succeeded;
  });
  EXPECT_GT(decoding, 2U);
  fail_each_allocation([&] {
    TqLabel slot = nullptr;
    Bytes room(200, 0xEE);
    std::uint32_t size = 200;
    const bool succeeded =
        DecodeLabelEncrypted(sealed.data(), size32(sealed), room.data(), &size, &slot) == 0;
    EXPECT_EQ(room, succeeded ? pattern(200) : Bytes(200, 0xEE));
    EXPECT_EQ(slot != nullptr, succeeded);
    FreeHandleLabel(slot);
    return succeeded;
  });
  const Bytes body = encode(label, EncodeBodyPlaint);
  fail_each_allocation([&] {
    TqLabel slot = nullptr;
    Bytes room(200);
    std::uint32_t size = 200;
    if (DecodeLabelEncrypted(sealed.data(), size32(sealed), room.data(), &size, &slot) != 0) {
      return false;
    }
    const Label opened(slot);
    return DecodeLabelDecrypted(opened, body.data(), size32(body)) == 0;
  });
}

TEST_P(EachFailure, OfASetterKeepsTheLabelUsable) {
  Label label;
  fill_records(label, GetParam());
  const Bytes custom = get(label, GetCustom);
  for (std::size_t n = 1;; ++n) {
    const test::FailNth failure(n);
    const std::int32_t result = SetCustom(label, pattern(99).data(), 99);
    if (!failure.happened()) break;
    EXPECT_EQ(result, -1);
    std::uint32_t size = 0;
    EXPECT_EQ(GetCustom(label, nullptr, &size), 0);
    EXPECT_TRUE(size == 0 || size == custom.size());
  }
  EXPECT_EQ(get(label, GetCustom), pattern(99));
  const Issuer issuer({{kCountry, 19, text("XX")}, {kCommonName, 19, text("YY")}});
  for (std::size_t n = 1;; ++n) {
    const test::FailNth failure(n);
    const std::int32_t result =
        SetCertSerialAndIssuerToHead(label, pattern(5).data(), 5, issuer.get());
    if (!failure.happened()) break;
    EXPECT_EQ(result, -1);
  }
  EXPECT_TRUE(decode(encode(label)));
  fail_each_allocation([&] {
    SignEnum* signatures = nullptr;
    if (CreateEmurateSign(label, &signatures) != 0) return false;
    Bytes value(96);
    Bytes cert(96);
    SignAttribute out{nullptr, value.data(), 96, cert.data(), 96};
    const bool succeeded = GetNextSign(signatures, &out) == 0;
    EXPECT_EQ(DestroySignEmura(signatures), 0);
    return succeeded;
  });
}

INSTANTIATE_TEST_SUITE_P(Each, EachFailure, testing::ValuesIn(kVersions), [](const auto& each) {
  std::string name = each.param;
  std::erase(name, '.');
  return name;
});

std::size_t calls_of(const auto& action) {
  const std::size_t before = allocations().calls;
  action();
  return allocations().calls - before;
}

TEST(Allocations, OfDecodingAreOnePerListEntryAndAFew) {
  constexpr std::size_t kEntries = 50;
  constexpr std::size_t kFew = 4;
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Bytes plain = encode(label);
    const std::size_t bare = calls_of([&] { EXPECT_TRUE(decode(plain)); });
    EXPECT_LE(bare, kFew + (is_60(version) ? 0 : 1)) << "the issuer has a second attribute";
    for (std::uint32_t i = 0; i < kEntries; ++i) {
      EXPECT_EQ(AddExtendValue(label, i, pattern(4).data(), 4), 0);
    }
    const Bytes der = encode(label);
    EXPECT_LE(calls_of([&] { EXPECT_TRUE(decode(der)); }), bare + kEntries);
    Bytes buffer(der.size());
    std::uint32_t size = size32(buffer);
    EXPECT_LE(calls_of([&] { EXPECT_EQ(EncodeLabel(label, buffer.data(), &size), 0); }), 3U);
    std::uint32_t flag = 0;
    EXPECT_EQ(calls_of([&] { EXPECT_EQ(HavePadded(der.data(), size32(der), &flag), 0); }), 0U);
  }
}

}  // namespace
}  // namespace tq::abi
