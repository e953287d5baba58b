// A nested record is written by the schema of its own type.
// expect: is_same_v<typename MemberOf
#include "der/records/content.h"

namespace {

#ifdef GOOD
constexpr auto kField = tq::nested<&tq::WaterMarkInfo::markAlg, tq::kAlgorithmPair>;
#else
constexpr auto kField = tq::nested<&tq::WaterMarkInfo::markAlg, tq::kExtend>;
#endif
static_assert(decltype(kField)::kElements == 1);

}  // namespace
