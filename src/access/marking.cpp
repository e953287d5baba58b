// Watermark and stamp, as whole records.

#include "access/marking.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "access/copy.h"

namespace tq {
namespace {

[[nodiscard]] std::int32_t answer(bool done) { return done ? 0 : -1; }

// The second text is as long as the caller's but made of his data; what the data does not fill is
// zero. Callers have always had it so.
[[nodiscard]] bool replace_second_text(ANYBUF& field, const Stamp& caller) {
  const std::size_t length = std::strlen(caller.text2) + 1;
  Block<std::uint8_t> bytes = make_zeroed<std::uint8_t>(length);
  if (length > UINT32_MAX || !bytes) return false;
  std::memcpy(bytes.get(), caller.data, std::min<std::size_t>(length, caller.dataLen));
  adopt(field, std::move(bytes), static_cast<std::uint32_t>(length), der::kPrintableString);
  return true;
}

void free_buffers(Meta& caller) {
  free_buffer(caller.element);
  free_buffer(caller.text1);
  free_buffer(caller.text2);
}

void free_buffers(Seal& caller) {
  free_buffer(caller.name);
  free_buffers(caller.meta);
  free_buffer(caller.data);
  free_buffer(caller.element);
  free_buffer(caller.bits);
}

void free_buffers(Stamp& caller) {
  free_buffer(caller.text1);
  free_buffer(caller.text2);
  free_buffer(caller.data);
}

}  // namespace

std::int32_t GetWaterMark(const WaterMarkInfo* record, WaterMark* caller) {
  if (record == nullptr || caller == nullptr) return -1;
  caller->alg = record->markAlg.alg;
  caller->algParam = record->markAlg.algParam;
  caller->time = record->markTime;
  return answer(copy_to_caller(record->markData1, caller->data1, caller->data1Len) &&
                copy_to_caller(record->markData2, caller->data2, caller->data2Len) &&
                copy_to_caller(record->markText, caller->text, caller->textLen));
}

std::int32_t SetWaterMark(const WaterMark* caller, WaterMarkInfo* record) {
  if (record == nullptr || caller == nullptr) return -1;
  record->markAlg = {caller->alg, caller->algParam};
  record->markTime = caller->time;
  return answer(replace(record->markData1, caller->data1, caller->data1Len, der::kOctetString) &&
                replace(record->markData2, caller->data2, caller->data2Len, der::kOctetString) &&
                replace_text(record->markText, caller->text));
}

std::int32_t GetMetal(const MetaInfo* record, Meta* caller) {
  if (record == nullptr || caller == nullptr) return -1;
  caller->time1 = record->metaTime1;
  caller->time2 = record->metaTime2;
  caller->time3 = record->metaTime3;
  return answer(copy_to_caller(record->metaElement, caller->element, caller->elementLen) &&
                copy_to_caller(record->metaText1, caller->text1, caller->text1Len) &&
                copy_to_caller(record->metaText2, caller->text2, caller->text2Len));
}

std::int32_t SetMetal(MetaInfo* record, const Meta* caller) {
  if (record == nullptr || caller == nullptr || caller->element == nullptr ||
      caller->text1 == nullptr || caller->text2 == nullptr) {
    return -1;
  }
  record->metaTime1 = caller->time1;
  record->metaTime2 = caller->time2;
  record->metaTime3 = caller->time3;
  return answer(
      replace(record->metaElement, caller->element, caller->elementLen,
              der::type_word(der::kSequence)) &&
      replace(record->metaText1, caller->text1, caller->text1Len, der::kPrintableString) &&
      replace(record->metaText2, caller->text2, caller->text2Len, der::kPrintableString));
}

std::int32_t GetSeal(const SealInfo* record, Seal* caller) {
  if (record == nullptr || caller == nullptr) return -1;
  caller->type = low8(record->sealType);
  const bool copied = copy_to_caller(record->sealName, caller->name, caller->nameLen) &&
                      copy_to_caller(record->sealData, caller->data, caller->dataLen) &&
                      copy_to_caller(record->sealElement, caller->element, caller->elementLen) &&
                      copy_to_caller(record->sealBits, caller->bits, caller->bitsLen);
  return copied ? GetMetal(&record->metaInfo, &caller->meta) : -1;
}

std::int32_t SetSeal(SealInfo* record, const Seal* caller) {
  if (record == nullptr || caller == nullptr || caller->data == nullptr ||
      caller->element == nullptr) {
    return -1;
  }
  record->sealType = caller->type;
  const std::uint8_t tag = caller->elementLen == 0 ? 0 : caller->element[0];
  const bool stored =
      replace(record->sealName, caller->name, caller->nameLen, der::kPrintableString) &&
      replace(record->sealData, caller->data, caller->dataLen, der::kOctetString) &&
      replace(record->sealElement, caller->element, caller->elementLen, der::type_word(tag)) &&
      replace(record->sealBits, caller->bits, caller->bitsLen, der::kBitString);
  return stored ? SetMetal(&record->metaInfo, &caller->meta) : -1;
}

std::int32_t GetStamp(const StampInfo* record, Stamp* caller) {
  if (record == nullptr || caller == nullptr) return -1;
  std::copy_n(record->stampValue, std::size(record->stampValue), caller->value);
  caller->time = record->stampTime;
  return answer(copy_to_caller(record->stampText1, caller->text1, caller->text1Len) &&
                copy_to_caller(record->stampText2, caller->text2, caller->text2Len) &&
                copy_to_caller(record->stampText3, caller->data, caller->dataLen));
}

std::int32_t SetStamped(StampInfo* record, const Stamp* caller) {
  if (record == nullptr || caller == nullptr || caller->text1 == nullptr ||
      caller->text2 == nullptr || caller->data == nullptr) {
    return 0;
  }
  std::copy_n(caller->value, std::size(caller->value), record->stampValue);
  record->stampTime = caller->time;
  return answer(replace_text(record->stampText1, caller->text1) &&
                replace_second_text(record->stampText2, *caller) &&
                replace(record->stampText3, caller->data, caller->dataLen, der::kPrintableString));
}

std::int32_t SetStamp(StampAttr* record, const StampRecord* caller) {
  if (record == nullptr || caller == nullptr) return -1;
  const bool stored =
      replace(record->stampName, caller->name, caller->nameLen, der::kPrintableString) &&
      replace(record->stampBits, caller->bits, caller->bitsLen, der::kBitString);
  if (!stored || SetSeal(&record->sealInfo, &caller->seal) != 0) return -1;
  return SetStamped(&record->stampInfo, &caller->stamp);
}

}  // namespace tq

// A marking counts as set from here on, also when the copy fails.
std::int32_t SetWaterMarkInfo(TqLabel label, const WaterMark* mark) {
  if (label == nullptr || mark == nullptr || mark->data1 == nullptr || mark->data2 == nullptr) {
    return -1;
  }
  label->body.waterMark.present = 1;
  return tq::SetWaterMark(mark, &label->body.waterMark);
}

std::int32_t GetWaterMarkInfo(TqLabel label, WaterMark** mark) {
  if (label == nullptr || mark == nullptr) return -1;
  tq::Block<WaterMark> made = tq::make_zeroed<WaterMark>();
  if (!made) return -1;
  if (tq::GetWaterMark(&label->body.waterMark, made.get()) != 0) {
    static_cast<void>(FreetWaterMarkInfo(made.get()));
    Asn1Free(made->text);
    return -1;
  }
  *mark = made.release();
  return 0;
}

// Text and record stay with the caller.
std::int32_t FreetWaterMarkInfo(WaterMark* mark) {
  if (mark == nullptr) return 0;
  tq::free_buffer(mark->data1);
  tq::free_buffer(mark->data2);
  return 0;
}

std::int32_t SetStampInfo(TqLabel label, const StampRecord* stamp) {
  if (label == nullptr || stamp == nullptr || stamp->name == nullptr || stamp->bits == nullptr) {
    return -1;
  }
  label->body.stamp.present = 1;
  return tq::SetStamp(&label->body.stamp, stamp);
}

std::int32_t GetStampInfo(TqLabel label, StampRecord** stamp) {
  if (label == nullptr || stamp == nullptr) return -1;
  std::unique_ptr<StampRecord, tq::Releaser<FreeStampA>> made(
      tq::make_zeroed<StampRecord>().release());
  const tq::StampAttr& record = label->body.stamp;
  if (!made || !tq::copy_to_caller(record.stampName, made->name, made->nameLen) ||
      !tq::copy_to_caller(record.stampBits, made->bits, made->bitsLen) ||
      tq::GetSeal(&record.sealInfo, &made->seal) != 0 ||
      tq::GetStamp(&record.stampInfo, &made->stamp) != 0) {
    return -1;
  }
  *stamp = made.release();
  return 0;
}

std::int32_t FreeStampA(StampRecord* stamp) {
  if (stamp == nullptr) return 0;
  tq::free_buffer(stamp->name);
  tq::free_buffers(stamp->seal);
  tq::free_buffers(stamp->stamp);
  tq::free_buffer(stamp->bits);
  Asn1Free(stamp);
  return 0;
}
