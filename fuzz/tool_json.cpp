// Bytes as JSON from which the tool makes a label. What it makes and reads must have the same JSON
// again.

#include "format/json.h"
#include "support.h"

namespace {

using namespace tq;

void check(tool::Bytes text) {
  const std::vector<std::uint8_t> der = tool::from_json(tool::parse_json(text, ""), "");
  tool::Label label;
  if (tool::read_label(der, label)) return;
  fuzz::require(tool::from_json(tool::to_json(label), "") == der, "JSON gives the label back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    check({data, size});
  } catch (const tool::Failure&) {
    // says what is wrong, and no more is asked
  }
  return 0;
}
