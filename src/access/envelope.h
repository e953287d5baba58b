#ifndef TQ_ACCESS_ENVELOPE_H
#define TQ_ACCESS_ENVELOPE_H

#include "core/model/records.h"

namespace tq {

// Copies a body envelope to the caller's buffers: 0, 1 where one is too small, -1 otherwise. What
// was written before a failure stays written.
std::int32_t GetBDigitEnv(TqLabel label, const BDigitEnvolope* record, EnvelopeInfo* envelope,
                          PrivilegeInfo* privilege);

}  // namespace tq

#endif
