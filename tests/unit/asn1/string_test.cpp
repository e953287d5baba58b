#include <gtest/gtest.h>
#include <tqasn1/asn1.h>

#include "unit/support/allocations.h"
#include "unit/support/bytes.h"

namespace tq::asn1 {
namespace {

using test::Bytes;
using test::bytes_of;
using test::Chain;
using test::hex;
using test::Input;
using test::join;
using test::tlv;

struct Kind {
  const char* name;
  std::uint8_t tag;
  std::int32_t (*get)(const ANYBUF*, ANYBUF**);
  std::int32_t (*set)(const ANYBUF*, ANYBUF**);
  Bytes front;  // content octets in front of the string itself
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

class String : public ::testing::TestWithParam<Kind> {
 protected:
  static Bytes element(const Bytes& content) {
    return tlv(GetParam().tag, join(GetParam().front, content));
  }
};

TEST_P(String, CarriesItsOctetsUnchangedBothWays) {
  for (const std::size_t length : {0U, 1U, 2U, 126U, 127U, 128U, 255U, 256U, 65535U, 65536U}) {
    Bytes content(length);
    for (std::size_t i = 0; i < length; ++i) content[i] = static_cast<std::uint8_t>(i * 37 + 0xF9);
    Input input(content);
    ANYBUF* made = nullptr;
    ASSERT_EQ(GetParam().set(input.node(), &made), 0);
    const Chain owner(made);
    EXPECT_EQ(bytes_of(made), element(content));
    EXPECT_EQ(made->form, ASN1_FORM_INLINE);
    EXPECT_EQ(made->type, GetParam().tag);
    ANYBUF* read = nullptr;
    ASSERT_EQ(GetParam().get(made, &read), 0);
    const Chain read_owner(read);
    EXPECT_EQ(bytes_of(read), content);
    EXPECT_EQ(read->data == nullptr, length == 0);
    EXPECT_EQ(read->form, ASN1_FORM_OWNED);
    EXPECT_EQ(read->type, GetParam().tag);
    EXPECT_EQ(read->flags, 0U);
    EXPECT_EQ(read->next, nullptr);
  }
}

TEST_P(String, ReadsTheStartOfALongerBuffer) {
  ANYBUF* read = nullptr;
  ASSERT_EQ(GetParam().get(Input(join(element(hex("41 42")), hex("FF FF"))).node(), &read), 0);
  EXPECT_EQ(bytes_of(Chain(read).get()), hex("41 42"));
}

TEST_P(String, RefusesOtherElements) {
  ANYBUF* read = nullptr;
  Bytes cut = element(hex("41 42"));
  cut.pop_back();
  EXPECT_EQ(GetParam().get(Input(cut).node(), &read), -1);
  EXPECT_EQ(GetParam().get(Input({}).node(), &read), -1);
  for (unsigned tag = 0; tag < 0x100; ++tag) {
    if (tag == GetParam().tag) continue;
    const Bytes other = tlv(static_cast<std::uint8_t>(tag), join(GetParam().front, hex("41")));
    EXPECT_EQ(GetParam().get(Input(other).node(), &read), -1) << tag;
  }
  EXPECT_EQ(read, nullptr);
}

TEST_P(String, RefusesNullArgumentsAndLengthsWithoutBytes) {
  Input input(element({}));
  ANYBUF no_bytes{};
  no_bytes.length = 2;
  ANYBUF* made = nullptr;
  EXPECT_EQ(GetParam().get(nullptr, &made), -1);
  EXPECT_EQ(GetParam().get(input.node(), nullptr), -1);
  EXPECT_EQ(GetParam().get(&no_bytes, &made), -1);
  EXPECT_EQ(GetParam().set(nullptr, &made), -1);
  EXPECT_EQ(GetParam().set(input.node(), nullptr), -1);
  EXPECT_EQ(GetParam().set(&no_bytes, &made), -1);
  EXPECT_EQ(made, nullptr);
}

TEST_P(String, RefusesLengthsWhoseElementIsTooLong) {
  std::uint8_t octet = 0;
  ANYBUF huge{};
  huge.data = &octet;
  huge.length = UINT32_MAX - 5;
  ANYBUF* made = nullptr;
  const std::size_t calls = test::allocations().calls;
  EXPECT_EQ(GetParam().set(&huge, &made), -1);
  huge.length = UINT32_MAX;
  EXPECT_EQ(GetParam().set(&huge, &made), -1);
  EXPECT_EQ(test::allocations().calls, calls);
}

TEST_P(String, SurvivesEveryFailedAllocation) {
  const auto attempt = [] {
    Input input(hex("41 42"));
    ANYBUF* made = nullptr;
    ANYBUF* read = nullptr;
    const bool done = GetParam().set(input.node(), &made) == 0 && GetParam().get(made, &read) == 0;
    DIFreeAnybuf(made);
    DIFreeAnybuf(read);
    return done;
  };
  EXPECT_EQ(test::fail_each_allocation(attempt), 3U);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, String,
    ::testing::Values(
        Kind{"IntegerArray", 0x02, QZAsn1GetIntegerArray, QZAsn1SetIntegerArray, {}},
        Kind{"BitString", 0x03, QZAsn1GetBitString, QZAsn1SetBitString, {0}},
        Kind{"OctetString", 0x04, QZAsn1GetOctetString, QZAsn1SetOctetString, {}},
        Kind{"ObjectId", 0x06, QZAsn1GetObjectIdPJ, QZAsn1SetObjectIdPJ, {}},
        Kind{"PrintableString", 0x13, QZAsn1GetPrintableString, QZAsn1SetPrintableString, {}},
        Kind{"Ia5String", 0x16, QZAsn1GetIa5String, QZAsn1SetIa5String, {}},
        Kind{"BmpString", 0x1E, QZAsn1GetBmpString, QZAsn1SetBmpString, {}}),
    [](const auto& kind) { return kind.param.name; });

TEST(BitString, HasNoUnusedBits) {
  for (const char* bytes : {"03 00", "03 01 01", "03 02 01 80", "03 02 07 80", "03 02 08 00"}) {
    ANYBUF* read = nullptr;
    EXPECT_EQ(QZAsn1GetBitString(Input(hex(bytes)).node(), &read), -1) << bytes;
    EXPECT_EQ(read, nullptr);
  }
}

}  // namespace
}  // namespace tq::asn1
