// What holds for every record and every list, from its schema alone.

#include <gtest/gtest.h>

#include <string>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

using AllSchemas =
    ::testing::Types<Of<kContent>, Of<kFileCreator>, Of<kSysInfo>, Of<kFileAlign>,
                     Of<kAlgorithmPair>, Of<kExtend>, Of<kExtends>, Of<kWaterMark>, Of<kMeta>,
                     Of<kSeal>, Of<kStampText>, Of<kStamp>, Of<kAction>, Of<kActions>,
                     Of<kFingerPrint>, Of<kExtPri>, Of<kExtPris>, Of<kPrivilege>, Of<kName>,
                     Of<kIdentitySignature>, Of<kSignerInput>, Of<kSign>, Of<kMultiSign>,
                     Of<kEnvelope>, Of<kHeadEnvelopes>, Of<kBodyEnvelope>, Of<kBodyEnvelopes>,
                     Of<kEncryptHead>, Of<kLog>, Of<kLogs>, Of<kHead>, Of<kBody>>;

template <class S>
std::optional<Bytes> write(typename S::Record& record, const Scope& scope) {
  return encoded([&](ANYBUF** slot) { return encode(S{}, &record, slot, scope); });
}

// Reads all of the bytes; a context tag is taken off as the reader of the parent does it.
template <class S>
bool read(const Bytes& bytes, typename S::Record& record, const Scope& scope) {
  der::Cursor in(bytes.data(), bytes.size());
  if constexpr (requires { S::kTag; }) {
    der::Element tagged;
    if (in.peek() == S::kTag) {
      if (!in.take(S::kTag, tagged) || !in.at_end()) return false;
      in = der::Cursor(tagged);
      record = {};
      if (in.at_end()) return false;
    }
    if constexpr (requires { record.present; }) record.present = 1;
  }
  return S::read_element(record, scope, in) && in.at_end();
}

// Runs a check on so many random records of each version, with the bytes that are written of them,
// and with a scope that reads copies and one that reads views.
template <class S, class Check>
void for_each_record(Lengths lengths, std::uint32_t seeds, Check check) {
  for (const Version& version : kVersions) {
    for (std::uint32_t seed = 0; seed < seeds; ++seed) {
      SCOPED_TRACE(std::string(version.text) + ", seed " + std::to_string(seed));
      const NoLeaks no_leaks;
      {
        Scope scope = scope_of(version);
        Owned<S> filled;
        walk(S{}, filled.record, scope, Fill(lengths, seed, scope));
        const auto bytes = write<S>(filled.record, scope);
        ASSERT_TRUE(bytes.has_value());
        for (const bool views : {false, true}) {
          scope.views = views;
          check(filled.record, *bytes, scope);
        }
      }
      ASSERT_TRUE(no_leaks.hold());
    }
  }
}

template <class T>
class EverySchema : public ::testing::Test {};
TYPED_TEST_SUITE(EverySchema, AllSchemas);

struct ExpectCleared {
  template <class Number>
  void value(const Number& /*number*/) {}
  void value(const ANYBUF& field) { EXPECT_TRUE(field.data == nullptr && field.length == 0); }
};

TYPED_TEST(EverySchema, ReadsWhatItWritesAndWritesItAgain) {
  using S = typename TypeParam::Schema;
  for_each_record<S>(Lengths::kEdges, 24, [](auto& filled, const Bytes& bytes, const Scope& scope) {
    Bytes lent = bytes;
    Owned<S> copy;
    ASSERT_TRUE(read<S>(lent, copy.record, scope));
    if (!scope.views) lent.assign(lent.size(), 0xEE);
    EXPECT_EQ(walk(S{}, copy.record, scope, Digest{}).bytes,
              walk(S{}, filled, scope, Digest{}).bytes);
    EXPECT_EQ(write<S>(copy.record, scope), bytes);
    S::release(copy.record);
    walk(S{}, copy.record, scope, ExpectCleared{});
  });
}

TYPED_TEST(EverySchema, FailsWithoutLeaksWhereverMemoryOrItsBytesRunOut) {
  using S = typename TypeParam::Schema;
  for_each_record<S>(Lengths::kShort, 4, [](auto& filled, const Bytes& bytes, const Scope& scope) {
    const auto writing = [&] { return write<S>(filled, scope).has_value(); };
    EXPECT_EQ(fail_each_allocation(writing), bytes.empty() ? 0U : 1U);
    fail_each_allocation([&] {
      Owned<S> copy;
      return read<S>(bytes, copy.record, scope);
    });
    for (std::size_t length = 1; length < bytes.size(); ++length) {
      Owned<S> copy;
      EXPECT_FALSE(read<S>(head_of(bytes, length), copy.record, scope)) << length;
    }
  });
}

// One octet, changed. What is read is the same as copies and as views, and what can be written of
// it is read and written as it stands.
TYPED_TEST(EverySchema, StaysConsistentWhateverOctetIsChanged) {
  using S = typename TypeParam::Schema;
  for_each_record<S>(Lengths::kShort, 1, [](auto&, const Bytes& bytes, const Scope& scope) {
    const bool large = quick() || bytes.size() > 300;  // of smaller ones: single bits will do
    for (std::size_t i = 0; scope.views && i < bytes.size(); i += quick() ? 11U : 1U) {
      for (unsigned change = 1; change < 0x100; change = large ? 2 * change : change + 1) {
        Bytes changed = bytes;
        changed[i] = static_cast<std::uint8_t>(changed[i] ^ change);
        Owned<S> copy;
        Owned<S> view;
        const bool is_read = read<S>(changed, copy.record, {.layout = scope.layout});
        ASSERT_EQ(read<S>(changed, view.record, scope), is_read) << i << ' ' << change;
        if (!is_read) continue;
        const auto written = write<S>(copy.record, scope);
        ASSERT_EQ(write<S>(view.record, scope), written) << i << ' ' << change;
        if (!written.has_value()) continue;
        Owned<S> again;
        ASSERT_TRUE(read<S>(*written, again.record, scope)) << i << ' ' << change;
        ASSERT_EQ(write<S>(again.record, scope), written) << i << ' ' << change;
      }
    }
  });
}

template <class T>
class EveryList : public ::testing::Test {};
using Lists = ::testing::Types<Of<kExtends>, Of<kLogs>, Of<kActions>, Of<kExtPris>,
                               Of<kHeadEnvelopes>, Of<kBodyEnvelopes>>;
TYPED_TEST_SUITE(EveryList, Lists);

TYPED_TEST(EveryList, IsASetInASequenceAndNothingElse) {
  using S = typename TypeParam::Schema;
  using Entry = typename S::Entry;
  for_each_record<Entry>(Lengths::kShort, 1, [](auto&, const Bytes& entry, const Scope& scope) {
    const Bytes set = tlv(0x31, entry);
    Owned<S> list;  // what is behind the SET is ignored
    ASSERT_TRUE(read<S>(sequence(set, hex("05 00"), set), list.record, scope));
    const typename S::Record first = list.record;
    EXPECT_EQ(first->next, nullptr);
    std::vector<Bytes> cases =
        hexes("30 02 31 00|30 00|30 04 31 02 05 00|30 04 31 02 30 00|05 01 00|05 81 00|04 00");
    cases.insert(cases.end(), {set, sequence(sequence(entry)),
                               sequence(tlv(0x31, concat(entry, head_of(entry, 2)))),
                               sequence(tlv(0x31, concat(entry, hex("04 00")))),
                               sequence(set, hex("05")), sequence(set, hex("1F 81 00 00"))});
    for (const Bytes& bytes : cases) {
      EXPECT_FALSE(read<S>(bytes, list.record, scope)) << ::testing::PrintToString(bytes);
      EXPECT_EQ(list.record, first);  // left as it was
    }
  });
}

}  // namespace
}  // namespace tq::test
