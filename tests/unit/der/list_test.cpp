#include "der/schema/list.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

template <class S>
std::optional<Bytes> write(typename S::Record& first, const Scope& scope) {
  return encoded([&](ANYBUF** slot) { return encode(S{}, &first, slot, scope); });
}

// The element that stands in its place when the reader of the list comes to it.
template <class S>
Bytes untagged(const Bytes& bytes) {
  if constexpr (requires { S::kTag; }) {
    if (!bytes.empty() && bytes[0] == S::kTag) {
      der::Cursor in(bytes.data(), bytes.size());
      der::Element tagged;
      EXPECT_TRUE(in.take(S::kTag, tagged));
      return {tagged.content(), tagged.content() + tagged.length};
    }
  }
  return bytes;
}

template <class S>
bool reads(const Bytes& bytes, typename S::Record& first, const Scope& scope) {
  der::Cursor in(bytes.data(), bytes.size());
  return S::read_element(first, scope, in) && in.at_end();
}

template <class Param>
class EveryList : public ::testing::Test {
 protected:
  using Entries = typename Param::Schema;
  using Record = typename Entries::EntryRecord;

  // A chain of so many entries, of which each is a little different.
  static void fill(typename Entries::Record& first, std::size_t count, const Scope& scope) {
    for (; count != 0; --count) {
      Record* entry = make_zeroed<Record>().release();
      entry->next = first;
      first = entry;
      walk(typename Entries::Entry{}, *entry, scope,
           Fill(Lengths::kShort, static_cast<std::uint32_t>(count), scope));
    }
  }
  static Bytes entry_bytes(const Record& entry, const Scope& scope) {
    return *encoded(
        [&](ANYBUF** slot) { return encode(typename Entries::Entry{}, &entry, slot, scope); });
  }
};

using Lists = ::testing::Types<Of<kExtends>, Of<kLogs>, Of<kActions>, Of<kExtPris>,
                               Of<kHeadEnvelopes>, Of<kBodyEnvelopes>>;
TYPED_TEST_SUITE(EveryList, Lists, SchemaNames);

TYPED_TEST(EveryList, IsASetInASequenceInTheOrderOfItsChain) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    const Scope scope = scope_of(version);
    for (const std::size_t count : {1U, 2U, 1000U}) {
      SCOPED_TRACE(std::string(version.text) + ", " + std::to_string(count));
      const NoLeaks no_leaks;
      {
        Owned<S> list;
        this->fill(list.record, count, scope);
        Bytes entries;
        for (const auto* entry = list.record; entry != nullptr; entry = entry->next) {
          const Bytes bytes = this->entry_bytes(*entry, scope);
          entries.insert(entries.end(), bytes.begin(), bytes.end());
        }
        const auto bytes = write<S>(list.record, scope);
        ASSERT_TRUE(bytes.has_value());
        EXPECT_EQ(untagged<S>(*bytes), sequence(tlv(0x31, entries)));
        Owned<S> read;
        ASSERT_TRUE(reads<S>(untagged<S>(*bytes), read.record, scope));
        EXPECT_EQ(write<S>(read.record, scope), bytes);
      }
      EXPECT_TRUE(no_leaks.hold());
    }
  }
}

TYPED_TEST(EveryList, FailsWithoutLeaksWhereverMemoryRunsOutInALongOne) {
  using S = typename TypeParam::Schema;
  const Scope scope = scope_of(k112);
  Owned<S> list;
  this->fill(list.record, 300, scope);  // more lengths than a plan has room for
  EXPECT_GE(fail_each_allocation([&] { return write<S>(list.record, scope).has_value(); }), 2U);
}

TYPED_TEST(EveryList, RefusesWhatIsNoList) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    const Scope scope = scope_of(version);
    Owned<S> one;
    this->fill(one.record, 1, scope);
    const Bytes entry = this->entry_bytes(*one.record, scope);
    Bytes cut = entry;
    cut.pop_back();
    const struct {
      const char* what;
      Bytes bytes;
    } cases[] = {
        {"a SET without children", hex("30 02 31 00")},
        {"no SET", hex("30 00")},
        {"a SET alone", tlv(0x31, entry)},
        {"a SEQUENCE for a SET", sequence(sequence(entry))},
        {"an entry that is no SEQUENCE", sequence(tlv(0x31, hex("05 00")))},
        {"an empty entry", sequence(tlv(0x31, hex("30 00")))},
        {"a second entry cut short", sequence(tlv(0x31, concat(entry, cut)))},
        {"a second entry of another kind", sequence(tlv(0x31, concat(entry, hex("04 00"))))},
        {"something malformed behind the SET", sequence(tlv(0x31, entry), hex("05"))},
        {"the same, with a tag of two octets", sequence(tlv(0x31, entry), hex("1F 81 00 00"))},
        {"NULL with a content", hex("05 01 00")},
        {"NULL with a long length", hex("05 81 00")},
        {"an OCTET STRING", hex("04 00")},
        {"a tag around the list", tlv(0xA0, sequence(tlv(0x31, entry)))},
    };
    const NoLeaks no_leaks;
    for (const auto& bad : cases) {
      typename S::Record first = one.record;  // left as it was
      EXPECT_FALSE(reads<S>(bad.bytes, first, scope)) << version.text << ": " << bad.what;
      EXPECT_EQ(first, one.record) << bad.what;
    }
    EXPECT_TRUE(no_leaks.hold());
  }
}

TYPED_TEST(EveryList, IgnoresElementsBehindItsSet) {
  using S = typename TypeParam::Schema;
  for (const Version& version : kVersions) {
    const Scope scope = scope_of(version);
    Owned<S> one;
    this->fill(one.record, 1, scope);
    const Bytes set = tlv(0x31, this->entry_bytes(*one.record, scope));
    Owned<S> read;
    ASSERT_TRUE(reads<S>(sequence(set, hex("05 00"), set), read.record, scope));
    EXPECT_EQ(read.record->next, nullptr);
  }
}

TEST(ExtendList, HasAFormOfItsOwnInEachVersion) {
  const Bytes entries = hex("30 10 31 0E 30 05 02 01 01 04 00 30 05 02 01 02 04 00");
  Extend second = {2, {}, nullptr};
  Extend first = {1, {}, &second};
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    EXPECT_EQ(encoded(EncodeExtendAtrr_F, &label, static_cast<Extend*>(nullptr)),
              v60 ? hex("05 00") : Bytes{});
    EXPECT_EQ(encoded(EncodeExtendAtrr_F, &label, &first), v60 ? entries : tlv(0xA0, entries));
  }
  for (const Version& version : {kUnknown, Version{"6.1", 0}, Version{"1.0", '2'}}) {
    TqLabelHandle label = label_of(version);
    EXPECT_EQ(encoded(EncodeExtendAtrr_F, &label, static_cast<Extend*>(nullptr)), std::nullopt);
    EXPECT_EQ(encoded(EncodeExtendAtrr_F, &label, &first), std::nullopt);
  }
  Extend* list = &first;
  EXPECT_TRUE(decodes(DecodeExtendAtrr, hex("05 00"), &list));
  EXPECT_EQ(list, nullptr);
  ASSERT_TRUE(decodes(DecodeExtendAtrr, entries, &list));
  EXPECT_EQ(list->extendType, 1U);
  EXPECT_EQ(list->next->extendType, 2U);
  FreeExtendAtrr(list);
}

const Bytes kLogFront = hex("02 01 01 13 01 61");
const Bytes kLogName = hex("30 0D 31 0B 30 09 06 03 55 04 06 13 02 43 4E");
const Bytes kLogRest =
    concat(hex("02 02 00 01 02 00"), tlv(0x18, text("20000229000000Z")), hex("02 01 02 13 01 62"));

TEST(LogList, HasAFormOfItsOwnInEachVersion) {
  const Bytes type = hex("55 04 06");
  const Bytes array = hex("00 01");  // kept as it is, though no shortest INTEGER
  Log log = {1,
             field("a"),
             {field(type, 6), field("CN"), nullptr},
             field(array),
             {},
             951782400,
             2,
             field("b"),
             nullptr};
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    const bool v60 = version.text == "6.0";
    const Bytes with_name = sequence(kLogFront, kLogName, kLogRest);
    const Bytes without_name = sequence(kLogFront, kLogRest);
    const Bytes entry = v60 ? without_name : with_name;
    const Bytes entries = sequence(tlv(0x31, entry));
    EXPECT_EQ(encoded(EncodeLog, &label, &log), entry);
    EXPECT_EQ(encoded(EncodeLogAtrr_F, &label, &log), v60 ? entries : tlv(0xA1, entries));
    EXPECT_EQ(encoded(EncodeLogAtrr_F, &label, static_cast<Log*>(nullptr)),
              v60 ? hex("05 00") : Bytes{});

    Log* list = &log;
    EXPECT_TRUE(decodes(DecodeLogAtrr, hex("05 00"), &list, &label));
    EXPECT_EQ(list, nullptr);
    EXPECT_FALSE(
        decodes(DecodeLogAtrr, sequence(tlv(0x31, v60 ? with_name : without_name)), &list, &label));
    ASSERT_TRUE(decodes(DecodeLogAtrr, entries, &list, &label));
    EXPECT_EQ(content(list->logArray1), array);
    EXPECT_EQ(content(list->logName.value), v60 ? Bytes{} : text("CN"));
    EXPECT_EQ(content(list->logText2), text("b"));
    FreeLogAtrr(list);
  }
  TqLabelHandle unknown = label_of(kUnknown);
  Log* list = nullptr;
  EXPECT_EQ(encoded(EncodeLog, &unknown, &log), std::nullopt);
  EXPECT_EQ(encoded(EncodeLogAtrr_F, &unknown, list), std::nullopt);
  EXPECT_FALSE(decodes(DecodeLogAtrr, hex("05 00"), &list, &unknown));
}

TEST(ActionsList, IsNullWhenEmptyWhateverTheVersion) {
  EXPECT_EQ(encoded(EncodeFingerPrintList, static_cast<ActionList*>(nullptr)), hex("05 00"));
  ActionList entry{};
  ActionList* list = &entry;
  EXPECT_TRUE(decodes(DecodeFingerPrintList, hex("05 00"), &list));
  EXPECT_EQ(list, nullptr);
  EXPECT_FALSE(decodes(DecodeFingerPrintList, {}, &list));
}

TEST(EnvelopeLists, AreNullWhenEmptyWhateverTheVersion) {
  for (const Version& version : kVersions) {
    TqLabelHandle label = label_of(version);
    ENVELOPE* head = nullptr;
    BDigitEnvolope* body = nullptr;
    EXPECT_EQ(encoded(EncodeDigitEnvolop_F, &label, head), hex("05 00"));
    EXPECT_EQ(encoded(EncodeEncryptBody_F, &label, body), hex("05 00"));
    EXPECT_TRUE(decodes(DecodeDigitEnvolop, hex("05 00"), &head, &label));
    EXPECT_TRUE(decodes(DecodeEncryptBody, hex("05 00"), &body, &label));
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(body, nullptr);
  }
}

TEST(ListWrapper, PutsAChainOfElementsInASetInASequence) {
  Input first(hex("30 03 02 01 01"));
  Input second(hex("05 00"));
  Input none({});
  first.node()->next = none.node();
  none.node()->next = second.node();
  const ANYBUF* const chain = first.node();
  const ANYBUF* const no_chain = nullptr;
  const TqLabelHandle* const no_label = nullptr;
  for (auto* wrapper : {EncodeExtendAtrr, EncodeLogAtrr, EncodeExtPriviList}) {
    EXPECT_EQ(encoded(wrapper, no_label, no_chain), std::nullopt);
    EXPECT_EQ(encoded(wrapper, no_label, chain), hex("30 09 31 07 30 03 02 01 01 05 00"));
    EXPECT_EQ(first.node()->next, none.node());  // stays the caller's
  }
}

}  // namespace
}  // namespace tq::test
