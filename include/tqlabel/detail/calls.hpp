/**
 * @file
 * How the C++ interface calls the C one: lengths that are checked, buffers that are asked for.
 */
#ifndef TQLABEL_DETAIL_CALLS_HPP
#define TQLABEL_DETAIL_CALLS_HPP

#include <algorithm>
#include <cstddef>
#include <limits>
#include <tqlabel/detail/records.hpp>
#include <tqlabel/detail/result.hpp>

/** @cond cpp */
namespace tqlabel::detail {

inline Result<void> status(std::int32_t code) {
  if (code != 0) return static_cast<Error>(code);
  return {};
}
inline Result<bool> answer(std::int32_t code) {
  if (code < 0) return static_cast<Error>(code);
  return code != 0;
}

template <class Length>
constexpr bool fits(std::size_t size) noexcept {
  return size <= static_cast<std::size_t>(std::numeric_limits<Length>::max());
}
template <class Container>
std::uint32_t size32(const Container& container) noexcept {
  return static_cast<std::uint32_t>(container.size());
}

// The library takes no null pointer for no bytes.
inline const std::uint8_t* octets(ByteView bytes) noexcept {
  static constexpr std::uint8_t kNone = 0;
  return bytes.empty() ? &kNone : bytes.data();
}
// Records have one kind of pointer for what is read and for what is written.
inline std::uint8_t* given(ByteView bytes) noexcept {
  return const_cast<std::uint8_t*>(octets(bytes));
}
inline std::uint8_t* room_of(std::string& text) noexcept {
  return static_cast<std::uint8_t*>(static_cast<void*>(text.data()));
}
inline std::uint8_t* room_of(Bytes& bytes) noexcept { return bytes.data(); }

inline std::string text_of(const std::uint8_t* data, std::size_t length) {
  return {static_cast<const char*>(static_cast<const void*>(data)), length};
}

// Calls with bytes whose number the length parameter holds.
template <class Length = std::uint32_t, class Use>
auto with(ByteView bytes, Use use) -> std::invoke_result_t<Use, const std::uint8_t*, Length> {
  if (!fits<Length>(bytes.size())) return Error::kTooLong;
  return use(octets(bytes), static_cast<Length>(bytes.size()));
}

// Asks for the length, then for the bytes; the second call has a buffer even for none.
template <class Out, class Length = std::uint32_t, class Call>
Result<Out> fetch(Call call) {
  Length length = 0;
  if (const std::int32_t code = call(nullptr, &length); code != 0) return static_cast<Error>(code);
  Out out;
  out.resize(std::max<std::size_t>(1, static_cast<std::size_t>(length)));
  if (const std::int32_t code = call(room_of(out), &length); code != 0) {
    return static_cast<Error>(code);
  }
  out.resize(static_cast<std::size_t>(length));
  return out;
}

// An issuer as the C interface has it, with room for any that it hands out.
class FlatIssuer {
 public:
  explicit FlatIssuer(const Issuer& issuer) : fits_(issuer.size() <= kMost) {
    for (std::size_t i = 0; fits_ && i < issuer.size(); ++i) add(issuer[i]);
  }
  FlatIssuer(const FlatIssuer&) = delete;
  FlatIssuer& operator=(const FlatIssuer&) = delete;

  [[nodiscard]] bool fits() const noexcept { return fits_; }
  PJCertIssuer* get() noexcept { return &record_; }

 private:
  static constexpr std::uint32_t kMost = 10;

  void add(const Attribute& attribute) {
    PJCertIssuerEntry& entry = entries_[record_.count];
    fits_ =
        attribute.type.size() <= sizeof entry.type && attribute.value.size() <= sizeof entry.value;
    if (!fits_) return;
    std::ranges::copy(attribute.type, entry.type);
    std::ranges::copy(attribute.value, entry.value);
    entry.typeLen = size32(attribute.type);
    entry.valueLen = size32(attribute.value);
    entry.valueTag = static_cast<std::uint32_t>(attribute.string_type);
    ++record_.count;
  }

  PJCertIssuerEntry entries_[kMost] = {};
  PJCertIssuer record_ = {entries_, 0, kMost};
  bool fits_;
};

inline Issuer issuer_of(const PJCertIssuer* record) {
  Issuer issuer;
  for (std::uint32_t i = 0; record != nullptr && i < record->count; ++i) {
    const PJCertIssuerEntry& entry = record->entries[i];
    issuer.push_back({{entry.type, entry.type + entry.typeLen},
                      text_of(entry.value, entry.valueLen),
                      static_cast<StringType>(entry.valueTag)});
  }
  return issuer;
}

// Calls with serial number, its length and issuer.
template <class Use>
auto with(const Recipient& recipient, Use use)
    -> std::invoke_result_t<Use, const std::uint8_t*, std::uint32_t, PJCertIssuer*> {
  FlatIssuer issuer(recipient.issuer);
  if (!issuer.fits() || !fits<std::uint8_t>(recipient.serial.size())) return Error::kTooLong;
  return use(octets(recipient.serial), size32(recipient.serial), issuer.get());
}

// Calls with an envelope as the C interface has it.
template <class Use>
Result<void> with(const Envelope& envelope, Use use) {
  const ByteView algorithm = as_octets(envelope.algorithm);
  if (!fits<std::uint8_t>(algorithm.size()) || !fits<std::uint32_t>(envelope.key.size())) {
    return Error::kTooLong;
  }
  return with(envelope.recipient,
              [&](const std::uint8_t*, std::uint32_t serial_length, PJCertIssuer* issuer) {
                const EnvelopeInfo info = {given(algorithm),
                                           static_cast<std::uint8_t>(algorithm.size()),
                                           given(envelope.recipient.serial),
                                           static_cast<std::uint8_t>(serial_length),
                                           given(envelope.key),
                                           size32(envelope.key),
                                           issuer};
                return use(info);
              });
}

template <class From, class To>
void copy_values(const From& from, To& to) {
  to.flag1 = from.flag1 != 0;
  to.flag2 = from.flag2 != 0;
  to.flag3 = from.flag3 != 0;
  to.flag4 = from.flag4 != 0;
  to.number1 = from.number1;
  to.number3 = from.number3;
  to.number4 = from.number4;
}

// Calls with privileges as the C interface has them.
template <class Use>
Result<void> with(const Privileges& privileges, Use use) {
  if (!fits<std::uint32_t>(privileges.data.size()) ||
      !fits<std::uint32_t>(privileges.pairs.size())) {
    return Error::kTooLong;
  }
  // All bytes of a pair are zero first, since its padding is stored.
  std::vector<PrivilegeEntry> pairs(privileges.pairs.size());
  std::ranges::fill(std::as_writable_bytes(std::span(pairs)), std::byte{0});
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    pairs[i].type = privileges.pairs[i].type;
    pairs[i].value = privileges.pairs[i].value;
  }
  PrivilegeInfo info = {};
  copy_values(privileges, info);
  info.readCount = privileges.read_count;
  info.data = given(privileges.data);
  info.dataLen = size32(privileges.data);
  info.entries = pairs.data();
  info.entryCount = size32(pairs);
  return use(info);
}

}  // namespace tqlabel::detail
/** @endcond */

#endif
