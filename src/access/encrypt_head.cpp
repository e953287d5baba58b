// The encryption head: which cipher protects the body.

#include "access/field.h"
#include "core/model/layout.h"
#include "crypto/algorithms.h"

namespace {

[[nodiscard]] bool store_algorithm(ANYBUF& field, const tq::Layout& layout,
                                   const std::uint8_t* name, std::uint8_t length) {
  if (layout.v60) return tq::replace(field, name, length, tq::der::kPrintableString);
  std::uint8_t octets[tq::kObjectIdRoom];
  std::uint32_t used = sizeof octets;
  return SflAlg2OID(name, length, 0, 0, octets, &used) == 0 &&
         tq::replace(field, octets, used, tq::der::kObjectId);
}

}  // namespace

std::int32_t SetEncryptHead(TqLabel label, const std::uint8_t* alg, std::uint32_t algLen,
                            std::uint32_t feedBackBits) {
  if (label == nullptr || alg == nullptr) return -1;
  tq::EncryptHead& head = label->head.encryptHead;
  const tq::Layout layout = tq::layout_of(*label);
  const std::uint8_t length = tq::low8(algLen);
  if (!layout.known()) return -1;
  if (layout.v11 && length == 0) {
    tq::clear(head.algorithm);
    return 0;
  }
  if (!store_algorithm(head.algorithm, layout, alg, length)) return -1;
  head.mode = 0;
  head.feedBackBits = tq::low8(feedBackBits);
  return 0;
}

std::int32_t GetEncryptHead(TqLabel label, std::uint8_t* buffer, std::uint8_t* length,
                            std::uint8_t* feedBackBits) {
  if (label == nullptr || length == nullptr || feedBackBits == nullptr) return -1;
  const tq::EncryptHead& head = label->head.encryptHead;
  const tq::Layout layout = tq::layout_of(*label);
  if (!layout.known()) return -1;
  if (layout.v60) {
    if (tq::copy_out(head.algorithm, buffer, length) != 0) return -1;
  } else if (head.algorithm.length == 0) {
    *length = 0;
    return 0;
  } else {
    char name[tq::kAlgorithmNameRoom] = {};
    if (SflOID2Alg(head.algorithm.data, head.algorithm.length, name, nullptr, nullptr) != 0 ||
        tq::copy_out(name, std::strlen(name), buffer, length) != 0) {
      return -1;
    }
  }
  if (buffer != nullptr) *feedBackBits = tq::low8(head.feedBackBits);
  return 0;
}
