// Extension values: a list in which types may repeat and large ones cannot be removed.

#include "abi/records.h"

namespace tq::abi {
namespace {

using Values = std::vector<std::pair<std::uint32_t, Bytes>>;

std::int32_t add(TqLabel label, std::uint32_t type, Bytes value) {
  return AddExtendValue(label, type, pointer(value), size32(value));
}
Label with_values(const char* version, const Values& oldest_first) {
  Label label;
  fill(label, version);
  for (const auto& [type, value] : oldest_first) EXPECT_EQ(add(label, type, value), 0);
  return label;
}

// By position, which holds the getter to its rules.
Values values_of(TqLabel label) {
  Values values;
  const std::uint32_t count = counted(label, GetExtendCount);
  for (std::uint32_t i = 0; i < count; ++i) {
    std::uint32_t type = 0;
    std::uint32_t length = 0;
    EXPECT_EQ(GetExtend(label, i, &type, nullptr, &length), 0);
    Bytes value(length + 1, 0xEE);
    std::uint32_t again = 0;
    length = 0;  // it is not looked at
    EXPECT_EQ(GetExtend(label, i, &again, value.data(), &length), 0);
    EXPECT_EQ(again, type);
    EXPECT_EQ(length + 1, value.size());
    EXPECT_EQ(value.back(), 0xEE);
    value.pop_back();
    values.emplace_back(type, value);
  }
  std::uint32_t type = 77;
  std::uint32_t length = 78;
  for (const std::uint32_t off : {count, count + 1, UINT32_MAX}) {
    EXPECT_EQ(GetExtend(label, off, &type, nullptr, &length), -1);
  }
  EXPECT_EQ(type, 77U);
  EXPECT_EQ(length, 78U);
  return values;
}

TEST(Extensions, ComeBackNewestFirstFromTheLabelAndFromItsBytes) {
  for (const char* version : kVersions) {
    const Label label = with_values(
        version,
        {{0, {}}, {7, text("old")}, {65543, pattern(300)}, {7, text("newer")}, {UINT32_MAX, {0}}});
    const Label decoded = decode(encode(label));
    ASSERT_TRUE(decoded);
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      EXPECT_EQ(values_of(each), (Values{{UINT32_MAX, {0}},
                                         {7, text("newer")},
                                         {65543, pattern(300)},
                                         {7, text("old")},
                                         {0, {}}}));
      EXPECT_EQ(extension(each, 7), text("newer"));
      EXPECT_EQ(extension(each, 65543), pattern(300));
      EXPECT_EQ(extension(each, UINT32_MAX), Bytes{0});
      EXPECT_EQ(extension(each, 0), Bytes{});
      EXPECT_EQ(extension(each, 65536), text("none")) << "all 32 bits count";
      EXPECT_EQ(extension(each, 8), text("none"));
    }
  }
}

TEST(Extensions, AreRemovedByTheLow16BitsOfTheirType) {
  for (const char* version : kVersions) {
    const Label label =
        with_values(version, {{7, text("a")}, {65543, text("b")}, {8, text("c")}, {7, text("d")}});
    EXPECT_EQ(DelExtendAttr(label, 65543), 0) << "the newest of type 7";
    EXPECT_EQ(values_of(label), (Values{{8, text("c")}, {65543, text("b")}, {7, text("a")}}));
    EXPECT_EQ(DelExtendAttr(label, 0xFFFF0008), 0);
    EXPECT_EQ(DelExtendAttr(label, 7), 0);
    EXPECT_EQ(DelExtendAttr(label, 7), -1);
    EXPECT_EQ(DelExtendAttr(label, 65543), -1) << "not by its own type";
    EXPECT_EQ(DelExtendAttr(label, 65536), -1);
    EXPECT_EQ(values_of(label), (Values{{65543, text("b")}}));

    const Label emptied = with_values(version, {{1, text("x")}});
    EXPECT_EQ(DelExtendAttr(emptied, 1), 0);
    EXPECT_EQ(DelExtendAttr(emptied, 1), -1);
    EXPECT_EQ(encode(emptied), encode(with_values(version, {})));
  }
}

TEST(Extensions, NeedTheirPointers) {
  const Label label = with_values("1.1", {{1, text("x")}});
  const Bytes before = encode(label);
  std::uint8_t byte = 0xEE;
  std::uint32_t length = 77;
  std::uint32_t type = 78;
  EXPECT_EQ(AddExtendValue(nullptr, 1, &byte, 1), -1);
  EXPECT_EQ(AddExtendValue(label, 1, nullptr, 1), -1);
  EXPECT_EQ(AddExtendValue(label, 1, nullptr, 0), -1);
  EXPECT_EQ(GetExtendValue(nullptr, 1, &byte, &length), -1);
  EXPECT_EQ(GetExtendValue(label, 1, &byte, nullptr), -1);
  EXPECT_EQ(GetExtendValue(label, 2, &byte, &length), -1);
  EXPECT_EQ(GetExtend(nullptr, 0, &type, &byte, &length), -1);
  EXPECT_EQ(GetExtend(label, 0, nullptr, &byte, &length), -1);
  EXPECT_EQ(GetExtend(label, 0, &type, &byte, nullptr), -1);
  EXPECT_EQ(DelExtendAttr(nullptr, 1), -1);
  EXPECT_EQ(encode(label), before);
  EXPECT_EQ(byte, 0xEE);
  EXPECT_EQ(length, 77U);
  EXPECT_EQ(type, 78U);
}

}  // namespace
}  // namespace tq::abi
