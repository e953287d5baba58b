// Runs a fuzz target on the files that it is given, and on those in the folders among them.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "support.h"

namespace {

int replayed = 0;

void replay(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  std::fprintf(stderr, "%s\n", path.c_str());
  const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
  ++replayed;
}

}  // namespace

int main(int count, char** paths) {
  for (int i = 1; i < count; ++i) {
    if (std::filesystem::is_directory(paths[i])) {
      for (const auto& entry : std::filesystem::directory_iterator(paths[i])) replay(entry.path());
    } else {
      replay(paths[i]);
    }
  }
  return replayed == 0 ? 1 : 0;
}
