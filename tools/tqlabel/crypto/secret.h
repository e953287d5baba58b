#ifndef TQLABEL_TOOL_CRYPTO_SECRET_H
#define TQLABEL_TOOL_CRYPTO_SECRET_H

#include <openssl/crypto.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace tq::tool {

// Wipes memory before it gives it back.
template <class T>
struct WipingAllocator {
  using value_type = T;

  WipingAllocator() = default;
  template <class U>
  explicit(false) WipingAllocator(const WipingAllocator<U>& /*other*/) {}

  [[nodiscard]] T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* block, std::size_t count) {
    OPENSSL_cleanse(block, count * sizeof(T));
    std::allocator<T>().deallocate(block, count);
  }
  bool operator==(const WipingAllocator& /*other*/) const { return true; }
};

// Bytes that nobody is to find in memory later: keys, and what they decrypt.
using Secret = std::vector<std::uint8_t, WipingAllocator<std::uint8_t>>;

}  // namespace tq::tool

#endif
