// The encryption head: which cipher protects the body.

#include "access/field.h"
#include "core/model/layout.h"
#include "crypto/algorithms.h"

std::int32_t SetEncryptHead(TqLabel label, const std::uint8_t* alg, std::uint32_t algLen,
                            std::uint32_t feedBackBits) {
  if (label == nullptr || alg == nullptr) return -1;
  tq::EncryptHead& head = label->head.encryptHead;
  const tq::Layout layout = tq::layout_of(*label);
  std::uint8_t octets[tq::kObjectIdRoom];
  std::uint32_t length = sizeof octets;
  if (layout.v60) {
    if (!tq::replace(head.algorithm, alg, tq::low8(algLen), tq::der::kPrintableString)) return -1;
  } else if (!layout.v11) {
    return -1;
  } else if (tq::low8(algLen) == 0) {
    tq::clear(head.algorithm);
    return 0;
  } else if (SflAlg2OID(alg, tq::low8(algLen), 0, 0, octets, &length) != 0 ||
             !tq::replace(head.algorithm, octets, length, tq::der::kObjectId)) {
    return -1;
  }
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
