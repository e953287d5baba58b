// A schema lists the fields of one record; one of another record would write foreign memory.
// expect: one record per schema
#include "der/schema/schema.h"

namespace {

#ifdef GOOD
constexpr auto kSchema =
    tq::record(tq::integer<&tq::AlgAtrr::alg>, tq::integer<&tq::AlgAtrr::algParam>);
#else
constexpr auto kSchema =
    tq::record(tq::integer<&tq::AlgAtrr::alg>, tq::integer<&tq::Extend::extendType>);
#endif
static_assert(decltype(kSchema)::kElements == 2);

}  // namespace
