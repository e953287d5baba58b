#include "core/model/layout.h"

namespace tq {
namespace {

struct Version {
  const char* text;
  std::uint8_t sub_version;  // 0 in the forms of three characters
};

constexpr Version kVersions[] = {{"6.0", 0}, {"1.1", 0}, {"1.1.1", '1'}, {"1.1.2", '2'}};

const Version* find_version(const void* text, std::size_t length) {
  for (const Version& version : kVersions) {
    if (length == std::strlen(version.text) && std::memcmp(text, version.text, length) == 0) {
      return &version;
    }
  }
  return nullptr;
}

bool apply(const Version* version, char* base, TqLabelHandle& label) {
  if (version == nullptr) return false;
  std::memcpy(base, version->text, kVersionLength);
  if (version->sub_version != 0) label.subVersion = version->sub_version;
  return true;
}

}  // namespace

std::int32_t LBParseVersion(const char* text, char* version, TqLabelHandle* label) {
  if (text == nullptr || version == nullptr || label == nullptr) return -1;
  return apply(find_version(text, std::strlen(text)), version, *label) ? 0 : -1;
}

bool read_version_text(const ANYBUF& text, TqLabelHandle& label) {
  return apply(find_version(text.data, text.length), label.version, label);
}

bool version_text_agrees(const TqLabelHandle& label, const ANYBUF& text) {
  const Version* version = find_version(text.data, text.length);
  return version != nullptr && version->sub_version == label.subVersion &&
         std::memcmp(version->text, label.version, kVersionLength) == 0;
}

}  // namespace tq
