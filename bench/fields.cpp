#include "fields.h"

#include <benchmark/benchmark.h>
#include <tqlabel/label.h>

#include <string>
#include <utility>

#include "codec.h"
#include "labels.h"

namespace tq::bench {
namespace {

constexpr std::uint8_t kValue[64] = {};

void set(TqLabel label) { SetCustom(label, kValue, sizeof kValue); }

void get(TqLabel label) {
  std::uint8_t buffer[sizeof kValue];
  std::uint32_t length = sizeof buffer;
  GetCustom(label, buffer, &length);
}

void extension(TqLabel label) {
  AddExtendValue(label, 99, kValue, sizeof kValue);
  DelExtendAttr(label, 99);
}

// Position 0 stands for all logs, so the one behind the new one goes.
void log(TqLabel label) {
  std::uint8_t text[] = {'o', 'p', 'e', 'n', 'e', 'd'};
  std::uint8_t number[] = {7};
  PJCertIssuerEntry attribute = {{0x55, 0x04, 0x03}, 3, {'C', 'A'}, 2, 19};
  PJCertIssuer issuer = {&attribute, 1, 1};
  const LogInfo added = {1, text, sizeof text, &issuer, number, 1, number, 1, 0, 0, text, 6};
  AddLog(label, &added);
  DelLog(label, 1);
}

void run(benchmark::State& state, void (*call)(TqLabel), std::uint32_t entries) {
  const Sample sample = label_with_logs(entries);
  void* const decoded = kTqlabel.decode(sample.version, sample.bytes);
  auto* const label = static_cast<TqLabel>(decoded);
  for (std::uint32_t i = 0; i < entries; ++i) AddExtendValue(label, i, kValue, sizeof kValue);
  for (auto _ : state) call(label);
  kTqlabel.release(sample.version, decoded);
}

}  // namespace

void register_fields() {
  constexpr std::pair<const char*, void (*)(TqLabel)> kCalls[] = {
      {"set", set}, {"get", get}, {"extension", extension}, {"log", log}};
  for (const auto& [name, call] : kCalls) {
    for (const std::uint32_t entries : {100U, 10000U}) {
      const std::string full = "field/" + std::string(name) + "/" + std::to_string(entries);
      benchmark::RegisterBenchmark(full.c_str(), run, call, entries);
    }
  }
}

}  // namespace tq::bench
