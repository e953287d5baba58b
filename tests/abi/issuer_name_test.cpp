// Issuer names between the callers' flat record, the chain of attributes and the head of a label.

#include "abi/support.h"

namespace tq::abi {
namespace {

using Attributes = std::vector<Issuer::Attribute>;

const Bytes kSerialNumber = hex("55 04 05");
const Bytes kOrganisation = hex("55 04 0A");
const Bytes kUnit = hex("55 04 0B");

// A chain whose first node is its owner's and whose other blocks are released one by one.
class Name {
 public:
  Name() = default;
  Name(const Name&) = delete;
  Name& operator=(const Name&) = delete;
  Name(Name&&) = delete;
  Name& operator=(Name&&) = delete;
  ~Name() {
    for (X509Name* node = &first_; node != nullptr;) {
      Asn1Free(node->type.data);
      Asn1Free(node->value.data);
      X509Name* const following = node->next;
      if (node != &first_) Asn1Free(node);
      node = following;
    }
  }
  X509Name* get() { return &first_; }

 private:
  X509Name first_{};
};

// What a chain holds, or nothing where it does not fit a flat record.
bool read_back(const X509Name* name, Attributes& attributes) {
  PJCertIssuer* issuer = nullptr;
  const std::int32_t result = ConvertPJCertIssuer2IssuerName(name, &issuer);
  EXPECT_EQ(result == 0, issuer != nullptr);
  if (result != 0) return false;
  EXPECT_EQ(issuer->capacity, 10U);
  attributes = attributes_of(issuer);
  EXPECT_EQ(FreeIssuerName(issuer), 0);
  return true;
}

Attributes head_issuer(TqLabel label) {
  std::uint8_t room = 255;
  std::uint8_t serial[255];
  PJCertIssuer* issuer = nullptr;
  if (GetCertSerialAndIssuerToHead(label, serial, &room, &issuer) != 0 || issuer == nullptr) {
    return {};
  }
  Attributes attributes = attributes_of(issuer);
  FreeIssuerName(issuer);
  return attributes;
}

const Attributes kName = {{kCountry, 19, text("CN")},
                          {kOrganisation, 12, text("Org")},
                          {kUnit, 30, hex("00 41 00 42")},
                          {kEmail, 22, text("a@b.example")},
                          {kCommonName, 19, text("Root")}};

TEST(IssuerNames, ConvertThereAndBack) {
  Name name;
  Attributes back;
  EXPECT_TRUE(read_back(name.get(), back)) << "a name that was never set";
  EXPECT_TRUE(back.empty());
  const Attributes cases[] = {kName,
                              {{kCountry, 19, {}}},
                              Attributes(10, {pattern(16), 12, pattern(128)}),
                              {{kCommonName, 19, text("shorter again")}}};
  for (const Attributes& attributes : cases) {
    const Issuer issuer(attributes);
    ASSERT_EQ(ConvertIssuerName2PJCertIssuer(issuer.get(), name.get()), 0);
    ASSERT_TRUE(read_back(name.get(), back));
    EXPECT_EQ(back, attributes);
  }
}

TEST(IssuerNames, ThatFitNoRecordAreRefusedBeforeAnythingIsReleased) {
  Name name;
  const Issuer good(kName);
  ASSERT_EQ(ConvertIssuerName2PJCertIssuer(good.get(), name.get()), 0);
  Issuer eleven(Attributes(11, kName[0]));
  Issuer long_type(kName);
  long_type.record().entries[4].typeLen = 17;
  Issuer long_value(kName);
  long_value.record().entries[4].valueLen = 129;
  Issuer none(kName);
  none.record().count = 0;
  Issuer no_entries(kName);
  no_entries.record().entries = nullptr;
  Attributes back;
  for (Issuer* bad : {&eleven, &long_type, &long_value, &none, &no_entries}) {
    EXPECT_EQ(ConvertIssuerName2PJCertIssuer(bad->get(), name.get()), -1);
    ASSERT_TRUE(read_back(name.get(), back));
    EXPECT_EQ(back, kName);
  }
  EXPECT_EQ(ConvertIssuerName2PJCertIssuer(nullptr, name.get()), -1);
  EXPECT_EQ(ConvertIssuerName2PJCertIssuer(good.get(), nullptr), -1);
  EXPECT_EQ(ConvertPJCertIssuer2IssuerName(name.get(), nullptr), -1);
  PJCertIssuer* slot = nullptr;
  EXPECT_EQ(ConvertPJCertIssuer2IssuerName(nullptr, &slot), -1);

  // Chains of the caller's own making: the limits hold on the way out as well.
  Bytes bytes(129, 'x');
  X509Name nodes[11] = {};
  for (std::size_t i = 0; i < 11; ++i) {
    nodes[i].type = {bytes.data(), 3, 0, ASN1_FORM_VIEW, 6, nullptr, nullptr};
    nodes[i].value = {bytes.data(), 128, 0, ASN1_FORM_VIEW, 19, nullptr, nullptr};
    if (i < 10) nodes[i].next = &nodes[i + 1];
  }
  EXPECT_FALSE(read_back(nodes, back)) << "eleven";
  EXPECT_TRUE(read_back(nodes + 1, back)) << "ten";
  nodes[10].value.length = 129;
  EXPECT_FALSE(read_back(nodes + 1, back));
  nodes[10].value.length = 128;
  nodes[10].type.length = 17;
  EXPECT_FALSE(read_back(nodes + 1, back));

  EXPECT_EQ(FreeIssuerName(nullptr), 0);
  PJCertIssuer without_entries{nullptr, 3, 10};
  EXPECT_EQ(FreeIssuerName(&without_entries), 0);
}

TEST(IssuerNames, MatchWhenTheIssuersAttributesAllOccur) {
  Name name;
  const Issuer set_to(kName);
  ASSERT_EQ(ConvertIssuerName2PJCertIssuer(set_to.get(), name.get()), 0);
  struct Case {
    const char* what;
    Attributes issuer;
    std::int32_t expected;
  };
  const Case cases[] = {
      {"nothing", {}, 0},
      {"itself", kName, 0},
      {"fewer, in another order", {kName[4], kName[0]}, 0},
      {"one twice", {kName[0], kName[0]}, 0},
      {"another string type", {{kCountry, 22, text("CN")}}, 0},
      {"another value", {{kCountry, 19, text("CX")}}, -1},
      {"a longer value", {{kCountry, 19, text("CNN")}}, -1},
      {"a shorter value", {{kCountry, 19, text("C")}}, -1},
      {"the value of another type", {{kUnit, 19, text("CN")}}, -1},
      {"one that is missing", {kName[0], {kSerialNumber, 19, text("1")}}, -1},
  };
  for (const Case& each : cases) {
    const Issuer issuer(each.issuer);
    EXPECT_EQ(X509NameCmp(name.get(), issuer.get()), each.expected) << each.what;
  }
  EXPECT_EQ(X509NameCmp(name.get(), nullptr), 0);
  EXPECT_EQ(X509NameCmp(nullptr, nullptr), -1);
  Issuer over_long({kName[0]});
  over_long.record().entries[0].valueLen = 0xFFFFFFFF;
  EXPECT_EQ(X509NameCmp(name.get(), over_long.get()), -1);
  over_long.record().entries[0].valueLen = 2;
  over_long.record().entries[0].typeLen = 17;
  EXPECT_EQ(X509NameCmp(name.get(), over_long.get()), -1);
}

TEST(HeadIssuer, IsKeptByTheVersionsThatHaveOne) {
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Issuer issuer(kName);
    const Bytes serial = pattern(128);
    ASSERT_EQ(SetCertSerialAndIssuerToHead(label, serial.data(), 0xABCDEF80, issuer.get()), 0);
    EXPECT_EQ(get(label, widened<GetHeadSerialNum>), serial);
    EXPECT_EQ(head_issuer(label), is_60(version) ? Attributes{} : kName);
    const Label decoded = decode(encode(label));
    Attributes expected = is_60(version) ? Attributes{} : kName;
    if (!is_60(version)) expected[1].tag = 19;  // UTF8String is written as PrintableString
    EXPECT_EQ(head_issuer(decoded), expected);
  }
}

TEST(HeadIssuer, FailuresChangeNeitherSerialNorIssuer) {
  const Issuer issuer(kName);
  const std::uint8_t serial[] = {1, 2, 3};
  PJCertIssuer* slot = nullptr;
  std::uint8_t room = 3;
  std::uint8_t buffer[3] = {9, 9, 9};
  Label none;
  EXPECT_EQ(SetCertSerialAndIssuerToHead(none, serial, 3, issuer.get()), -1);
  EXPECT_TRUE(get(none, widened<GetHeadSerialNum>).empty());
  EXPECT_EQ(GetCertSerialAndIssuerToHead(none, buffer, &room, &slot), -1);
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    const Bytes before = encode(label);
    EXPECT_EQ(SetCertSerialAndIssuerToHead(nullptr, serial, 3, issuer.get()), -1);
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label, nullptr, 3, issuer.get()), -1);
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label, serial, 3, nullptr), -1);
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label, serial, 0x100, issuer.get()), -1);
    EXPECT_EQ(SetCertSerialAndIssuerToHead(label, serial, 129, issuer.get()), -1);
    EXPECT_EQ(encode(label), before);
    room = 2;
    EXPECT_EQ(GetCertSerialAndIssuerToHead(label, buffer, &room, &slot), -1);
    room = 3;
    EXPECT_EQ(GetCertSerialAndIssuerToHead(label, buffer, nullptr, &slot), -1);
    EXPECT_EQ(GetCertSerialAndIssuerToHead(nullptr, buffer, &room, &slot), -1);
    EXPECT_EQ(GetCertSerialAndIssuerToHead(label, buffer, &room, nullptr), -1);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(buffer[0], 9);
  }
}

TEST(HeadIssuer, IsWrittenWithTheStringTypesThatNamesHave) {
  struct Case {
    const char* what;
    Issuer::Attribute attribute;
    Bytes written;  // nothing where it cannot be written
  };
  const Case cases[] = {
      {"Printable", {kCommonName, 19, text("A")}, hex("31 0A 30 08 06 03 55 04 03 13 01 41")},
      {"UTF8", {kOrganisation, 12, text("A")}, hex("31 0A 30 08 06 03 55 04 0A 13 01 41")},
      {"IA5", {kUnit, 22, text("A")}, hex("31 0A 30 08 06 03 55 04 0B 16 01 41")},
      {"BMP", {kCountry, 30, hex("0041")}, hex("31 0B 30 09 06 03 55 04 06 1E 02 00 41")},
      {"e-mail, printable",
       {kEmail, 19, text("A")},
       hex("31 10 30 0E 06 09 2A 86 48 86 F7 0D 01 09 01 16 01 41")},
      {"e-mail, unknown string",
       {kEmail, 4, text("A")},
       hex("31 10 30 0E 06 09 2A 86 48 86 F7 0D 01 09 01 16 01 41")},
      {"empty value", {kCommonName, 19, {}}, hex("31 09 30 07 06 03 55 04 03 13 00")},
      {"SN", {kSerialNumber, 19, text("A")}, {}},
      {"unknown string", {kCommonName, 20, text("A")}, {}},
      {"no type", {{}, 19, text("A")}, {}},
      {"type of 4", {hex("55 04 03 03"), 19, text("A")}, {}},
      {"another type of 9", {hex("2A 86 48 86 F7 0D 01 09 02"), 22, text("A")}, {}},
      {"type that ends like CN",
       {hex("2A 03 03"), 19, text("A")},
       hex("31 0A 30 08 06 03 2A 03 03 13 01 41")},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    Label label;
    fill(label, "1.1");
    const Issuer issuer({kName[0], each.attribute});
    ASSERT_EQ(SetCertSerialAndIssuerToHead(label, hex("01").data(), 1, issuer.get()), 0);
    const Bytes der = encode(label);
    EXPECT_EQ(der.empty(), each.written.empty());
    if (der.empty()) continue;
    const Element tree = parse(der);
    EXPECT_EQ(tree.children[0].children[2].children[1].der(), each.written);
    EXPECT_EQ(encode(decode(der)), der);
  }
  Label never_set;
  fill(never_set, "6.0");
  set(never_set, GLSetVersion, text("1.1"));
  EXPECT_TRUE(encode(never_set).empty()) << "a name that was never set";
}

TEST(HeadIssuer, ReadsAttributesThatItWouldNotWrite) {
  Label label;
  fill(label, "1.1.1");
  const Element good = parse(encode(label));
  const auto with_name = [&](std::string_view digits) {
    Element tree = good;
    tree.children[0].children[2] = parse(hex(digits));
    return decode(tree.der());
  };
  Label decoded = with_name("30 0C 31 0A 30 08 06 03 55 04 05 13 01 37");
  ASSERT_TRUE(decoded);
  EXPECT_EQ(head_issuer(decoded), (Attributes{{kSerialNumber, 19, text("7")}}));
  EXPECT_TRUE(encode(decoded).empty());
  // UTF8String keeps its tag in memory; of a relative name only the first attribute counts.
  decoded = with_name("30 16 31 14 30 08 06 03 55 04 03 0C 01 41 30 08 06 03 55 04 06 13 01 42");
  ASSERT_TRUE(decoded);
  EXPECT_EQ(head_issuer(decoded), (Attributes{{kCommonName, 12, text("A")}}));
  for (const char* bad :
       {"30 00", "30 02 31 00", "31 0C 31 0A 30 08 06 03 55 04 05 13 01 37",
        "30 0C 30 0A 30 08 06 03 55 04 05 13 01 37", "30 0C 31 0A 30 08 06 03 55 04 05 14 01 37",
        "30 09 31 07 30 05 06 03 55 04 05"}) {
    EXPECT_FALSE(with_name(bad)) << bad;
  }
}

}  // namespace
}  // namespace tq::abi
