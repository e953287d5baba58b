// What happens when there is no memory, and how little of it whole labels need. The test program's
// own allocator stands in front of the libraries' pair.

#include <fstream>
#include <set>

#include "abi/calls.h"
#include "unit/support/allocations.h"

namespace tq::abi {
namespace {

using test::allocations;
using test::FailNth;
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

std::size_t calls_of(const auto& action) {
  const std::size_t before = allocations().calls;
  action();
  return allocations().calls - before;
}

struct ScarceMemory : testing::TestWithParam<const char*> {
  // Calls where nothing fails, then where each allocation fails in turn.
  void fail_each(const Row& row, bool keeps) const {
    SCOPED_TRACE(row.function);
    const Outcome good = succeed(row);
    // Recipients are unknown to "6.0"; all else succeeds, and "1.1.2" keeps all that there is.
    EXPECT_TRUE(good.result != -1 || is_60(coded.version));
    EXPECT_TRUE(good.count != 0 || !is_multi_sign(coded.version));
    for (std::size_t n = 1; n <= good.count && good.result != -1; ++n) {
      const NoLeaks no_leaks;
      fail(row, n, keeps, good);
      EXPECT_TRUE(no_leaks.hold()) << "allocation " << n;
      if (HasFailure()) return;
    }
  }

  const Coded coded{GetParam()};

 private:
  struct Outcome {
    std::size_t count;
    std::int32_t result;
    State state;
  };
  [[nodiscard]] Outcome succeed(const Row& row) const {
    Given given(coded);
    std::int32_t result = 0;
    const std::size_t count = calls_of([&] { result = row.call(given); });
    return {count, result, State(given)};
  }
  void fail(const Row& row, std::size_t n, bool keeps, const Outcome& good) const {
    SCOPED_TRACE(testing::Message() << "allocation " << n);
    Given given(coded);
    const State before(given);
    {
      const FailNth failure(n);
      EXPECT_EQ(row.call(given), -1);
    }
    EXPECT_TRUE(!keeps || State(given) == before);
    (void)encode(given.label);
    EXPECT_EQ(row.call(given), good.result);
    EXPECT_TRUE(State(given) == good.state);
  }
};

TEST_P(ScarceMemory, FailsACallThatLeavesAllAsItWas) {
  for (const Row& row : kKeeping) fail_each(row, true);
}

TEST_P(ScarceMemory, FailsACallThatSaysWhatItLeaves) {
  for (const Row& row : kLosing) fail_each(row, false);
}

TEST_P(ScarceMemory, IsEnoughForCallsThatAllocateNothing) {
  for (const Row& row : kSparing) {
    SCOPED_TRACE(row.function);
    Given given(coded);
    std::int32_t result = 0;
    EXPECT_EQ(calls_of([&] { result = row.call(given); }), 0U);
    EXPECT_TRUE(result != -1 || is_60(coded.version));
  }
}

INSTANTIATE_TEST_SUITE_P(Each, ScarceMemory, testing::ValuesIn(kVersions), name_of);

template <class Call>
void lose(std::size_t n, Call call) {
  const FailNth failure(n);
  EXPECT_EQ(call(), -1);
  EXPECT_TRUE(failure.happened());
}

TEST(ScarceMemoryCalls, LoseWhatTheHeaderSays) {
  const Coded coded("1.1");
  const Given g(coded);
  const Recipient to = {{2}, kKnown.issuer};  // the last of the list is the first to re-key
  lose(1, [&] { return SetHeadSignAlg(g.label, text(kSignAlg).data(), 23); });
  EXPECT_TRUE(get(g.label, GetHeadSignAlg).empty());
  lose(1, [&] { return SetLabelPadSize(g.label, 9); });
  EXPECT_TRUE(encode(g.label, EncodeLabelPad).empty());
  EXPECT_FALSE(encode(g.label).empty());
  for (const std::size_t n : {1U, 2U}) {  // the key of the body, then all for the head
    lose(n, [&] { return SetCurrentEmuEnvolop(g.envelopes.made, nullptr, 0, kBytesOf, 22); });
    EXPECT_EQ(from_body(g.other, to)->envelope.key, test::head_of(kNew, n == 1 ? 0 : 22));
    EXPECT_FALSE(from_head(g.other, to));
  }
  lose(2, [&] { return SetWaterMarkInfo(g.label, &kMark.record); });
  const auto mark = take<WaterMark>(GetWaterMarkInfo, g.label);
  EXPECT_EQ(mark->data1Len, kMark.record.data1Len);
  EXPECT_EQ(mark->data2Len, g.mark.made->data2Len);
  lose(1, [&] { return add_to_head(g.label, {kKnown}); });
  lose(1, [&] { return add_to_body(g.label, {kKnown}); });
  EXPECT_FALSE(from_head(g.label, kKnown) || from_body(g.label, kKnown));
  for (const std::size_t n : {1U, 2U}) {
    lose(n, [&] { return DecodeLabelDecrypted(g.label, coded.body.data(), size32(coded.body)); });
    EXPECT_EQ(counted(g.label, GetLogCout), n == 1 ? 2U : 0U);
  }
}

TEST(ScarceMemoryCalls, NameAllThatTheLibrariesExport) {
  std::set<std::string> exported;
  for (const char* library : {"tqasn1", "tqlabel"}) {
    std::ifstream map(TQLABEL_EXPORTS + std::string("/") + library + ".map");
    for (std::string word; map >> word;) {
      if (word.back() == ';' && word != "*;" && word != "};") {
        exported.insert(word.substr(0, word.size() - 1));
      }
    }
  }
  std::set<std::string> tried;
  for (const Row& row : kKeeping) tried.insert(row.function);
  for (const Row& row : kLosing) tried.insert(row.function);
  for (const Row& row : kSparing) EXPECT_TRUE(tried.insert(row.function).second) << row.function;
  EXPECT_EQ(tried, exported);
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
