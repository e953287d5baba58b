#include <tqasn1/asn1.h>

#include <cstring>

#include "asn1/der.h"
#include "asn1/node.h"

using tq::asn1::build;
using tq::asn1::read;
using tq::der::Writer;

// The C library leaves null pointers undefined even where there is nothing to do.

void* Asn1memcpy(void* to, const void* from, size_t length) {
  return length != 0 ? std::memcpy(to, from, length) : to;
}

void* Asn1memset(void* block, int value, size_t length) {
  return length != 0 ? std::memset(block, value, length) : block;
}

int Asn1memcmp(const void* left, const void* right, size_t length) {
  return length != 0 ? std::memcmp(left, right, length) : 0;
}

int32_t QZAsn1GetInteger(const ANYBUF* element, uint32_t* value) {
  return read(tq::der::kInteger, tq::der::read_integer, element, value);
}

int32_t QZAsn1SetInteger(uint32_t value, ANYBUF** element) {
  return build(tq::der::kInteger, tq::der::integer_length(value), element,
               [=](Writer& out) { out.integer(value); });
}

int32_t QZAsn1GetBoolean(const ANYBUF* element, uint8_t* value) {
  return read(tq::der::kBoolean, tq::der::read_boolean, element, value);
}

int32_t QZAsn1SetBoolean(uint8_t value, ANYBUF** element) {
  return build(tq::der::kBoolean, 1, element, [=](Writer& out) { out.boolean(value != 0); });
}

int32_t QZAsn1SetNull(ANYBUF** element) {
  return build(tq::der::kNull, 0, element, [](Writer& out) { out.null(); });
}
