// Writes the first inputs of the targets: calls at random, and labels that they make.

#include <filesystem>
#include <fstream>

#include "abi/random_calls.h"

namespace {

using tq::abi::Bytes;

constexpr int kSeeds = 10;
constexpr int kSteps = 25;  // with more the labels become too large to mutate well

void write(const std::filesystem::path& path, const Bytes& bytes) {
  if (bytes.empty()) return;
  std::ofstream out(path, std::ios::binary);
  for (const std::uint8_t octet : bytes) out.put(static_cast<char>(octet));
}

void write_labels(const std::string& prefix, TqLabel label) {
  using namespace tq::abi;
  const Bytes body = pattern(200);
  write(prefix + "plain", encode(label));
  write(prefix + "padded", encode(label, EncodeLabelPad));
  write(prefix + "body", encode(label, EncodeBodyPlaint));
  write(prefix + "sealed", encode_sealed(label, body, EncodeLabelEncrypted));
  write(prefix + "padded_sealed", encode_sealed(label, body, EncodeLabelPadEncrypted));
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const std::filesystem::path folder = arguments[1];
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder / "labels");
  std::filesystem::create_directories(folder / "calls");
  for (std::uint32_t seed = 0; seed < kSeeds; ++seed) {
    for (const char* const version : tq::abi::kVersions) {
      tq::abi::Driver driver(version, tq::abi::Choices(seed));
      for (int step = 0; step < kSteps; ++step) driver.step();
      const std::string name = std::string(version) + "-" + std::to_string(seed) + "-";
      write_labels(folder / "labels" / name, driver.label());
    }
    std::mt19937 random(seed);
    Bytes calls(300);
    for (std::uint8_t& octet : calls) octet = static_cast<std::uint8_t>(random());
    write(folder / "calls" / std::to_string(seed), calls);
  }
  return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
