#include "crypto/identity_key.h"

#include "crypto/blob.h"

namespace tq {
namespace {

constexpr std::uint32_t kE1Length = 4;
constexpr std::uint8_t kPointForm = 4;
constexpr std::uint32_t kShortestPoint = 3;
constexpr std::uint32_t kLongestHalf = 255;
// Two lengths of 32 bits and one of 8; the octet before the point takes the place of e4's first.
constexpr std::uint32_t kPrefixes = 9;

// The octet of a point that is written, counted from its start.
std::uint8_t octet_at(const Point& point, std::uint32_t index) {
  const std::uint32_t front = point.zero_in_front ? 2 : 1;
  if (index < front || index - front >= point.octets.length) return 0;
  return point.octets.data[index - front];
}

// Splits what stands behind e5: h, the length of a half, and the octets of the point.
[[nodiscard]] bool parse_point(BlobReader& in, bool e5_is_empty, Point& point) {
  const std::uint32_t rest = in.left();
  std::uint8_t half = 0;
  if (!in.number(half)) return false;
  point.octets = in.rest();
  point.from_blob = true;
  if (rest % 2 == 0) (rest / 2 == half ? point.zero_at_end : point.zero_in_front) = true;
  const std::uint32_t length = PointCodec::length(point);
  const std::uint32_t written_half = (length - 1) / 2;
  if (length < kShortestPoint || written_half > kLongestHalf) return false;
  return !e5_is_empty || octet_at(point, 1 + written_half) != 0;
}

[[nodiscard]] bool parse_blob(const ANYBUF& blob, IdentityKey& key) {
  BlobReader in(blob);
  std::uint8_t e5_length = 0;
  return in.bytes(kE1Length, key.e1) && in.prefixed(key.e2) && in.prefixed(key.e3) &&
         in.number(e5_length) && in.bytes(e5_length, key.e5) &&
         parse_point(in, e5_length == 0, key.e4);
}

// Puts the point behind the other parts of a blob of `capacity` octets; `used` is what the blob
// then is long.
[[nodiscard]] bool put_point(const IdentityKey& key, std::uint8_t* blob, std::uint64_t capacity,
                             BlobWriter& out, std::uint64_t& used) {
  const ANYBUF& point = key.e4.octets;
  const std::uint32_t half = (point.length - 1) / 2;
  const std::uint8_t* first = point.data + 1;
  const std::uint8_t* second = first + half;
  if (*second == 0 && key.e5.length == 0) return false;
  if (*first != 0 && *second != 0) {
    out.number(static_cast<std::uint8_t>(half));
    out.bytes(first, std::size_t{2} * half);
    return true;
  }
  --used;
  if (*first == 0) {
    out.number(static_cast<std::uint8_t>(half - 1));
    out.bytes(first + 1, std::size_t{2} * half - 1);
    return true;
  }
  out.number(static_cast<std::uint8_t>(half));
  // The second half goes where a first half as long as one of e5's would end. Callers rely on it,
  // also where e5 has another length than the point.
  const auto start = static_cast<std::uint64_t>(out.at() - blob);
  const std::uint64_t place = start + (key.e5.length - 1) / 2;
  if (place + (half - 1) > capacity) return false;
  out.bytes(first, half);
  std::memcpy(blob + place, second, half - 1);
  return true;
}

[[nodiscard]] bool make_blob(const IdentityKey& key, ANYBUF& blob) {
  const ANYBUF& point = key.e4.octets;
  if (point.length == 0) return true;  // no blob
  if (point.length % 2 == 0 || point.length < kShortestPoint ||
      (point.length - 1) / 2 > kLongestHalf) {
    return false;
  }
  const std::uint64_t capacity = std::uint64_t{key.e1.length} + key.e2.length + key.e3.length +
                                 point.length + key.e5.length + kPrefixes;
  if (capacity > UINT32_MAX) return false;
  Block<std::uint8_t> bytes = make_zeroed<std::uint8_t>(capacity);
  if (!bytes) return false;
  BlobWriter out(bytes.get());
  out.bytes(key.e1);
  out.prefixed(key.e2);
  out.prefixed(key.e3);
  out.number(static_cast<std::uint8_t>(key.e5.length));
  out.bytes(key.e5);
  std::uint64_t used = capacity;
  if (!put_point(key, bytes.get(), capacity, out, used)) return false;
  adopt(blob, std::move(bytes), static_cast<std::uint32_t>(used), 0);
  return true;
}

}  // namespace

der::Writer PointCodec::write(const Point& point, der::Writer out) {
  out.header(kTag, length(point));
  if (point.from_blob) out.octet(kPointForm);
  if (point.zero_in_front) out.octet(0);
  out.octets(point.octets.data, point.octets.length);
  if (point.zero_at_end) out.octet(0);
  return out;
}

bool IdentityKeyBlob::plan_element(const ANYBUF& blob, const Scope& scope, der::Plan& plan) {
  IdentityKey key{};
  return parse_blob(blob, key) && decltype(kIdentityKey)::plan_element(key, scope, plan);
}

der::Writer IdentityKeyBlob::write_element(const ANYBUF& blob, const Scope& scope,
                                           der::Writer out) {
  IdentityKey key{};
  static_cast<void>(parse_blob(blob, key));  // as the plan has seen
  return decltype(kIdentityKey)::write_element(key, scope, out);
}

bool IdentityKeyBlob::read_element(ANYBUF& blob, const Scope& /*scope*/, der::Cursor& in) {
  IdentityKey key{};
  return decltype(kIdentityKey)::read_element(key, {.views = true}, in) && make_blob(key, blob);
}

std::int32_t EncodeIBCENVELOPE(const ANYBUF* blob, ANYBUF** slot) {
  return encode(IdentityKeyBlob{}, blob, slot);
}
std::int32_t DecodeIBCENVELOPE(const ANYBUF* element, ANYBUF* blob) {
  return decode(IdentityKeyBlob{}, element, blob);
}

}  // namespace tq
