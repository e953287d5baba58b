#include "core/model/buffer.h"

namespace tq {

bool replace(ANYBUF& field, const void* bytes, std::size_t length, std::uint32_t type) {
  if (length > UINT32_MAX || (bytes == nullptr && length != 0)) return false;
  Block<std::uint8_t> copy;
  if (length != 0) {
    copy.reset(static_cast<std::uint8_t*>(Asn1Malloc(length)));
    if (!copy) return false;
    std::memcpy(copy.get(), bytes, length);
  }
  adopt(field, std::move(copy), static_cast<std::uint32_t>(length), type);
  return true;
}

std::int32_t QZDecodeCopy(const ANYBUF* element, ANYBUF* field) {
  if (element == nullptr || field == nullptr) return -1;
  return replace(*field, element->data, element->length, element->type) ? 0 : -1;
}

std::int32_t CopyElementOtoO(ANYBUF* element, ANYBUF* field) {
  if (element == nullptr || field == nullptr) return -1;
  if (element->form == ASN1_FORM_INLINE) {  // bytes that would go with the shell
    *field = {};
    if (QZDecodeCopy(element, field) != 0) return -1;
  } else {
    *field = {element->data, element->length, 0, element->form, element->type, nullptr, nullptr};
  }
  Asn1Free(element);
  return 0;
}

}  // namespace tq
