#include "allocations.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);
extern "C" void __libc_free(void* block);

namespace {

constinit bool counting = false;
constinit tq::bench::Allocated count;
constinit std::ptrdiff_t live = 0;  // below zero when earlier blocks are released

void* added(void* block) {
  if (!counting || block == nullptr) return block;
  const std::size_t size = malloc_usable_size(block);
  live += static_cast<std::ptrdiff_t>(size);
  ++count.calls;
  count.peak = std::max(count.peak, static_cast<std::size_t>(std::max<std::ptrdiff_t>(live, 0)));
  count.largest = std::max(count.largest, size);
  return block;
}

void removed(std::size_t size) {
  if (counting) live -= static_cast<std::ptrdiff_t>(size);
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
  removed(before);
  return added(moved);
}

void free(void* block) {
  if (counting && block != nullptr) removed(malloc_usable_size(block));
  __libc_free(block);
}

}  // extern "C"

namespace tq::bench {

Allocated allocated_by(const std::function<void()>& run) {
  count = {};
  live = 0;
  counting = true;
  run();
  counting = false;
  return count;
}

}  // namespace tq::bench
