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
std::vector<std::uint32_t> numbers(TqLabel label) {
  std::vector<std::uint32_t> found;
  for (std::uint32_t i = 0; const std::optional<Log> log = log_at(label, i); ++i) {
    found.push_back(log->number);
  }
  EXPECT_EQ(counted(label, GetLogCout), found.size());
  return found;
}
using Numbers = std::vector<std::uint32_t>;

TEST(Logs, ComeBackNewestFirstFromTheLabelAndFromItsBytes) {
  Log filled = numbered(UINT32_MAX);
  filled.text1 = pattern(255, 1);
  filled.issuer = recipient(1).issuer;
  filled.array1 = pattern(255, 2);
  filled.array2 = pattern(128, 3);
  filled.text2 = pattern(1000, 4);
  filled.time = 0;
  Log empty;
  empty.text1 = empty.array1 = empty.array2 = empty.text2 = {};
  for (const char* version : kVersions) {
    Label label;
    fill(label, version);
    for (const Log& log : {numbered(1), filled, empty}) ASSERT_EQ(add_log(label, log), 0);
    const Label decoded = decode(encode(label));
    ASSERT_TRUE(decoded);
    for (const TqLabel each : {TqLabel{label}, TqLabel{decoded}}) {
      std::vector<Log> expected = {empty, filled, numbered(1)};
      for (Log& log : expected) {
        if (is_60(version) && each == decoded) log.issuer = {};  // does not write it
      }
      for (std::uint32_t i = 0; i < 3; ++i) EXPECT_EQ(log_at(each, i), expected[i]) << i;
      for (const std::uint32_t off : {3U, 4U, UINT32_MAX}) EXPECT_FALSE(log_at(each, off));
      EXPECT_EQ(counted(each, GetLogCout), 3U);
    }
  }
}

TEST(Logs, OfPositionZeroGoTogetherAndOthersAloneWithAFailure) {
  struct Case {
    std::int32_t position;
    std::int32_t result;
    Numbers left;
  };
  const Case cases[] = {
      {0, 0, {}},
      {1, -1, {3, 1}},
      {2, -1, {3, 2}},
      {3, -1, {3, 2, 1}},
      {INT32_MAX, -1, {3, 2, 1}},
      {-1, -1, {3, 2, 1}},
      {INT32_MIN, -1, {3, 2, 1}},
  };
  for (const char* version : kVersions) {
    for (const Case& each : cases) {
      const Label label = with_logs(version, 3);
      EXPECT_EQ(DelLog(label, each.position), each.result) << each.position;
      EXPECT_EQ(numbers(label), each.left) << each.position;
      EXPECT_EQ(numbers(decode(encode(label))), each.left);
      ASSERT_EQ(add_log(label, numbered(9)), 0);
      EXPECT_EQ(log_at(label, 0), numbered(9));
    }
    const Label empty = with_logs(version, 0);
    EXPECT_EQ(DelLog(empty, 0), -1);
    EXPECT_EQ(DelLog(empty, 1), -1);
    const Bytes before = encode(empty);
    for (const std::uint32_t count : {0U, 1U, 3U}) {
      const Label label = with_logs(version, count);
      EXPECT_EQ(DelAlLog(label), 0);
      EXPECT_EQ(DelAlLog(label), 0);
      EXPECT_EQ(encode(label), before) << "as if there had never been one";
    }
  }
  EXPECT_EQ(DelLog(nullptr, 0), -1);
  EXPECT_EQ(DelAlLog(nullptr), -1);
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

TEST(Logs, NeedTheirBuffersAndAnIssuer) {
  for (const char* version : kVersions) {
    const Label label = with_logs(version, 1);
    const Bytes before = encode(label);
    Log log;
    Issuer issuer(log.issuer);
    const LogInfo info = view(log, issuer);
    EXPECT_EQ(AddLog(nullptr, &info), -1);
    EXPECT_EQ(AddLog(label, nullptr), -1);
    for (const auto member :
         {&LogInfo::text1, &LogInfo::array1, &LogInfo::array2, &LogInfo::text2}) {
      LogInfo lacking = info;
      lacking.*member = nullptr;
      lacking.text1Len = lacking.array1Len = lacking.array2Len = lacking.text2Len = 0;
      EXPECT_EQ(AddLog(label, &lacking), -1);
    }
    LogInfo nobody = info;
    nobody.issuer = nullptr;
    EXPECT_EQ(AddLog(label, &nobody), -1);
    log.issuer.clear();
    EXPECT_EQ(add_log(label, log), -1);
    log.issuer.assign(11, {kCommonName, 19, text("A")});
    EXPECT_EQ(add_log(label, log), -1);
    log.issuer.assign(10, {kCommonName, 19, text("A")});
    EXPECT_EQ(encode(label), before);
    EXPECT_EQ(add_log(label, log), 0);
    EXPECT_EQ(log_at(label, 0), log);
    LogInfo* out = nullptr;
    EXPECT_EQ(GetLog(nullptr, 0, &out), -1);
    EXPECT_EQ(GetLog(label, 0, nullptr), -1);
    EXPECT_EQ(GetLog(label, 2, &out), -1);
    EXPECT_EQ(out, nullptr);
  }
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
