// Limits of the size estimates, and what tells padding from encoded bytes.

#include "abi/model.h"

namespace tq::abi {
namespace {

TEST(LabCalSize, AddsToTheSizeOfHeadEnvelopesAndReplacesEverythingElse) {
  const Label label = full_label("1.1");
  const std::uint32_t added = sizes_of(label).headEnvelopeSize;
  LabelSizeInfo sizes;
  std::memset(&sizes, 0x11, sizeof sizes);
  EXPECT_EQ(LabCalSize(label, &sizes), 0);
  LabelSizeInfo expected = sizes_of(label);
  expected.headEnvelopeSize += 0x11111111;
  EXPECT_EQ(listed(sizes), listed(expected));
  sizes.headEnvelopeSize = UINT32_MAX - added;
  EXPECT_EQ(LabCalSize(label, &sizes), 0);
  EXPECT_EQ(sizes.headEnvelopeSize, UINT32_MAX);
  EXPECT_EQ(LabCalSize(label, &sizes), -1) << "no sum of 32 bits";
}

TEST(LabCalSize, StopsAtTheHundredAndFirstEnvelopeOfTheHead) {
  Label label;
  fill(label, "1.1");
  for (std::uint8_t i = 1; i <= 100; ++i) ASSERT_EQ(add_to_head(label, {recipient(i)}), 0);
  LabelSizeInfo sizes = sizes_of(label);
  EXPECT_EQ(sizes.headEnvelopeCount, 100U);
  EXPECT_EQ(sizes.headEnvelopeSize, 100U * (3 + 2 + 8 + 3 + 2 + 8));
  ASSERT_EQ(add_to_head(label, {recipient(101)}), 0);
  sizes = {};
  EXPECT_EQ(LabCalSize(label, &sizes), -1);
  EXPECT_EQ(sizes.cipher, 9U) << "stored before the count";
  EXPECT_EQ(sizes.reserve, 0U) << "stored after it";
}

TEST(HavePadded, LooksForAThirdElementOnly) {
  const std::tuple<const char*, std::int32_t, std::uint32_t> cases[] = {
      {"30 04 05 00 05 00", 0, 0},
      {"30 06 05 00 05 00 04 00", 0, 1},
      {"30 08 05 00 05 00 04 00 04 00", 0, 1},
      {"30 04 05 00 05 00 04 00", 0, 0},  // behind the label
      {"30 02 05 00", -1, 7},
      {"31 04 05 00 05 00", -1, 7},
      {"30 06 05 00 05 00 04 01", -1, 7},
  };
  for (const auto& [digits, result, expected] : cases) {
    const Bytes der = hex(digits);
    std::uint32_t flag = 7;
    EXPECT_EQ(HavePadded(der.data(), size32(der), &flag), result) << digits;
    EXPECT_EQ(flag, expected) << digits;
  }
}

}  // namespace
}  // namespace tq::abi
