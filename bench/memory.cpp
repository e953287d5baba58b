// Counts what each operation allocates, whoever asks for it: this program's malloc stands in front
// of the C library's. Prints JSON.

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "operations.h"

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);
extern "C" void __libc_free(void* block);

namespace {

struct Count {
  std::size_t calls = 0;
  std::size_t live = 0;
  std::size_t peak = 0;
};
constinit Count count;

void* added(void* block) {
  if (block == nullptr) return nullptr;
  ++count.calls;
  count.live += malloc_usable_size(block);
  count.peak = std::max(count.peak, count.live);
  return block;
}

void removed(void* block) {
  if (block != nullptr) count.live -= malloc_usable_size(block);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return added(__libc_malloc(size)); }

void* calloc(std::size_t number, std::size_t size) {
  std::size_t bytes = 0;
  if (__builtin_mul_overflow(number, size, &bytes)) return nullptr;
  void* const block = malloc(bytes);
  return block == nullptr ? nullptr : std::memset(block, 0, bytes);
}

void* realloc(void* block, std::size_t size) {
  const std::size_t before = block == nullptr ? 0 : malloc_usable_size(block);
  void* const moved = __libc_realloc(block, size);
  if (moved == nullptr) return nullptr;
  count.live -= before;
  return added(moved);
}

void free(void* block) {
  removed(block);
  __libc_free(block);
}

}  // extern "C"

int main() try {
  using namespace tq::bench;
  const std::vector<Sample> labels = samples(Extent::kAll);
  const char* separator = "{";
  for (const Operation& operation : operations(labels, Extent::kAll)) {
    operation.run();  // what is made once and kept
    count.calls = 0;
    count.peak = count.live;
    const std::size_t before = count.live;
    operation.run();
    std::printf("%s\n  \"%s\": {\"allocations\": %zu, \"peak\": %zu}", separator,
                operation.name.c_str(), count.calls, count.peak - before);
    separator = ",";
  }
  std::printf("\n}\n");
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
