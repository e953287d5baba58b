#include <tqasn1/asn1.h>

#include "asn1/der.h"
#include "asn1/node.h"

namespace {

using tq::der::Element;
using tq::der::Octet;
using tq::der::Tag;
using tq::der::Writer;

// A BIT STRING has one octet in front of its bits: the number of unused ones, always 0 here.
constexpr std::uint32_t octets_in_front(Tag tag) { return tag == tq::der::kBitString ? 1 : 0; }

std::int32_t get(Tag tag, const ANYBUF* element, ANYBUF** content) {
  Element found;
  if (element == nullptr || content == nullptr ||
      !tq::der::read_outermost(element->data, element->length, tag, found) ||
      (octets_in_front(tag) != 0 && !tq::der::has_whole_octets(found))) {
    return tq::asn1::kFail;
  }
  const std::uint32_t front = octets_in_front(tag);
  ANYBUF* copy =
      tq::asn1::new_owned(found.content() + front, found.length - front, tq::der::type_word(tag));
  if (copy == nullptr) return tq::asn1::kFail;
  *content = copy;
  return tq::asn1::kDone;
}

std::int32_t set(Tag tag, const ANYBUF* content, ANYBUF** element) {
  if (content == nullptr || (content->data == nullptr && content->length != 0)) {
    return tq::asn1::kFail;
  }
  const std::uint64_t length = std::uint64_t{content->length} + octets_in_front(tag);
  return tq::asn1::build(tag, length, element, [=](Writer& out) {
    out.header(tag, static_cast<std::uint32_t>(length));
    if (octets_in_front(tag) != 0) out.octet(0);
    out.octets(content->data, content->length);
  });
}

}  // namespace

int32_t QZAsn1GetIntegerArray(const ANYBUF* element, ANYBUF** content) {
  return get(tq::der::kInteger, element, content);
}

int32_t QZAsn1SetIntegerArray(const ANYBUF* content, ANYBUF** element) {
  return set(tq::der::kInteger, content, element);
}

int32_t QZAsn1GetOctetString(const ANYBUF* element, ANYBUF** content) {
  return get(tq::der::kOctetString, element, content);
}

int32_t QZAsn1SetOctetString(const ANYBUF* content, ANYBUF** element) {
  return set(tq::der::kOctetString, content, element);
}

int32_t QZAsn1GetBitString(const ANYBUF* element, ANYBUF** content) {
  return get(tq::der::kBitString, element, content);
}

int32_t QZAsn1SetBitString(const ANYBUF* content, ANYBUF** element) {
  return set(tq::der::kBitString, content, element);
}

int32_t QZAsn1GetPrintableString(const ANYBUF* element, ANYBUF** content) {
  return get(tq::der::kPrintableString, element, content);
}

int32_t QZAsn1SetPrintableString(const ANYBUF* content, ANYBUF** element) {
  return set(tq::der::kPrintableString, content, element);
}

int32_t QZAsn1GetIa5String(const ANYBUF* element, ANYBUF** content) {
  return get(tq::der::kIa5String, element, content);
}

int32_t QZAsn1SetIa5String(const ANYBUF* content, ANYBUF** element) {
  return set(tq::der::kIa5String, content, element);
}

int32_t QZAsn1GetBmpString(const ANYBUF* element, ANYBUF** content) {
  return get(tq::der::kBmpString, element, content);
}

int32_t QZAsn1SetBmpString(const ANYBUF* content, ANYBUF** element) {
  return set(tq::der::kBmpString, content, element);
}

int32_t QZAsn1GetObjectIdPJ(const ANYBUF* element, ANYBUF** content) {
  return get(tq::der::kObjectId, element, content);
}

int32_t QZAsn1SetObjectIdPJ(const ANYBUF* content, ANYBUF** element) {
  return set(tq::der::kObjectId, content, element);
}
