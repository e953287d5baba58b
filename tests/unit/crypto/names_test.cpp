#include "crypto/names.h"

#include <gtest/gtest.h>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

TEST(Name, IsWrittenForTheTypesAndStringsThatItKnows) {
  const Bytes letter = text("x");
  // Types, each with the kind of its value and the tag that is written, 00 where there is none.
  const std::vector<Bytes> cases = hexes(
      "|13 00|55 04|13 00|55 04 05|13 00|55 04 04|13 00|55 04 09|13 00|55 04 0C|13 00|55 04 83|13 "
      "00"
      "|55 04 03 03|13 00|2A 86 48 86 F7 0D 01 09|13 00|2A 86 48 86 F7 0D 01 09 02|16 00"
      "|2A 86 48 86 F7 0D 01 09 01 01|16 00|55 04 03|00 00|55 04 03|04 00|55 04 03|14 00"
      "|55 04 03|A0 00|55 04 03|0C 13|55 04 06|13 13|55 04 07|16 16|55 04 08|1E 1E|55 04 0A|13 13"
      "|55 04 0B|13 13|00 FF 03|13 13|2A 86 48 86 F7 0D 01 09 01|13 16"
      "|2A 86 48 86 F7 0D 01 09 01|00 16");
  for (std::size_t i = 0; i < cases.size(); i += 2) {
    const std::uint8_t written = cases[i + 1][1];
    X509Name attribute = {field(cases[i], 6), field(letter, cases[i + 1][0]), nullptr};
    const X509Name* const given = &attribute;
    const Bytes expected = tlv(0x31, sequence(tlv(6, cases[i]), tlv(written, letter)));
    EXPECT_EQ(encoded(EncodeDName, given), written == 0 ? std::nullopt : std::optional(expected))
        << i;
    attribute.value.data = nullptr;  // a length without bytes
    EXPECT_EQ(encoded(EncodeDName, given), std::nullopt);
  }
}

TEST(Name, IsReadOfAnyTypeAndTakesTheFirstOfSeveralValuesOnly) {
  for (const std::uint8_t tag : hex("0C 13 16 1E")) {
    for (const Bytes& type : {hex("55 04 05"), kEmail, Bytes{}}) {
      const Bytes first = sequence(tlv(6, type), tlv(tag, text("v")));
      OwnedBy<kName> name;
      ASSERT_TRUE(decodes(DecodeX509Name, sequence(tlv(0x31, concat(first, hex("05 00"), first))),
                          &name.record));
      EXPECT_EQ(content(name.record.type), type);
      EXPECT_EQ(content(name.record.value), text("v"));
      EXPECT_EQ(name.record.value.type, tag);
      EXPECT_EQ(name.record.next, nullptr);
    }
  }
  // Empty, incomplete, not a SET of SEQUENCEs, no string or one of another kind, the other way
  // round, a second value cut short, something else behind a good one.
  const NoLeaks no_leaks;
  for (const Bytes& bad :
       hexes("|30 00|30 02 31 00|30 04 31 02 30 00|30 09 31 07 30 05 06 03 55 04 03"
             "|30 07 31 05 30 03 13 01 61|30 0C 30 0A 30 08 06 03 55 04 03 13 01 61"
             "|30 0C 31 0A 31 08 06 03 55 04 03 13 01 61|30 0C 31 0A 30 08 06 03 55 04 03 04 01 61"
             "|30 0C 31 0A 30 08 06 03 55 04 03 14 01 61|30 0C 31 0A 30 08 13 01 61 06 03 55 04 03"
             "|30 0E 31 0C 30 08 06 03 55 04 03 13 01 61 30 01"
             "|30 0E 31 0A 30 08 06 03 55 04 03 13 01 61 05 00"
             "|30 0E 31 0A 30 08 06 03 55 04 03 13 01 61 31 00"
             "|31 0C 31 0A 30 08 06 03 55 04 03 13 01 61")) {
    OwnedBy<kName> name;
    EXPECT_FALSE(decodes(DecodeX509Name, bad, &name.record)) << ::testing::PrintToString(bad);
  }
  EXPECT_TRUE(no_leaks.hold());
}

}  // namespace
}  // namespace tq::test
