#include "input.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "asn1/der.h"

namespace tq::tool {
namespace {

constexpr std::size_t kFirstStep = 65536;

struct Closer {
  void operator()(std::FILE* file) const {
    if (file != stdin) static_cast<void>(std::fclose(file));
  }
};

// Each step doubles what there is, so that an endless file costs as much memory as it has brought.
// A file that does not begin as a label does is not worth a second step.
void read_steps(std::FILE* file, std::vector<std::uint8_t>& bytes) {
  std::size_t used = 0;
  while (used < UINT32_MAX && (used == 0 || bytes[0] == der::kSequence)) {
    const std::size_t step = std::min(std::max(kFirstStep, used), UINT32_MAX - used);
    bytes.resize(used + step);
    const std::size_t count = std::fread(bytes.data() + used, 1, step, file);
    used += count;
    if (count < step) break;
  }
  bytes.resize(used);
}

}  // namespace

bool read_input(const std::string& path, std::vector<std::uint8_t>& bytes, std::string& error) {
  const std::unique_ptr<std::FILE, Closer> file(path == "-" ? stdin
                                                            : std::fopen(path.c_str(), "rb"));
  if (file) {
    errno = 0;
    read_steps(file.get(), bytes);
    if (std::ferror(file.get()) == 0) return true;
  }
  error = std::strerror(errno);
  return false;
}

}  // namespace tq::tool
