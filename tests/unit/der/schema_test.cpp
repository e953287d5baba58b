// What holds for every record, from its schema alone.

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
                     Of<kFingerPrint>, Of<kExtPri>, Of<kExtPris>, Of<kPrivilege>, Of<kAttribute>,
                     Of<kName>, Of<kIdentitySignature>, Of<kSignerInput>, Of<kSign>, Of<kMultiSign>,
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

Scope reading(const Version& version, bool views) {
  Scope scope = scope_of(version);
  scope.views = views;
  return scope;
}

template <class T>
class EverySchema : public ::testing::Test {};
TYPED_TEST_SUITE(EverySchema, AllSchemas, SchemaNames);

TYPED_TEST(EverySchema, ReadsWhatItWritesAndWritesItAgain) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    for (std::uint32_t seed = 0; seed < 24; ++seed) {
      SCOPED_TRACE(std::string(version.text) + ", seed " + std::to_string(seed));
      const NoLeaks no_leaks;
      {
        const Scope scope = scope_of(version);
        Owned<S> filled;
        walk(S{}, filled.record, scope, Fill(Lengths::kEdges, seed, scope));
        const Bytes digest = walk(S{}, filled.record, scope, Digest{}).bytes;
        const auto bytes = write<S>(filled.record, scope);
        ASSERT_TRUE(bytes.has_value());
        for (const bool views : {false, true}) {
          Owned<S> copy;
          ASSERT_TRUE(read<S>(*bytes, copy.record, reading(version, views)));
          EXPECT_EQ(walk(S{}, copy.record, scope, Digest{}).bytes, digest);
          EXPECT_EQ(write<S>(copy.record, scope), bytes);
        }
      }
      EXPECT_TRUE(no_leaks.hold());
    }
  }
}

TYPED_TEST(EverySchema, AllocatesOncePerFieldAndEntryAndForViewsOncePerEntry) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    for (std::uint32_t seed = 0; seed < 8; ++seed) {
      SCOPED_TRACE(std::string(version.text) + ", seed " + std::to_string(seed));
      const Scope scope = scope_of(version);
      Owned<S> filled;
      walk(S{}, filled.record, scope, Fill(Lengths::kShort, seed, scope));
      std::size_t before = allocations().calls;
      const auto bytes = write<S>(filled.record, scope);
      ASSERT_TRUE(bytes.has_value());
      EXPECT_EQ(allocations().calls - before, bytes->empty() ? 0 : 1);
      for (const bool views : {false, true}) {
        Owned<S> copy;
        before = allocations().calls;
        ASSERT_TRUE(read<S>(*bytes, copy.record, reading(version, views)));
        const std::size_t made = allocations().calls - before;
        const Census census = walk(S{}, copy.record, scope, Census{});
        EXPECT_EQ(made, census.owned + census.entries);
        if (views) {
          EXPECT_EQ(census.owned, census.blobs);
        } else {
          EXPECT_EQ(census.borrowed, 0);
        }
      }
    }
  }
}

TYPED_TEST(EverySchema, FailsWithoutLeaksWhereverMemoryRunsOut) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    SCOPED_TRACE(version.text);
    for (std::uint32_t seed = 0; seed < 4; ++seed) {
      const Scope scope = scope_of(version);
      Owned<S> filled;
      walk(S{}, filled.record, scope, Fill(Lengths::kShort, seed, scope));
      fail_each_allocation([&] { return write<S>(filled.record, scope).has_value(); });
      const auto bytes = write<S>(filled.record, scope);
      ASSERT_TRUE(bytes.has_value());
      for (const bool views : {false, true}) {
        fail_each_allocation([&] {
          Owned<S> copy;
          return read<S>(*bytes, copy.record, reading(version, views));
        });
      }
    }
  }
}

TYPED_TEST(EverySchema, RefusesEveryTruncation) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    SCOPED_TRACE(version.text);
    const Scope scope = scope_of(version);
    Owned<S> filled;
    walk(S{}, filled.record, scope, Fill(Lengths::kShort, 1, scope));
    const auto bytes = write<S>(filled.record, scope);
    ASSERT_TRUE(bytes.has_value());
    const NoLeaks no_leaks;
    for (std::size_t length = 1; length < bytes->size(); ++length) {
      const Bytes cut(bytes->begin(), bytes->begin() + static_cast<std::ptrdiff_t>(length));
      Owned<S> copy;
      EXPECT_FALSE(read<S>(cut, copy.record, reading(version, length % 2 == 0))) << length;
    }
    EXPECT_TRUE(no_leaks.hold());
  }
}

// One octet, changed. What is still read must be written, unless it is one of the few things that
// only readers take, and what has been written is read and written as it stands.
template <class S>
void read_changed(const Bytes& changed, const Version& version) {
  const Scope scope = scope_of(version);
  Owned<S> copy;
  Owned<S> view;
  const bool is_read = read<S>(changed, copy.record, scope);
  ASSERT_EQ(read<S>(changed, view.record, reading(version, true)), is_read);
  if (!is_read) return;
  const auto written = write<S>(copy.record, scope);
  ASSERT_EQ(write<S>(view.record, scope), written);
  if (!written.has_value()) {
    ASSERT_TRUE(walk(S{}, copy.record, scope, Refusals{}).found);
    return;
  }
  Owned<S> again;
  ASSERT_TRUE(read<S>(*written, again.record, scope));
  ASSERT_EQ(write<S>(again.record, scope), written);
}

TYPED_TEST(EverySchema, StaysConsistentWhateverOctetIsChanged) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    const Scope scope = scope_of(version);
    Owned<S> filled;
    walk(S{}, filled.record, scope, Fill(Lengths::kShort, 2, scope));
    auto bytes = write<S>(filled.record, scope);
    ASSERT_TRUE(bytes.has_value());
    const bool large = bytes->size() > 300;  // made of smaller ones: single bits will do
    const NoLeaks no_leaks;
    for (std::size_t i = 0; i < bytes->size(); ++i) {
      const std::uint8_t original = (*bytes)[i];
      for (unsigned change = 1; change < 0x100; change = large ? 2 * change : change + 1) {
        (*bytes)[i] = static_cast<std::uint8_t>(original ^ change);
        read_changed<S>(*bytes, version);
        if (::testing::Test::HasFailure()) {
          FAIL() << version.text << ": octet " << i << " as " << unsigned{(*bytes)[i]};
        }
      }
      (*bytes)[i] = original;
    }
    EXPECT_TRUE(no_leaks.hold());
  }
}

}  // namespace
}  // namespace tq::test
