// Bytes as the tool reads them. Its tree must stand exactly where the library decodes, every field
// must be shown, and the JSON of a label must give its bytes back.

#include <fmt/format.h>

#include <cstring>

#include "format/compare.h"
#include "format/json.h"
#include "format/print.h"
#include "support.h"

namespace tq::fuzz {
namespace {

// The body of an encrypted label is not looked into.
bool library_decodes(const std::uint8_t* data, std::uint32_t size) {
  TqLabel label = nullptr;
  if (DecodeLabel(data, size, &label) == 0) {
    const Label owner(label);
    return true;
  }
  std::uint32_t length = 0;
  if (DecodeLabelEncrypted(data, size, nullptr, &length, &label) != 0) return false;
  const auto room = block(length + 1);
  if (DecodeLabelEncrypted(data, size, room.get(), &length, &label) != 0) return false;
  const Label owner(label);
  return true;
}

void check(const tool::Label& label) {
  static std::FILE* const nowhere = std::fopen("/dev/null", "w");
  tool::Tree tree(nowhere, false);
  tool::print(tree, label.root, {label.file.data()});
  const std::string text = tool::to_json(label).dump();
  const tool::Bytes bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  const std::vector<std::uint8_t> again = tool::from_json(tool::parse_json(bytes, ""), "");
  require(std::ranges::equal(again, label.bytes()), "JSON gives the label back");
  require(tool::compare(label.root, label.root).empty(), "a label does not differ from itself");
}

}  // namespace
}  // namespace tq::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tq;
  tool::Label label;
  const bool decodes = !tool::read_label({data, size}, label);
  fuzz::require(decodes == fuzz::library_decodes(data, static_cast<std::uint32_t>(size)),
                "the tool reads what the library decodes");
  if (decodes) fuzz::check(label);
  return 0;
}
