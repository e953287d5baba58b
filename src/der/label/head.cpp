#include "der/label/head.h"

namespace tq {
namespace {

[[nodiscard]] std::int32_t encode_head(const TqLabelHandle& label, const Head& head,
                                       const Scope& scope, ANYBUF** slot) {
  return can_write_head(label, head) ? encode(kHead, &head, slot, scope) : -1;
}

}  // namespace

bool can_write_head(const TqLabelHandle& label, const Head& head) {
  return layout_of(label).known() && version_text_agrees(label, head.versionText);
}

bool read_head(Head& head, TqLabelHandle& label, bool views, der::Cursor& in) {
  Scope scope{.views = views};
  der::Element sequence;
  if (!in.take(der::kSequence, sequence)) return false;
  der::Cursor inside(sequence);
  if (!decltype(kHeadFront)::read(head, scope, inside)) return false;
  if (!read_version_text(head.versionText, label)) return false;
  scope.layout = layout_of(label);
  return decltype(kHeadRest)::read(head, scope, inside) && inside.finish();
}

std::int32_t EncodeHead(const TqLabelHandle* label, const Head* head, const ANYBUF* signature,
                        const ANYBUF* encrypt_head, ANYBUF** slot) {
  if (label == nullptr || head == nullptr || signature == nullptr || encrypt_head == nullptr) {
    return -1;
  }
  ReadyParts parts;
  parts[Part::kHeadSignNode] = signature;
  parts[Part::kEncryptHeadNode] = encrypt_head;
  Scope scope = scope_of(*label);
  scope.ready = &parts;
  return encode_head(*label, *head, scope, slot);
}

std::int32_t DecodeHead(const ANYBUF* element, Head* head, TqLabelHandle* label) {
  if (element == nullptr || element->data == nullptr || head == nullptr || label == nullptr) {
    return -1;
  }
  der::Cursor in(element->data, element->length);
  return read_head(*head, *label, false, in) ? 0 : -1;
}

std::int32_t EncodeHeadD(const TqLabelHandle* label, ANYBUF** slot) {
  return label == nullptr ? -1 : encode_head(*label, label->head, scope_of(*label), slot);
}

std::int32_t GetMHead(const TqLabelHandle* label, ANYBUF** slot) {
  if (label == nullptr) return -1;
  Scope scope = scope_of(*label);
  scope.message = true;
  return encode_head(*label, label->head, scope, slot);
}

void FreeHead(Head* head) { release(kHead, head); }

}  // namespace tq
