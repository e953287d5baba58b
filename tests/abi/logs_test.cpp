// Log entries and extension values: their lists, odd deletions, and texts too long for their copy.

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
std::uint32_t log_count(TqLabel label) {
  std::uint32_t count = 0;
  EXPECT_EQ(GetLogCout(label, &count), 0);
  return count;
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

// Position 0 stands for all entries; any other is removed and -1 returned all the same.
TEST(Logs, AreDeletedAllAtOnceOrOneWithoutThanks) {
  const Label label = with_logs("1.1", 3);
  EXPECT_EQ(DelLog(label, 3), -1);
  EXPECT_EQ(DelLog(label, -1), -1);
  EXPECT_EQ(log_count(label), 3U);
  EXPECT_EQ(DelLog(label, 1), -1);
  EXPECT_EQ(log_count(label), 2U);
  EXPECT_EQ(log_at(label, 0)->number, 3U) << "the newest stays";
  EXPECT_EQ(log_at(label, 1)->number, 1U);
  EXPECT_EQ(DelLog(label, 0), 0);
  EXPECT_EQ(log_count(label), 0U);
  EXPECT_EQ(DelLog(label, 0), -1);
  EXPECT_EQ(DelAlLog(label), 0);
}

// The getters of extension values ask for no capacity; deleting compares 16 bits of the type.
TEST(Extensions, AreFoundByTheWholeTypeAndDeletedByHalfOfIt) {
  const Label label;
  const Bytes wide = text("wide");
  const Bytes narrow = text("narrow");
  for (const auto& [type, value] : {std::pair{65543U, wide}, std::pair{7U, narrow}}) {
    EXPECT_EQ(AddExtendValue(label, type, value.data(), size32(value)), 0);
  }
  Bytes room(8, 0xEE);
  std::uint32_t length = 1;
  std::uint32_t type = 0;
  EXPECT_EQ(GetExtendValue(label, 65543, room.data(), &length), 0);
  EXPECT_EQ(Bytes(room.begin(), room.begin() + length), wide);
  length = 0;
  EXPECT_EQ(GetExtend(label, 0, &type, room.data(), &length), 0);
  EXPECT_EQ(type, 7U);
  EXPECT_EQ(Bytes(room.begin(), room.begin() + length), narrow);
  EXPECT_EQ(DelExtendAttr(label, 65543), 0) << "takes the one of type 7";
  EXPECT_EQ(GetExtendValue(label, 7, nullptr, &length), -1);
  EXPECT_EQ(DelExtendAttr(label, 65543), -1);
  EXPECT_EQ(GetExtendValue(label, 65543, nullptr, &length), 0);
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
