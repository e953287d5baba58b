#include "core/entry/label.h"

TqLabel GetHandleLabel(void) { return tq::make_zeroed<TqLabelHandle>().release(); }

void FreeHandleLabel(TqLabel label) {
  if (label == nullptr) return;
  tq::FreeHead(&label->head);
  tq::FreeBody(&label->body);
  tq::FreeANYBUF(&label->pad);
  Asn1Free(label->openedBytes);
  Asn1Free(label);
}
