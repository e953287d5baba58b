#include <tqasn1/asn1.h>

#include "asn1/calendar.h"
#include "asn1/der.h"
#include "asn1/node.h"

int32_t QZAsn1GetGeneralizedTime(const ANYBUF* element, uint64_t* seconds) {
  return tq::asn1::read(tq::der::kGeneralizedTime, tq::der::read_time, element, seconds);
}

int32_t QZAsn1SetGeneralizedTime(uint64_t seconds, ANYBUF** element) {
  if (seconds > tq::der::kLastTime) return tq::asn1::kFail;
  return tq::asn1::build(tq::der::kGeneralizedTime, tq::der::kTimeLength, element,
                         [=](tq::der::Writer& out) { out.time(seconds); });
}
