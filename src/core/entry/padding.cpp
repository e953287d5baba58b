#include <utility>

#include "core/entry/label.h"

std::int32_t SetLabelPadSize(TqLabel label, std::uint32_t size) {
  if (label == nullptr) return -1;
  tq::clear(label->pad);
  label->pad.length = size;  // stays when there is no memory: the padded encoders then fail
  tq::Block<std::uint8_t> zeros = tq::make_zeroed<std::uint8_t>(size);
  if (!zeros) return -1;
  tq::adopt(label->pad, std::move(zeros), size, tq::der::kOctetString);
  return 0;
}
