#ifndef TQ_CORE_MODEL_BUFFER_H
#define TQ_CORE_MODEL_BUFFER_H

// Byte fields, nodes and the blocks behind them: who owns what, and the one way to replace it.

#include <tqasn1/asn1.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>

namespace tq {

template <auto Release>
struct Releaser {
  template <class T>
  void operator()(T* object) const noexcept {
    Release(object);
  }
};

using Node = std::unique_ptr<ANYBUF, Releaser<DIFreeAnybuf>>;
template <class T>
using Block = std::unique_ptr<T, Releaser<Asn1Free>>;
static_assert(sizeof(Node) == sizeof(ANYBUF*) && sizeof(Block<char>) == sizeof(char*));

// Zeroed objects in a block of their own, with unset octets behind them, or null.
template <class T>
[[nodiscard]] Block<T> make_zeroed(std::size_t count = 1, std::size_t octets_behind = 0) {
  static_assert(std::is_trivial_v<T>);
  Block<T> made(static_cast<T*>(Asn1Malloc(sizeof(T) * count + octets_behind)));
  if (made) std::memset(made.get(), 0, sizeof(T) * count);
  return made;
}

// Runs at the end of the scope unless dismissed.
template <class Action>
class OnExit {
 public:
  explicit OnExit(Action action) : action_(action) {}
  OnExit(const OnExit&) = delete;
  OnExit& operator=(const OnExit&) = delete;
  OnExit(OnExit&&) = delete;
  OnExit& operator=(OnExit&&) = delete;
  ~OnExit() {
    if (armed_) action_();
  }
  void dismiss() { armed_ = false; }

 private:
  Action action_;
  bool armed_ = true;
};

// Texts are passed as char to some functions of the interface and as octets to others.
inline std::uint8_t* as_octets(char* text) {
  return static_cast<std::uint8_t*>(static_cast<void*>(text));
}
inline const std::uint8_t* as_octets(const char* text) {
  return static_cast<const std::uint8_t*>(static_cast<const void*>(text));
}

// A field that refers to somebody else's bytes, who keeps them longer than the field.
inline ANYBUF view_of(const void* bytes, std::uint32_t length, std::uint32_t type) {
  auto* data = const_cast<std::uint8_t*>(static_cast<const std::uint8_t*>(bytes));
  return {data, length, 0, ASN1_FORM_VIEW, type, nullptr, nullptr};
}

inline bool equal_bytes(const ANYBUF& field, const void* bytes, std::size_t length) {
  if (field.length != length) return false;
  return length == 0 || (field.data != nullptr && std::memcmp(field.data, bytes, length) == 0);
}

// Releases the bytes of an embedded field, if it owns any, and clears the pointer to them; the
// length stays as it was. Null is accepted.
inline void FreeANYBUF(ANYBUF* field) {
  if (field == nullptr) return;
  if (field->form == ASN1_FORM_OWNED && field->data != nullptr) Asn1Free(field->data);
  field->data = nullptr;
  field->form = ASN1_FORM_OWNED;
}

// Leaves the field empty.
inline void clear(ANYBUF& field) {
  FreeANYBUF(&field);
  field.length = 0;
}

// Gives the field a block of its own and releases what it held.
inline void adopt(ANYBUF& field, Block<std::uint8_t> bytes, std::uint32_t length,
                  std::uint32_t type) {
  FreeANYBUF(&field);
  field = {bytes.release(), length, 0, ASN1_FORM_OWNED, type, nullptr, nullptr};
}

// Gives the field a copy of the bytes and releases what it held. It is unchanged on failure.
[[nodiscard]] bool replace(ANYBUF& field, const void* bytes, std::size_t length,
                           std::uint32_t type);

// Copies a whole element into a field: bytes, length and type.
std::int32_t QZDecodeCopy(const ANYBUF* element, ANYBUF* field);

// Moves the bytes of a node into a field, with their length and type words, and releases the node's
// shell. What the field held is not looked at.
std::int32_t CopyElementOtoO(ANYBUF* element, ANYBUF* field);

// The output-buffer protocol: without a buffer the length is stored; a buffer that is too short
// changes nothing.
template <class Length>
[[nodiscard]] std::int32_t copy_out(const void* bytes, std::uint64_t length, std::uint8_t* buffer,
                                    Length* in_out) {
  if (in_out == nullptr) return -1;
  const auto stored = static_cast<Length>(length);
  if (static_cast<std::uint64_t>(stored) != length) return -1;
  if (buffer != nullptr) {
    if (*in_out < stored) return -1;
    if (length != 0) std::memcpy(buffer, bytes, length);
  }
  *in_out = stored;
  return 0;
}

template <class Length>
[[nodiscard]] std::int32_t copy_out(const ANYBUF& field, std::uint8_t* buffer, Length* in_out) {
  return copy_out(field.data, field.data == nullptr ? 0 : field.length, buffer, in_out);
}

}  // namespace tq

#endif
