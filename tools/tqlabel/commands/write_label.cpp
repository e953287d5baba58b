#include "commands/write_label.h"

#include "base/files.h"
#include "format/item.h"

namespace tq::tool {

void write_label(const std::vector<std::uint8_t>& der, const std::string& source,
                 const std::string& output) {
  Label label;
  std::optional<Fault> fault = read_label(der, label);
  if (fault) {
    Failure failure = fault->failure(source);
    failure.why = "does not make a label: " + failure.why;
    failure.at.reset();
    failure.advice = "see what stands there";
    throw failure;
  }
  write_file(output, der);
}

}  // namespace tq::tool
