// Logs: texts too long for their copy, and records that are released.

#include <span>

#include "abi/records.h"

namespace tq::abi {
namespace {

TEST(Logs, OfMoreThan255BytesAreReadBackInPart) {
  for (const std::uint32_t length : {256U, 257U, 300U, 511U, 512U, 70000U}) {
    SCOPED_TRACE(length);
    Filled<LogInfo> log;
    Bytes bytes[] = {pattern(length, 1), pattern(length, 2), pattern(length, 3),
                     pattern(length, 4)};
    LogInfo& given = log.record;
    given = {1,
             bytes[0].data(),
             length,
             given.issuer,
             bytes[1].data(),
             length,
             bytes[2].data(),
             length,
             2,
             3,
             bytes[3].data(),
             length};
    Label label;
    fill(label, "1.1");
    ASSERT_EQ(AddLog(label, &given), 0);
    const Label decoded = decode(encode(label));
    EXPECT_EQ(encode(decoded), encode(label)) << "the label has all of it";
    for (Bytes& cut : std::span(bytes, 3)) {
      std::fill(cut.begin() + (length & 0xFF), cut.end(), std::uint8_t{0});
    }
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      EXPECT_EQ(describe(*take<LogInfo>(GetLog, each, 0U)).str(), describe(given).str());
    }
  }
}

TEST(FreeLog, ReleasesNothingOfARecordThatLacksABuffer) {
  const Label label;
  ASSERT_EQ(add_log(label, 1), 0);
  for (const auto member : {&LogInfo::text1, &LogInfo::array1, &LogInfo::array2, &LogInfo::text2}) {
    const auto log = take<LogInfo>(GetLog, label, 0U);
    std::uint8_t* const taken = std::exchange((*log).*member, nullptr);
    FreeLog(log.get());
    (*log).*member = taken;
    EXPECT_EQ(log->number, 1U);
  }
}

}  // namespace
}  // namespace tq::abi
