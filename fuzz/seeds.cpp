// Writes the first inputs of the targets: calls at random, and what they encode.

#include <filesystem>
#include <fstream>
#include <map>
#include <random>

#include "support.h"

namespace {

std::filesystem::path folder;
std::map<std::size_t, int> taken;

void write(const char* kind, const std::string& name, const std::string& bytes) {
  std::ofstream(folder / kind / name, std::ios::binary) << bytes;
}

// Some of each size.
void keep(const std::string& bytes) {
  const std::size_t size = bytes.size() / 100;
  if (size > 30 || taken[size] == 8) return;
  write("labels", std::to_string(size) + "-" + std::to_string(++taken[size]), bytes);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  folder = arguments[1];
  std::filesystem::remove_all(folder);
  for (const char* const kind : {"labels", "calls"}) {
    std::filesystem::create_directories(folder / kind);
  }
  tq::fuzz::seed_sink = keep;
  std::mt19937 random(1);
  for (int run = 0; run < 400; ++run) {
    std::string calls(300, '\0');
    for (char& octet : calls) octet = static_cast<char>(random());
    LLVMFuzzerTestOneInput(tq::fuzz::u8(calls), calls.size());
    if (run < 40) write("calls", std::to_string(run), calls);
  }
  return taken.empty() ? 1 : 0;
}
