#include "unit/support/allocations.h"

#include <tqasn1/asn1.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct alignas(16) Header {
  std::uint64_t size;
  std::uint64_t mark;
};

constexpr std::uint64_t kLive = 0x6C6976652D2D2D3E;
constexpr std::uint64_t kReleased = 0x676F6E65676F6E65;
constexpr std::uint64_t kEnd = 0xE5D4C3B2A1908070;
constexpr int kJunk = 0xA5;

std::atomic<std::size_t> blocks{0};
std::atomic<std::size_t> bytes{0};
std::atomic<std::size_t> calls{0};
std::atomic<std::size_t> failing_call{0};
std::atomic<std::size_t> peak{0};
std::atomic<std::size_t> largest_block{0};

void require(bool condition, const char* complaint) {
  if (condition) return;
  static_cast<void>(std::fprintf(stderr, "Asn1Free: %s\n", complaint));
  std::abort();
}

}  // namespace

void* Asn1Malloc(size_t size) {
  if (++calls == failing_call || size > SIZE_MAX / 2) return nullptr;
  auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + size + sizeof kEnd));
  if (header == nullptr) return nullptr;
  *header = {size, kLive};
  auto* block = static_cast<unsigned char*>(static_cast<void*>(header + 1));
  std::memset(block, kJunk, size);
  std::memcpy(block + size, &kEnd, sizeof kEnd);
  ++blocks;
  bytes += size;
  peak = std::max(peak.load(), bytes.load());
  largest_block = std::max(largest_block.load(), size);
  return block;
}

void Asn1Free(void* block) {
  if (block == nullptr) return;
  Header* header = static_cast<Header*>(block) - 1;
  require(header->mark != kReleased, "released before");
  require(header->mark == kLive, "not a block of Asn1Malloc");
  const std::uint64_t size = header->size;
  require(std::memcmp(static_cast<char*>(block) + size, &kEnd, sizeof kEnd) == 0,
          "written past the end");
  std::memset(block, kJunk, size);
  header->mark = kReleased;
  --blocks;
  bytes -= size;
  std::free(header);
}

namespace tq::test {

Allocations allocations() { return {blocks, bytes, calls}; }

Peak::Peak() {
  peak = before_;
  largest_block = 0;
}

std::size_t Peak::bytes() const { return peak - before_; }

std::size_t Peak::largest() const { return largest_block; }

FailNth::FailNth(std::size_t n) { failing_call = calls + n; }

FailNth::~FailNth() { failing_call = 0; }

bool FailNth::happened() const { return calls >= failing_call; }

}  // namespace tq::test
