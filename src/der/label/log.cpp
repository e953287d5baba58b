#include "der/label/log.h"

namespace tq {

std::int32_t EncodeLog(const TqLabelHandle* label, const Log* record, ANYBUF** slot) {
  return encode_versioned(kLog, label, record, slot);
}
std::int32_t DecodeLog(const ANYBUF* element, Log* record, const TqLabelHandle* label) {
  return decode_versioned(kLog, element, record, label);
}

std::int32_t EncodeLogAtrr_F(const TqLabelHandle* label, Log* first, ANYBUF** slot) {
  return encode_versioned(kLogs, label, &first, slot);
}
std::int32_t DecodeLogAtrr(const ANYBUF* element, Log** first, const TqLabelHandle* label) {
  return decode_versioned(kLogs, element, first, label);
}

std::int32_t EncodeLogAtrr(const TqLabelHandle* /*label*/, const ANYBUF* chain, ANYBUF** slot) {
  return encode_chain(kListOfNodes, chain, slot);
}

void FreeLogAtrr(Log* first) { release_list<decltype(kLogs)::Entry>(first); }

}  // namespace tq
