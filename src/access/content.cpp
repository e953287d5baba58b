// The content attributes and the file creator, as whole records.

#include "der/records/content.h"

#include "access/copy.h"

namespace tq {
namespace {

// The values beside the texts: what stands for what, for either way.
template <class Record, class Info, class Assign>
void each_value(Record& record, Info& info, Assign assign) {
  assign(record.intAttr1, info.fileType);
  assign(record.intAttr2, info.secrecy);
  assign(record.intAttr3, info.fileSize);
  assign(record.time1, info.modifyTime);
  assign(record.time2, info.expiryTime);
  assign(record.time3, info.abolishTime);
  assign(record.time4, info.destroyTime);
}

}  // namespace
}  // namespace tq

std::int32_t SetContentAtrr(TqLabel label, const ContentAttrInfo* content) {
  if (label == nullptr || content == nullptr) return -1;
  tq::ContentAtrr& record = label->body.content;
  if (record.strAttr1.data != nullptr || record.strAttr2.data != nullptr) return -1;
  if (!tq::replace(record.strAttr1, content->fileName, content->fileNameLen,
                   tq::der::kPrintableString) ||
      !tq::replace(record.strAttr2, content->fileTitle, content->fileTitleLen,
                   tq::der::kPrintableString)) {
    tq::FreeContentAtrr(&record);  // so that the call can be made again
    return -1;
  }
  tq::each_value(record, *content, [](auto& stored, const auto& given) { stored = given; });
  return 0;
}

std::int32_t GetContentAtrr(TqLabel label, ContentAttrInfo* content) {
  if (label == nullptr || content == nullptr || content->fileName == nullptr ||
      content->fileTitle == nullptr) {
    return -1;
  }
  const tq::ContentAtrr& record = label->body.content;
  tq::copy_unchecked(record.strAttr1, content->fileName, content->fileNameLen);
  tq::copy_unchecked(record.strAttr2, content->fileTitle, content->fileTitleLen);
  tq::each_value(record, *content, [](const auto& stored, auto& given) { given = stored; });
  return 0;
}

// A text whose length is 0 leaves the stored one as it is.
std::int32_t SetBodyFileCreator(TqLabel label, const FileCreatorInfo* creator) {
  if (label == nullptr || creator == nullptr) return -1;
  tq::BodyFileCreator copies = {};
  const tq::OnExit release([&] { tq::FreeIdentifier(&copies); });
  if (!tq::replace(copies.creatorStr1, creator->str1, creator->str1Len,
                   tq::der::kPrintableString) ||
      !tq::replace(copies.creatorStr2, creator->str2, creator->str2Len,
                   tq::der::kPrintableString)) {
    return -1;
  }
  tq::BodyFileCreator& record = label->body.fileCreator;
  if (creator->str1Len != 0) std::swap(record.creatorStr1, copies.creatorStr1);
  if (creator->str2Len != 0) std::swap(record.creatorStr2, copies.creatorStr2);
  record.creatorTime = creator->time;
  return 0;
}

std::int32_t GetFileIdentify(TqLabel label, FileCreatorInfo* creator) {
  if (label == nullptr || creator == nullptr || creator->str1 == nullptr ||
      creator->str2 == nullptr) {
    return -1;
  }
  const tq::BodyFileCreator& record = label->body.fileCreator;
  tq::copy_unchecked(record.creatorStr1, creator->str1, creator->str1Len);
  tq::copy_unchecked(record.creatorStr2, creator->str2, creator->str2Len);
  creator->time = static_cast<std::uint32_t>(record.creatorTime);
  return 0;
}
