#include "der/label/body.h"

namespace tq {
namespace {

bool is_context_constructed(der::Octet tag) {
  return (tag & der::kClassBits) == (der::kContext0 & der::kClassBits) &&
         (tag & der::kConstructedBit) != 0;
}

// Reads the one element within an EXPLICIT tag.
template <class S>
[[nodiscard]] bool read_inside(S /*schema*/, const der::Element& tagged, typename S::Record& record,
                               const Scope& scope) {
  der::Cursor inside(tagged);
  return !inside.at_end() && S::read_element(record, scope, inside) && inside.at_end();
}

template <class S>
[[nodiscard]] bool read_marking(S schema, const der::Element& tagged, typename S::Record& record,
                                const Scope& scope) {
  S::release(record);
  record = {};
  record.present = 1;
  return read_inside(schema, tagged, record, scope);
}

[[nodiscard]] bool read_tagged_marking(Body& body, const Scope& scope, const der::Element& tagged) {
  switch (tagged.tag()) {
    case decltype(kStamp)::kTag:
      return read_marking(kStamp, tagged, body.stamp, scope);
    case decltype(kWaterMark)::kTag:
      return read_marking(kWaterMark, tagged, body.waterMark, scope);
    default:
      return read_marking(kFingerPrint, tagged, body.fingerPrint, scope);
  }
}

}  // namespace

bool Markings::read(Body& body, const Scope& scope, der::Cursor& in) {
  if (!scope.layout.multi_sign) return Run::read(body, scope, in);
  while (in.peek() == decltype(kStamp)::kTag || in.peek() == decltype(kWaterMark)::kTag ||
         in.peek() == decltype(kFingerPrint)::kTag) {
    der::Element tagged;
    if (!in.next(tagged) || !read_tagged_marking(body, scope, tagged)) return false;
  }
  return true;
}

// In "1.1" the first element decides: [0] brings extension values, and what stands behind them is
// logs whatever its number; [1] brings logs; anything else is ignored with all that follows.
bool Tail::read(Body& body, const Scope& scope, der::Cursor& in) {
  if (!scope.layout.v11) return Run::read(body, scope, in);
  der::Element tagged;
  if (in.peek() == decltype(kExtends)::kTag) {
    if (!in.next(tagged) || !read_inside(kExtends, tagged, body.extends, scope)) return false;
    if (in.at_end()) return true;
    if (!is_context_constructed(in.peek())) return false;
  } else if (in.peek() != decltype(kLogs)::kTag) {
    return true;
  }
  return in.next(tagged) && read_inside(kLogs, tagged, body.logs, scope);
}

std::int32_t EncodeBody(const TqLabelHandle* label, const Body* body, const BodyParts& parts,
                        ANYBUF** slot) {
  if (label == nullptr || parts.envelopes == nullptr || parts.file_creator == nullptr ||
      parts.content == nullptr) {
    return -1;
  }
  ReadyParts ready;
  ready[Part::kBodyEnvelopesNode] = parts.envelopes;
  ready[Part::kFileCreatorNode] = parts.file_creator;
  ready[Part::kContentNode] = parts.content;
  ready[Part::kExtendsNode] = parts.extends;
  ready[Part::kLogsNode] = parts.logs;
  ready[Part::kStampNode] = parts.stamp;
  ready[Part::kWaterMarkNode] = parts.water_mark;
  ready[Part::kFingerPrintNode] = parts.finger_print;
  Scope scope = scope_of(*label);
  scope.ready = &ready;
  return scope.layout.known() ? encode(kBody, body, slot, scope) : -1;
}

std::int32_t DecodeBody(const ANYBUF* element, Body* body, const TqLabelHandle* label) {
  return decode_versioned(kBody, element, body, label);
}

std::int32_t EncodeBodyD(const TqLabelHandle* label, ANYBUF** slot) {
  return label == nullptr ? -1 : encode_versioned(kBody, label, &label->body, slot);
}

void FreeBody(Body* body) { release(kBody, body); }

}  // namespace tq
