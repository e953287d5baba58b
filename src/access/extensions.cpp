// Extension values, newest first.

#include "access/copy.h"
#include "der/records/extend.h"

namespace tq {
namespace {

using ExtendOwner = std::unique_ptr<Extend, Releaser<FreeExtendAtrr>>;

// The link to the newest value of the type.
Extend** find_type(Extend*& first, std::uint32_t type) {
  Extend** link = &first;
  while (*link != nullptr && (*link)->extendType != type) link = &(*link)->next;
  return link;
}

}  // namespace
}  // namespace tq

std::int32_t AddExtendValue(TqLabel label, std::uint32_t type, const std::uint8_t* value,
                            std::uint32_t length) {
  if (label == nullptr || value == nullptr) return -1;
  tq::ExtendOwner made(tq::make_zeroed<tq::Extend>().release());
  if (!made || !tq::replace(made->extendValue, value, length, tq::der::kOctetString)) return -1;
  made->extendType = type;
  tq::push_front(label->body.extends, made.release());
  return 0;
}

std::int32_t GetExtendValue(TqLabel label, std::uint32_t type, std::uint8_t* buffer,
                            std::uint32_t* length) {
  if (label == nullptr || length == nullptr) return -1;
  const tq::Extend* found = *tq::find_type(label->body.extends, type);
  if (found == nullptr) return -1;
  tq::copy_unchecked(found->extendValue, buffer, *length);
  return 0;
}

std::int32_t GetExtend(TqLabel label, std::uint32_t position, std::uint32_t* type,
                       std::uint8_t* buffer, std::uint32_t* length) {
  if (label == nullptr || type == nullptr || length == nullptr) return -1;
  const tq::Extend* entry = *tq::link_at(label->body.extends, position);
  if (entry == nullptr) return -1;
  *type = entry->extendType;
  tq::copy_unchecked(entry->extendValue, buffer, *length);
  return 0;
}

// Only the low 16 bits of the given type are compared, with the whole of the stored one.
std::int32_t DelExtendAttr(TqLabel label, std::uint32_t type) {
  if (label == nullptr) return -1;
  tq::Extend** link = tq::find_type(label->body.extends, type & 0xFFFF);
  if (*link == nullptr) return -1;
  tq::FreeExtendAtrr(tq::unlink(link));
  return 0;
}
