#include "asn1/der.h"
#include "core/model/buffer.h"
#include "core/model/layout.h"
#include "crypto/algorithms.h"

std::int32_t SetHeadSignAlg(TqLabel label, const std::uint8_t* name, std::uint32_t nameLen) {
  if (label == nullptr || name == nullptr) return -1;
  ANYBUF& algorithm = label->head.headSign.algorithm;
  tq::clear(algorithm);  // also where the new name turns out to be unknown
  const tq::Layout layout = tq::layout_of(*label);
  if (layout.v60) {
    return tq::replace(algorithm, name, nameLen, tq::der::kPrintableString) ? 0 : -1;
  }
  std::uint8_t octets[tq::kObjectIdRoom];
  std::uint32_t length = sizeof octets;
  if (!layout.v11 || SflAlg2OID(name, nameLen, 0, 0, octets, &length) != 0) return -1;
  return tq::replace(algorithm, octets, length, tq::der::kObjectId) ? 0 : -1;
}

std::int32_t GetHeadSignAlg(TqLabel label, std::uint8_t* buffer, std::uint32_t* length) {
  if (label == nullptr || length == nullptr) return -1;
  const ANYBUF& algorithm = label->head.headSign.algorithm;
  const tq::Layout layout = tq::layout_of(*label);
  if (layout.v60) return tq::copy_out(algorithm, buffer, length);
  char name[tq::kAlgorithmNameRoom] = {};
  if (!layout.v11 || SflOID2Alg(algorithm.data, algorithm.length, name, nullptr, nullptr) != 0) {
    return -1;
  }
  return tq::copy_out(name, std::strlen(name), buffer, length);
}
