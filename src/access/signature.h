#ifndef TQ_ACCESS_SIGNATURE_H
#define TQ_ACCESS_SIGNATURE_H

#include "core/model/records.h"

namespace tq {

// Replaces the fields of one record of a multi-signature. Certificate, value and name must be
// there; a name that is not known leaves an algorithm of zeros.
std::int32_t SetMultiSignAttribute(Sign* sign, const SignAttribute* attribute);

}  // namespace tq

#endif
