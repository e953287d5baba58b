// Log entries: the list, its odd deletion, and texts too long for their copy.

#include "abi/records.h"

namespace tq::abi {
namespace {

Log numbered(std::uint32_t number) {
  Log log;
  log.number = number;
  return log;
}
Label with_logs(const char* version, std::uint32_t count) {
  Label label;
  fill(label, version);
  for (std::uint32_t i = 1; i <= count; ++i) EXPECT_EQ(add_log(label, numbered(i)), 0);
  return label;
}
TEST(Logs, OfMoreThan255BytesAreReadBackInPart) {
  for (const std::uint32_t length : {256U, 257U, 300U, 511U, 512U, 70000U}) {
    SCOPED_TRACE(length);
    Log log;
    log.text1 = pattern(length, 1);
    log.array1 = pattern(length, 2);
    log.array2 = pattern(length, 3);
    log.text2 = pattern(length, 4);
    Label label;
    fill(label, "1.1");
    ASSERT_EQ(add_log(label, log), 0);
    const Label decoded = decode(encode(label));
    EXPECT_EQ(encode(decoded), encode(label)) << "the label has all of it";
    for (Bytes* cut : {&log.text1, &log.array1, &log.array2}) {
      std::fill(cut->begin() + (length & 0xFF), cut->end(), std::uint8_t{0});
    }
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      EXPECT_EQ(log_at(each, 0), log);
    }
  }
}

TEST(Logs, HaveAnIssuerOfOneToTenAttributes) {
  const Label label = with_logs("6.0", 1);
  const Bytes before = encode(label);
  Log log;
  log.issuer.clear();
  EXPECT_EQ(add_log(label, log), -1);
  log.issuer.assign(11, {kCommonName, 19, text("A")});
  EXPECT_EQ(add_log(label, log), -1);
  EXPECT_EQ(encode(label), before);
  log.issuer.pop_back();
  EXPECT_EQ(add_log(label, log), 0);
  EXPECT_EQ(log_at(label, 0), log);
}

TEST(FreeLog, ReleasesNothingOfARecordThatLacksABuffer) {
  const Label label = with_logs("1.1", 1);
  for (const auto member : {&LogInfo::text1, &LogInfo::array1, &LogInfo::array2, &LogInfo::text2}) {
    LogInfo* log = nullptr;
    ASSERT_EQ(GetLog(label, 0, &log), 0);
    std::uint8_t* const taken = log->*member;
    log->*member = nullptr;
    FreeLog(log);
    log->*member = taken;
    EXPECT_EQ(made(log->text2, log->text2Len), text("read only"));
    EXPECT_EQ(attributes_of(log->issuer), Log{}.issuer);
    FreeLog(log);
  }
  FreeLog(nullptr);
}

}  // namespace
}  // namespace tq::abi
