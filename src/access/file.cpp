// Single fields of the body that describe the file, and the counts of its lists.

#include "access/field.h"

namespace tq {
namespace {

constexpr auto kFileType = [](TqLabelHandle& label) -> std::uint32_t& {
  return label.body.content.intAttr1;
};
constexpr auto kSecrecy = [](TqLabelHandle& label) -> std::uint32_t& {
  return label.body.content.intAttr2;
};
constexpr auto kFileSize = [](TqLabelHandle& label) -> std::uint32_t& {
  return label.body.content.intAttr3;
};
constexpr auto kFileName = [](TqLabelHandle& label) -> ANYBUF& {
  return label.body.content.strAttr1;
};
constexpr auto kFileTitle = [](TqLabelHandle& label) -> ANYBUF& {
  return label.body.content.strAttr2;
};
constexpr auto kModified = [](TqLabelHandle& label) -> std::uint64_t& {
  return label.body.content.time1;
};
constexpr auto kExpires = [](TqLabelHandle& label) -> std::uint64_t& {
  return label.body.content.time2;
};
constexpr auto kAbolished = [](TqLabelHandle& label) -> std::uint64_t& {
  return label.body.content.time3;
};
constexpr auto kDestroyed = [](TqLabelHandle& label) -> std::uint64_t& {
  return label.body.content.time4;
};
constexpr auto kFileAlign = [](TqLabelHandle& label) -> std::uint32_t& {
  return label.body.align.fileAlignSize;
};
constexpr auto kUnEffect = [](TqLabelHandle& label) -> std::uint32_t& {
  return label.body.align.fileUnEffectSize;
};
constexpr auto kLabelAlign = [](TqLabelHandle& label) -> std::uint32_t& {
  return label.body.align.labelAlignSize;
};
constexpr auto kFileNo = [](TqLabelHandle& label) -> ANYBUF& {
  return label.body.fileCreator.creatorStr1;
};

// Labels of the versions with three characters have no file align sizes.
bool has_file_align(const ANYBUF& version_text) {
  if (version_text.data == nullptr || version_text.length == 0) return false;
  const std::uint8_t first = version_text.data[0];
  return version_text.length >= 5 || (first != '6' && first != '1');
}

}  // namespace
}  // namespace tq

std::int32_t GLSetFileType(TqLabel label, std::uint32_t type) {
  return tq::set_value(label, tq::kFileType, type);
}
std::int32_t GLGetFileType(TqLabel label, std::uint32_t* type) {
  return tq::get_value(label, tq::kFileType, type);
}
std::int32_t SetFileSecc(TqLabel label, std::uint32_t level) {
  return tq::set_value(label, tq::kSecrecy, level);
}
std::int32_t GetFileSecc(TqLabel label, std::uint32_t* level) {
  return tq::get_value(label, tq::kSecrecy, level);
}
std::int32_t GLSetFileSize(TqLabel label, std::uint32_t size) {
  return tq::set_value(label, tq::kFileSize, size);
}
std::int32_t GLGetFileSize(TqLabel label, std::uint32_t* size) {
  return tq::get_value(label, tq::kFileSize, size);
}

std::int32_t SetFileName(TqLabel label, const std::uint8_t* name, std::uint32_t length) {
  return tq::set_bytes(label, tq::kFileName, tq::der::kPrintableString, name, tq::low8(length));
}
std::int32_t GetFileName(TqLabel label, std::uint8_t* buffer, std::uint8_t* length) {
  return tq::get_bytes(label, tq::kFileName, buffer, length);
}
std::int32_t GLSetFileTitle(TqLabel label, const std::uint8_t* title, std::uint32_t length) {
  return tq::set_bytes(label, tq::kFileTitle, tq::der::kPrintableString, title, tq::low8(length));
}
std::int32_t GLGetFileTitle(TqLabel label, std::uint8_t* buffer, std::uint8_t* length) {
  return tq::get_bytes(label, tq::kFileTitle, buffer, length);
}

std::int32_t SetModifyTime(TqLabel label, std::uint64_t time) {
  return tq::set_value(label, tq::kModified, time);
}
std::int32_t GetModifyTime(TqLabel label, std::uint64_t* time) {
  return tq::get_value(label, tq::kModified, time);
}
std::int32_t SetExpired(TqLabel label, std::uint64_t time) {
  return tq::set_value(label, tq::kExpires, time);
}
std::int32_t GetExpired(TqLabel label, std::uint64_t* time) {
  return tq::get_value(label, tq::kExpires, time);
}
std::int32_t GetAbolishTime(TqLabel label, std::uint64_t* time) {
  return tq::get_value(label, tq::kAbolished, time);
}
std::int32_t SetDestroyTime(TqLabel label, std::uint64_t time) {
  return tq::set_value(label, tq::kDestroyed, time);
}
std::int32_t GetDestroyTime(TqLabel label, std::uint64_t* time) {
  return tq::get_value(label, tq::kDestroyed, time);
}

std::int32_t SetFileAlignSize(TqLabel label, std::uint32_t size) {
  if (label == nullptr || !tq::has_file_align(label->head.versionText)) return -1;
  return tq::set_value(label, tq::kFileAlign, size);
}
std::int32_t GetFileAlignSize(TqLabel label, std::uint32_t* size) {
  return tq::get_value(label, tq::kFileAlign, size);
}
std::int32_t SetFileUnEffectSize(TqLabel label, std::uint32_t size) {
  return tq::set_value(label, tq::kUnEffect, size);
}
std::int32_t GetFileUnEffectSize(TqLabel label, std::uint32_t* size) {
  return tq::get_value(label, tq::kUnEffect, size);
}
std::int32_t SetLabelAlignSize(TqLabel label, std::uint32_t size) {
  return tq::set_value(label, tq::kLabelAlign, size);
}
std::int32_t GetLabelAlignSize(TqLabel label, std::uint32_t* size) {
  return tq::get_value(label, tq::kLabelAlign, size);
}

std::int32_t GLSetFileNo(TqLabel label, const char* text) {
  const std::size_t length = text == nullptr ? 0 : std::strlen(text) + 1;
  if (label == nullptr || text == nullptr || length > UINT32_MAX) return -1;
  return tq::replace(label->body.fileCreator.creatorStr1, text, length,
                     tq::der::type_word(tq::der::kPrintableString))
             ? 0
             : -1;
}

// Without a capacity: the caller has asked for the size, or knows it.
std::int32_t GLGetFileNo(TqLabel label, char* buffer) {
  if (label == nullptr || buffer == nullptr) return -1;
  const ANYBUF& text = tq::kFileNo(*label);
  if (text.length == 0) {
    *buffer = '\0';
  } else {
    std::memcpy(buffer, text.data, text.length);
  }
  return 0;
}

std::int32_t GetLogCout(TqLabel label, std::uint32_t* count) {
  return label == nullptr ? -1 : tq::get_count(label->body.logs, count);
}
std::int32_t GetExtendCount(TqLabel label, std::uint32_t* count) {
  return label == nullptr ? -1 : tq::get_count(label->body.extends, count);
}
std::int32_t GetDigitEnvlopeCountFromBody(TqLabel label, std::uint32_t* count) {
  return label == nullptr ? -1 : tq::get_count(label->body.bodyEnvelopes, count);
}

std::uint32_t GetStringLength(const char* text) {
  return text == nullptr ? 0 : static_cast<std::uint32_t>(std::strlen(text) + 1);
}

std::int32_t VerifySignCertConsistent(void) { return 0; }
