// Access logs, newest first.

#include "access/copy.h"
#include "crypto/issuers.h"
#include "der/label/log.h"

namespace tq {
namespace {

using LogOwner = std::unique_ptr<Log, Releaser<FreeLogAtrr>>;

bool has_all_buffers(const LogInfo& log) {
  return log.text1 != nullptr && log.array1 != nullptr && log.array2 != nullptr &&
         log.text2 != nullptr;
}

[[nodiscard]] bool fill(Log& record, const LogInfo& log) {
  record.logTime = log.time;
  record.logValue = log.value;
  record.logType = log.number;
  return replace(record.logText2, log.text2, log.text2Len, der::kPrintableString) &&
         replace(record.logArray2, log.array2, log.array2Len, der::kInteger) &&
         replace(record.logText1, log.text1, log.text1Len, der::kPrintableString) &&
         replace(record.logArray1, log.array1, log.array1Len, der::kInteger) &&
         ConvertIssuerName2PJCertIssuer(log.issuer, &record.logName) == 0;
}

// A copy of the low 8 bits of the length only, in a block for all of it: what a caller finds behind
// is zero.
[[nodiscard]] bool copy_short(const ANYBUF& field, std::uint8_t*& buffer, std::uint32_t& length) {
  buffer = make_zeroed<std::uint8_t>(std::size_t{field.length} + 1).release();
  if (buffer == nullptr) return false;
  if (field.length != 0) std::memcpy(buffer, field.data, low8(field.length));
  length = field.length;
  return true;
}

[[nodiscard]] bool fill(LogInfo& log, const Log& record) {
  log.time = record.logTime;
  log.value = record.logValue;
  log.number = record.logType;
  log.text2Len = record.logText2.length;
  log.text2 = duplicate(record.logText2);
  return log.text2 != nullptr && copy_short(record.logArray2, log.array2, log.array2Len) &&
         copy_short(record.logText1, log.text1, log.text1Len) &&
         copy_short(record.logArray1, log.array1, log.array1Len) &&
         ConvertPJCertIssuer2IssuerName(&record.logName, &log.issuer) == 0;
}

// Releases also a record that is half filled, which the exported function leaves alone.
void release_log(LogInfo* log) {
  Asn1Free(log->text1);
  Asn1Free(log->array1);
  Asn1Free(log->array2);
  Asn1Free(log->text2);
  FreeIssuerName(log->issuer);
  Asn1Free(log);
}

}  // namespace
}  // namespace tq

std::int32_t AddLog(TqLabel label, const LogInfo* log) {
  if (label == nullptr || log == nullptr || !tq::has_all_buffers(*log)) return -1;
  tq::LogOwner made(tq::make_zeroed<tq::Log>().release());
  if (!made || !tq::fill(*made, *log)) return -1;
  tq::push_front(label->body.logs, made.release());
  return 0;
}

std::int32_t GetLog(TqLabel label, std::uint32_t position, LogInfo** log) {
  if (label == nullptr || log == nullptr) return -1;
  const tq::Log* record = *tq::link_at(label->body.logs, position);
  if (record == nullptr) return -1;
  std::unique_ptr<LogInfo, tq::Releaser<tq::release_log>> made(
      tq::make_zeroed<LogInfo>().release());
  if (!made || !tq::fill(*made, *record)) return -1;
  *log = made.release();
  return 0;
}

// Position 0 stands for all of them. At any other the record is removed and -1 returned: callers
// have always had it so.
std::int32_t DelLog(TqLabel label, std::int32_t position) {
  if (label == nullptr || label->body.logs == nullptr || position < 0) return -1;
  if (position == 0) return DelAlLog(label);
  tq::Log** link = tq::link_at(label->body.logs, static_cast<std::uint32_t>(position));
  if (*link != nullptr) tq::FreeLogAtrr(tq::unlink(link));
  return -1;
}

std::int32_t DelAlLog(TqLabel label) {
  if (label == nullptr) return -1;
  tq::FreeLogAtrr(label->body.logs);
  label->body.logs = nullptr;
  return 0;
}

void FreeLog(LogInfo* log) {
  if (log != nullptr && tq::has_all_buffers(*log)) tq::release_log(log);
}
