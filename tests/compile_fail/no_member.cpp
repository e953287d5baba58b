// A field is named by a member of its record, not by an object.
// expect: MemberOf
#include "der/schema/schema.h"

namespace {

[[maybe_unused]] std::uint32_t number = 0;

#ifdef GOOD
constexpr auto kField = tq::integer<&tq::AlgAtrr::alg>;
#else
constexpr auto kField = tq::integer<&number>;
#endif
static_assert(kField.kElements == 1);

}  // namespace
