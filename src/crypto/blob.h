#ifndef TQ_CRYPTO_BLOB_H
#define TQ_CRYPTO_BLOB_H

// The flat blobs in which identity-based values are kept: fields with length prefixes in the byte
// order of the machine.

#include <cstring>

#include "core/model/buffer.h"

namespace tq {

// Takes fields from the front of a blob; each says whether the blob still had it.
class BlobReader {
 public:
  explicit BlobReader(const ANYBUF& blob)
      : at_(blob.data), left_(blob.data == nullptr ? 0 : blob.length) {}

  [[nodiscard]] std::uint32_t left() const { return left_; }

  [[nodiscard]] bool bytes(std::uint32_t length, ANYBUF& field) {
    if (length > left_) return false;
    field = view_of(at_, length, 0);
    at_ += length;
    left_ -= length;
    return true;
  }

  template <class Length>
  [[nodiscard]] bool number(Length& value) {
    ANYBUF field{};
    if (!bytes(sizeof value, field)) return false;
    std::memcpy(&value, field.data, sizeof value);
    return true;
  }

  [[nodiscard]] bool prefixed(ANYBUF& field) {
    std::uint32_t length = 0;
    return number(length) && bytes(length, field);
  }

  // All that is left.
  [[nodiscard]] ANYBUF rest() { return view_of(at_, left_, 0); }

 private:
  const std::uint8_t* at_;
  std::uint32_t left_;
};

// Fills a blob whose size its maker has worked out.
class BlobWriter {
 public:
  explicit BlobWriter(std::uint8_t* at) : at_(at) {}

  void bytes(const void* from, std::size_t length) {
    if (length != 0) std::memcpy(at_, from, length);
    at_ += length;
  }
  void bytes(const ANYBUF& field) { bytes(field.data, field.length); }

  template <class Length>
  void number(Length value) {
    bytes(&value, sizeof value);
  }

  void prefixed(const ANYBUF& field) {
    number(field.length);
    bytes(field);
  }

  [[nodiscard]] std::uint8_t* at() const { return at_; }

 private:
  std::uint8_t* at_;
};

}  // namespace tq

#endif
