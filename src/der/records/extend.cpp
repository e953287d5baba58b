#include "der/records/extend.h"

namespace tq {

std::int32_t EncodeExtendAtrr_F(const TqLabelHandle* label, Extend* first, ANYBUF** slot) {
  return encode_versioned(kExtends, label, &first, slot);
}
std::int32_t DecodeExtendAtrr(const ANYBUF* element, Extend** first) {
  return decode(kExtends, element, first);
}

std::int32_t EncodeExtendAtrr(const TqLabelHandle* /*label*/, const ANYBUF* chain, ANYBUF** slot) {
  return encode_chain(kListOfNodes, chain, slot);
}

void FreeExtendAtrr(Extend* first) { release_list<decltype(kExtends)::Entry>(first); }

}  // namespace tq
