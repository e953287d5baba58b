#ifndef TQ_ACCESS_ENVELOPE_H
#define TQ_ACCESS_ENVELOPE_H

#include "core/model/records.h"

namespace tq {

// The values of a privilege beside its bytes and its pairs: what stands for what, for either way.
template <class Privilege, class Info, class Assign>
void each_value(Privilege& privilege, Info& info, Assign assign) {
  assign(privilege.priFlag1, info.flag1);
  assign(privilege.priValue1, info.number1);
  assign(privilege.priValue2, info.readCount);
  assign(privilege.priFlag2, info.flag2);
  assign(privilege.priFlag3, info.flag3);
  assign(privilege.priFlag4, info.flag4);
  assign(privilege.priValue3, info.number3);
  assign(privilege.priValue4, info.number4);
}

// Copies a body envelope to the caller's buffers: 0, 1 where one is too small, -1 otherwise. What
// was written before a failure stays written.
std::int32_t GetBDigitEnv(TqLabel label, const BDigitEnvolope* record, EnvelopeInfo* envelope,
                          PrivilegeInfo* privilege);

}  // namespace tq

#endif
