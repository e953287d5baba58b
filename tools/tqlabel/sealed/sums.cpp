#include "sealed/sums.h"

#include <algorithm>
#include <limits>

#include "base/failure.h"
#include "sealed/layout.h"

namespace tq::tool {
namespace {

void replace_extension(TqLabel label, Extension type, Bytes value) {
  while (DelExtendAttr(label, type) == 0) {
  }
  if (AddExtendValue(label, type, value.data(), static_cast<std::uint32_t>(value.size())) != 0) {
    throw_not_encodable();
  }
}

template <std::size_t size>
std::array<std::uint8_t, size> extension(TqLabel label, Extension type) {
  std::array<std::uint8_t, size> value = {};
  std::uint32_t length = 0;
  if (GetExtendValue(label, type, nullptr, &length) != 0 || length != size ||
      GetExtendValue(label, type, value.data(), &length) != 0) {
    throw Failure{.status = Status::kMalformed,
                  .why = "the label does not say what was sealed",
                  .field = "body.extends"};
  }
  return value;
}

// What a file has beside its own bytes: IV and padding.
std::uint32_t uneffective_size(std::uint64_t length) {
  return static_cast<std::uint32_t>(content_size(length) - length);
}

// The field has 32 bits; the extension value says all.
std::uint32_t file_size_field(std::uint64_t length) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min(length, kMost));
}

}  // namespace

void store_sums(TqLabel label, const ContentSums& sums) {
  std::array<std::uint8_t, kNumberSize + sizeof(Sum)> value = {};
  std::ranges::copy(big_endian(sums.length), value.begin());
  std::ranges::copy(sums.sha256, value.begin() + kNumberSize);
  replace_extension(label, kContentSum, value);
  replace_extension(label, kContentTag, sums.tag);
  GLSetFileSize(label, file_size_field(sums.length));
  SetFileAlignSize(label, kContentUnit);
  SetFileUnEffectSize(label, uneffective_size(sums.length));
}

ContentSums stored_sums(TqLabel label) {
  const auto value = extension<kNumberSize + sizeof(Sum)>(label, kContentSum);
  ContentSums sums = {.length = from_big_endian(value.data()),
                      .tag = extension<sizeof(Sum)>(label, kContentTag)};
  std::copy(value.begin() + kNumberSize, value.end(), sums.sha256.begin());
  std::uint32_t size = 0;
  std::uint32_t align = 0;
  std::uint32_t uneffective = 0;
  GLGetFileSize(label, &size);
  GetFileAlignSize(label, &align);
  GetFileUnEffectSize(label, &uneffective);
  if (size != file_size_field(sums.length) || align != kContentUnit ||
      uneffective != uneffective_size(sums.length)) {
    throw Failure{.status = Status::kMalformed,
                  .why = "the sizes of the file contradict each other",
                  .field = "body.fileAlign"};
  }
  return sums;
}

}  // namespace tq::tool
