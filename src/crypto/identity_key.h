#ifndef TQ_CRYPTO_IDENTITY_KEY_H
#define TQ_CRYPTO_IDENTITY_KEY_H

// The identity-based form of a wrapped key: a SEQUENCE on the wire, a flat blob in memory.

#include "der/schema/schema.h"

namespace tq {

// A point: an octet 4, then two halves of equal length. In a blob a half that begins with zero has
// lost one octet; the point that is written from it has a zero put back.
struct Point {
  ANYBUF octets;       // read: the whole content; to be written: what follows the leading octets
  bool from_blob;      // the leading octet 4 is to be put in front
  bool zero_in_front;  // and a zero behind that
  bool zero_at_end;
};

struct PointCodec {
  using Value = Point;
  static constexpr der::Octet kTag = der::kOctetString;

  [[nodiscard]] static std::uint32_t length(const Point& point) {
    return point.octets.length + (point.from_blob ? 1U : 0U) + (point.zero_in_front ? 1U : 0U) +
           (point.zero_at_end ? 1U : 0U);
  }
  [[nodiscard]] static bool plan(const Point& point, der::Plan& plan) {
    plan.add(length(point));
    return true;
  }
  static der::Writer write(const Point& point, der::Writer out);
  [[nodiscard]] static bool read(const der::Element& element, Point& point, const Scope& scope) {
    return store(point.octets, element.content(), element.length, 0, scope);
  }
};

// All fields are views: of the blob, or of the bytes that are read.
struct IdentityKey {
  ANYBUF e1;
  ANYBUF e2;
  ANYBUF e3;
  Point e4;
  ANYBUF e5;
};

inline constexpr auto kIdentityKey =
    record(integer_octets<&IdentityKey::e1>, printable<&IdentityKey::e2>, octets<&IdentityKey::e3>,
           Field<&IdentityKey::e4, PointCodec, "">{}, octets<&IdentityKey::e5>);

// The same as a schema whose record is the blob. Blob and SEQUENCE are exact inverses only when e1
// has 4 octets and neither half of e4 begins with zero.
struct IdentityKeyBlob {
  using Record = ANYBUF;

  [[nodiscard]] static bool plan_element(const ANYBUF& blob, const Scope& scope, der::Plan& plan);
  static der::Writer write_element(const ANYBUF& blob, const Scope& scope, der::Writer out);
  [[nodiscard]] static bool read_element(ANYBUF& blob, const Scope& scope, der::Cursor& in);
};

std::int32_t EncodeIBCENVELOPE(const ANYBUF* blob, ANYBUF** slot);
std::int32_t DecodeIBCENVELOPE(const ANYBUF* element, ANYBUF* blob);

}  // namespace tq

#endif
