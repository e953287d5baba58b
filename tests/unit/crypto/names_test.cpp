#include "crypto/names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

const Bytes kCommonName = hex("55 04 03");
const Bytes kCountry = hex("55 04 06");
const Bytes kOrganization = hex("55 04 0A");
const Bytes kUnit = hex("55 04 0B");
const Bytes kEmail = hex("2A 86 48 86 F7 0D 01 09 01");

constexpr std::uint32_t kUtf8 = 12;
constexpr std::uint32_t kPrintable = 19;
constexpr std::uint32_t kIa5 = 22;
constexpr std::uint32_t kBmp = 30;

struct Attribute {
  Bytes type;
  Bytes value;
  std::uint32_t tag = kPrintable;
};

// A chain of attributes, which keeps their bytes itself.
class NameOf {
 public:
  explicit NameOf(std::vector<Attribute> attributes) : attributes_(std::move(attributes)) {
    for (const Attribute& attribute : attributes_) {
      chain_.push_back({field(attribute.type, 6), field(attribute.value, attribute.tag), nullptr});
    }
    for (std::size_t i = 1; i < chain_.size(); ++i) chain_[i - 1].next = &chain_[i];
  }
  NameOf(const NameOf&) = delete;
  NameOf& operator=(const NameOf&) = delete;
  NameOf(NameOf&&) = delete;
  NameOf& operator=(NameOf&&) = delete;
  ~NameOf() = default;

  X509Name& operator[](std::size_t index) { return chain_[index]; }
  const X509Name& operator[](std::size_t index) const { return chain_[index]; }

 private:
  std::vector<Attribute> attributes_;
  std::vector<X509Name> chain_;
};

PJCertIssuerEntry entry_of(const Attribute& attribute) {
  PJCertIssuerEntry entry{};
  std::ranges::copy(attribute.type, entry.type);
  entry.typeLen = static_cast<std::uint32_t>(attribute.type.size());
  std::ranges::copy(attribute.value, entry.value);
  entry.valueLen = static_cast<std::uint32_t>(attribute.value.size());
  entry.valueTag = attribute.tag;
  return entry;
}

// Keeps its entries itself.
struct FlatIssuer {
  explicit FlatIssuer(const std::vector<Attribute>& attributes) {
    for (const Attribute& attribute : attributes) entries.push_back(entry_of(attribute));
    issuer = {entries.data(), static_cast<std::uint32_t>(entries.size()), 10};
  }
  std::vector<PJCertIssuerEntry> entries;
  PJCertIssuer issuer{};
};

// A name that owns what it holds.
struct OwnedName : Owned<std::remove_cvref_t<decltype(kName)>> {};

TEST(Name, RefusesToWriteWhatHasNoForm) {
  const Attribute cases[] = {
      {{}, text("x")},  // no type
      {hex("55 04"), text("x")},
      {hex("55 04 05"), text("x")},  // a serial number is read only
      {hex("55 04 04"), text("x")},
      {hex("55 04 09"), text("x")},
      {hex("55 04 0C"), text("x")},
      {hex("55 04 83"), text("x")},
      {hex("55 04 03 03"), text("x")},
      {hex("2A 86 48 86 F7 0D 01 09"), text("x")},
      {hex("2A 86 48 86 F7 0D 01 09 02"), text("x"), kIa5},  // nine octets, but no e-mail address
      {hex("2A 86 48 86 F7 0D 01 09 01 01"), text("x"), kIa5},
      {kCommonName, text("x"), 0},
      {kCommonName, text("x"), 4},
      {kCommonName, text("x"), 20},
      {kCommonName, text("x"), 0xA0},
      {kCommonName, text("x"), 19 + 256},
  };
  for (const Attribute& attribute : cases) {
    const NameOf name({{kCountry, text("x")}, attribute});
    EXPECT_EQ(encoded(EncodeDName, &name[1]), std::nullopt) << attribute.tag;
    EXPECT_EQ(encoded(EncodeX509Name, &name[0]), std::nullopt) << attribute.tag;
  }
  NameOf name({{kCommonName, text("x")}});
  name[0].value.data = nullptr;  // a length without bytes
  EXPECT_EQ(encoded(EncodeDName, &name[0]), std::nullopt);
  EXPECT_EQ(encoded(EncodeDName, static_cast<const X509Name*>(nullptr)), std::nullopt);
  EXPECT_EQ(encoded(EncodeX509Name, static_cast<const X509Name*>(nullptr)), std::nullopt);
}

TEST(Name, WritesEachKindOfValue) {
  const struct {
    Attribute attribute;
    std::uint8_t tag;
  } cases[] = {
      {{kCommonName, text("x"), kUtf8}, 0x13},
      {{kCommonName, text("x"), kPrintable}, 0x13},
      {{kCommonName, text("x"), kIa5}, 0x16},
      {{kCommonName, hex("00 78"), kBmp}, 0x1E},
      {{kCommonName, {}, kBmp}, 0x1E},
      {{hex("00 FF 03"), text("x"), kPrintable}, 0x13},  // the last octet alone is looked at
      {{kEmail, text("a@b"), kPrintable}, 0x16},
      {{kEmail, text("a@b"), kBmp}, 0x16},
      {{kEmail, text("a@b"), 0}, 0x16},
  };
  for (const auto& one : cases) {
    const NameOf name({one.attribute});
    EXPECT_EQ(encoded(EncodeDName, &name[0]),
              tlv(0x31, sequence(tlv(6, one.attribute.type), tlv(one.tag, one.attribute.value))));
  }
  for (const char* last : {"03", "06", "07", "08", "0A", "0B"}) {
    const NameOf name({{join(hex("55 04"), hex(last)), text("x")}});
    EXPECT_TRUE(encoded(EncodeDName, &name[0]).has_value()) << last;
  }
}

TEST(Name, IsOneSetPerAttributeInOrder) {
  const Bytes expected =
      hex("30 33"
          " 31 0B 30 09 06 03 55 04 06 13 02 43 4E"
          " 31 0A 30 08 06 03 55 04 0A 13 01 6F"
          " 31 0A 30 08 06 03 55 04 0B 13 01 75"
          " 31 0C 30 0A 06 03 55 04 03 13 03 61 62 63");
  const std::vector<Attribute> attributes = {{kCountry, text("CN")},
                                             {kOrganization, text("o")},
                                             {kUnit, text("u")},
                                             {kCommonName, text("abc")}};
  const NameOf name(attributes);
  EXPECT_EQ(encoded(EncodeX509Name, &name[0]), expected);

  Chain parts[4];
  for (std::size_t i = 4; i-- > 0;) {
    ANYBUF* made = nullptr;
    ASSERT_EQ(EncodeDName(&name[i], &made), 0);
    parts[i].reset(made);
    if (i < 3) made->next = parts[i + 1].release();
  }
  EXPECT_EQ(encoded(EncodeX509NameDer, static_cast<const ANYBUF*>(parts[0].get())), expected);
  EXPECT_EQ(encoded(EncodeX509NameDer, static_cast<const ANYBUF*>(nullptr)), std::nullopt);

  OwnedName copy;
  ASSERT_TRUE(decodes(DecodeX509Name, expected, &copy.record));
  const X509Name* attribute = &copy.record;
  for (const Attribute& wanted : attributes) {
    ASSERT_NE(attribute, nullptr);
    EXPECT_EQ(content(attribute->type), wanted.type);
    EXPECT_EQ(content(attribute->value), wanted.value);
    attribute = attribute->next;
  }
  EXPECT_EQ(attribute, nullptr);
}

TEST(Name, RefusesToReadWhatIsNoName) {
  const Bytes good = hex("31 0A 30 08 06 03 55 04 03 13 01 61");
  const Bytes cases[] = {
      {},
      hex("30 00"),                                          // no attribute
      sequence(hex("31 00")),                                // an empty SET
      sequence(hex("31 02 30 00")),                          // neither type nor value
      sequence(hex("31 07 30 05 06 03 55 04 03")),           // no value
      sequence(hex("31 05 30 03 13 01 61")),                 // no type
      sequence(hex("30 0A 30 08 06 03 55 04 03 13 01 61")),  // not a SET
      sequence(hex("31 0A 31 08 06 03 55 04 03 13 01 61")),
      sequence(hex("31 0A 30 08 06 03 55 04 03 04 01 61")),        // not a string
      sequence(hex("31 0A 30 08 06 03 55 04 03 14 01 61")),        // a string of another kind
      sequence(hex("31 0A 30 08 13 01 61 06 03 55 04 03")),        // the other way round
      sequence(hex("31 0C 30 08 06 03 55 04 03 13 01 61 30 01")),  // a second value cut short
      sequence(good, hex("05 00")),
      sequence(good, hex("31 00")),
      tlv(0x31, good),
  };
  const NoLeaks no_leaks;
  for (const Bytes& bytes : cases) {
    OwnedName name;
    EXPECT_FALSE(decodes(DecodeX509Name, bytes, &name.record)) << ::testing::PrintToString(bytes);
  }
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Name, KeepsTheKindOfAValueAndReadsAnyType) {
  for (const std::uint8_t tag : hex("0C 13 16 1E")) {
    for (const Bytes& type : {hex("55 04 05"), hex("2A"), kEmail, Bytes{}}) {
      OwnedName name;
      ASSERT_TRUE(decodes(DecodeX509Name,
                          sequence(tlv(0x31, sequence(tlv(6, type), tlv(tag, text("v"))))),
                          &name.record));
      EXPECT_EQ(content(name.record.type), type);
      EXPECT_EQ(content(name.record.value), text("v"));
      EXPECT_EQ(name.record.value.type, tag);
    }
  }
}

TEST(Name, TakesTheFirstOfSeveralValuesOnly) {
  const Bytes first = sequence(tlv(6, kCountry), tlv(0x13, text("CN")));
  for (const Bytes& rest : {sequence(tlv(6, kUnit), tlv(0x13, text("u"))), hex("05 00")}) {
    OwnedName name;
    ASSERT_TRUE(decodes(DecodeX509Name, sequence(tlv(0x31, concat(first, rest))), &name.record));
    EXPECT_EQ(content(name.record.value), text("CN"));
    EXPECT_EQ(name.record.next, nullptr);
  }
}

TEST(Name, IsReadFromTypeAndValueApart) {
  const Bytes type = tlv(6, kCommonName);
  const Bytes value = tlv(12, text("v"));
  ANYBUF second = field(value);
  ANYBUF first = field(type);
  OwnedName name;
  EXPECT_EQ(DecodeDName(&first, &name.record), -1);
  first.next = &second;
  EXPECT_EQ(DecodeDName(&first, nullptr), -1);
  EXPECT_EQ(DecodeDName(nullptr, &name.record), -1);
  ASSERT_EQ(DecodeDName(&first, &name.record), 0);
  EXPECT_EQ(content(name.record.type), kCommonName);
  EXPECT_EQ(name.record.value.type, kUtf8);
}

TEST(Issuer, IsRefusedAboveItsLimitsAndLeavesTheNameAlone) {
  const Attribute good = {kCommonName, text("x")};
  FlatIssuer eleven(std::vector<Attribute>(11, good));
  FlatIssuer long_type({good, good});
  long_type.entries[1].typeLen = 17;
  FlatIssuer long_value({good, good});
  long_value.entries[1].valueLen = 129;
  FlatIssuer empty(std::vector<Attribute>(1, good));
  empty.issuer.count = 0;
  const PJCertIssuer no_entries = {nullptr, 1, 10};

  OwnedName name;
  name.record.value = owned(text("earlier"), kPrintable);
  const PJCertIssuer* const refused[] = {&eleven.issuer, &long_type.issuer, &long_value.issuer,
                                         &empty.issuer,  &no_entries,       nullptr};
  for (const PJCertIssuer* issuer : refused) {
    EXPECT_EQ(ConvertIssuerName2PJCertIssuer(issuer, &name.record), -1);
    EXPECT_EQ(content(name.record.value), text("earlier"));
  }
  EXPECT_EQ(ConvertIssuerName2PJCertIssuer(&long_type.issuer, nullptr), -1);
}

TEST(Issuer, OfAnyNameWithinTheLimitsConvertsBothWays) {
  const std::vector<Attribute> attributes = {{Bytes(16, 0x2A), Bytes(128, 'v'), kBmp},
                                             {kCommonName, {}, kUtf8},
                                             {{}, text("x"), 0},
                                             {kEmail, text("a@b"), kIa5},
                                             {kUnit, text("1")},
                                             {kUnit, text("2")},
                                             {kUnit, text("3")},
                                             {kUnit, text("4")},
                                             {kUnit, text("5")},
                                             {kUnit, text("6")}};
  const FlatIssuer flat(attributes);
  const NoLeaks no_leaks;
  {
    OwnedName name;
    name.record.value = owned(text("earlier"), kPrintable);
    name.record.next = make_zeroed<X509Name>().release();
    ASSERT_EQ(ConvertIssuerName2PJCertIssuer(&flat.issuer, &name.record), 0);
    PJCertIssuer* back = nullptr;
    ASSERT_EQ(ConvertPJCertIssuer2IssuerName(&name.record, &back), 0);
    EXPECT_EQ(back->count, 10U);
    EXPECT_EQ(back->capacity, 10U);
    EXPECT_EQ(std::memcmp(back->entries, flat.entries.data(), 10 * sizeof(PJCertIssuerEntry)), 0);
    EXPECT_EQ(FreeIssuerName(back), 0);
  }
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Issuer, HasNoRoomForLongerNames) {
  const Attribute good = {kCommonName, text("x")};
  const std::vector<std::vector<Attribute>> cases = {
      std::vector<Attribute>(11, good),
      {good, {Bytes(17, 0x2A), text("x")}},
      {good, {kCommonName, Bytes(129, 'v')}},
  };
  const NoLeaks no_leaks;
  for (const auto& attributes : cases) {
    const NameOf name(attributes);
    PJCertIssuer* issuer = nullptr;
    EXPECT_EQ(ConvertPJCertIssuer2IssuerName(&name[0], &issuer), -1);
    EXPECT_EQ(issuer, nullptr);
  }
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Issuer, OfANameThatWasNeverSetIsEmpty) {
  const X509Name name{};
  PJCertIssuer* issuer = nullptr;
  ASSERT_EQ(ConvertPJCertIssuer2IssuerName(&name, &issuer), 0);
  EXPECT_EQ(issuer->count, 0U);
  EXPECT_EQ(issuer->capacity, 10U);
  FreeIssuerName(issuer);
}

TEST(Issuer, ConversionsFailWithoutLeaksWhereverMemoryRunsOut) {
  const FlatIssuer flat({{kCountry, text("CN")}, {kUnit, text("u")}, {kCommonName, text("c")}});
  fail_each_allocation([&] {
    OwnedName name;
    return ConvertIssuerName2PJCertIssuer(&flat.issuer, &name.record) == 0;
  });
  const NameOf name({{kCountry, text("CN")}});
  fail_each_allocation([&] {
    PJCertIssuer* issuer = nullptr;
    const bool converted = ConvertPJCertIssuer2IssuerName(&name[0], &issuer) == 0;
    FreeIssuerName(issuer);
    return converted;
  });
}

TEST(Issuer, WithoutEntriesIsNotReleased) {
  EXPECT_EQ(FreeIssuerName(nullptr), 0);
  Block<PJCertIssuer> issuer = make_zeroed<PJCertIssuer>();
  const NoLeaks still_live;
  EXPECT_EQ(FreeIssuerName(issuer.get()), 0);
  EXPECT_TRUE(still_live.hold());
}

TEST(NameCompare, AsksWhetherTheIssuerIsPartOfTheName) {
  const Attribute country = {kCountry, text("CN")};
  const Attribute organization = {kOrganization, text("o")};
  const Attribute common = {kCommonName, text("c")};
  const std::vector<Attribute> attributes = {country, organization, common};
  const NameOf name(attributes);
  const struct {
    std::vector<Attribute> issuer;
    std::int32_t result;
  } cases[] = {
      {{common, {kUnit, text("u")}}, -1},
      {{{kCommonName, text("C")}}, -1},
      {{{kCommonName, text("cc")}}, -1},
      {{{kCommonName, {}}}, -1},
      {{{kUnit, text("c")}}, -1},
      {{{}}, -1},
      {{}, 0},
      {{common, country}, 0},
      {{common, common}, 0},
      {{{kCommonName, text("c"), kBmp}}, 0},  // the kind of string does not count
      {{country, organization, common}, 0},
  };
  for (const auto& one : cases) {
    const FlatIssuer flat(one.issuer);
    EXPECT_EQ(X509NameCmp(&name[0], &flat.issuer), one.result) << &one - cases;
  }
  EXPECT_EQ(X509NameCmp(&name[0], nullptr), 0);
  EXPECT_EQ(X509NameCmp(nullptr, nullptr), -1);

  FlatIssuer broken({common});
  broken.entries[0].valueLen = 129;
  EXPECT_EQ(X509NameCmp(&name[0], &broken.issuer), -1);
  broken.entries[0].valueLen = 1;
  broken.entries[0].typeLen = UINT32_MAX;
  EXPECT_EQ(X509NameCmp(&name[0], &broken.issuer), -1);
  broken.issuer.entries = nullptr;
  EXPECT_EQ(X509NameCmp(&name[0], &broken.issuer), -1);
}

}  // namespace
}  // namespace tq::test
