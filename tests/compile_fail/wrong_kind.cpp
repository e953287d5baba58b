// A field's kind is that of its member: a text is no INTEGER.
// expect: Codec::plan(item, plan)
#include "der/schema/schema.h"

namespace {

#ifdef GOOD
constexpr auto kSchema = tq::record(tq::printable<&tq::BodyFileCreator::creatorStr1>);
#else
constexpr auto kSchema = tq::record(tq::integer<&tq::BodyFileCreator::creatorStr1>);
#endif

[[maybe_unused]] std::int32_t encode(const tq::BodyFileCreator& creator, ANYBUF** slot) {
  return tq::encode(kSchema, &creator, slot);
}

}  // namespace
