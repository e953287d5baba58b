// The alternatives of a version test are fields of one record.
// expect: is_same_v<typename First::Record, typename Second::Record>
#include "der/schema/schema.h"

namespace {

#ifdef GOOD
constexpr auto kField =
    tq::either<tq::in_11>(tq::object_id<&tq::Sign::algorithm>, tq::printable<&tq::Sign::algorithm>);
#else
constexpr auto kField = tq::either<tq::in_11>(tq::object_id<&tq::Sign::algorithm>,
                                              tq::printable<&tq::ENVELOPE::algorithm>);
#endif
static_assert(decltype(kField)::kElements == 1);

}  // namespace
