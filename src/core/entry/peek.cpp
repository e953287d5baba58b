#include "core/entry/label.h"

namespace tq {

bool outline(const std::uint8_t* der, std::uint32_t length, Outline& outline) {
  der::Element label;
  if (!der::read_outermost(der, length, der::kSequence, label)) return false;
  der::Cursor in(label);
  if (!in.next(outline.head)) return false;
  outline.has_body = !in.at_end();
  if (!outline.has_body) return true;
  if (!in.next(outline.body)) return false;
  outline.has_padding = !in.at_end();
  return in.finish();
}

bool PeekedHead::read(const std::uint8_t* der, std::int64_t length, Body body) {
  Outline parts;
  if (der == nullptr || length <= 0 || length > UINT32_MAX) return false;
  if (!outline(der, static_cast<std::uint32_t>(length), parts)) return false;
  if (body == Body::kRequired && !parts.has_body) return false;
  der::Cursor in(parts.head.start, parts.head.size());
  return read_head(label_.head, label_, true, in);
}

}  // namespace tq

std::int32_t LabelBodyNeedEnc(TqLabel label) {
  if (label == nullptr) return -1;
  return label->head.encryptHead.algorithm.length != 0 ? 1 : 0;
}

std::int32_t LabelBodyWeatherEnc(const std::uint8_t* der, std::int32_t derLen) {
  tq::PeekedHead peeked;
  if (!peeked.read(der, derLen, tq::PeekedHead::Body::kNotAsked)) return -1;
  return LabelBodyNeedEnc(&peeked.label());
}

std::int32_t GetSignAlgName(const std::uint8_t* der, std::int32_t derLen, std::uint8_t* buffer,
                            std::uint32_t* length) {
  tq::PeekedHead peeked;
  if (length == nullptr || !peeked.read(der, derLen, tq::PeekedHead::Body::kNotAsked) ||
      LabelBodyNeedEnc(&peeked.label()) != 1) {
    return -1;
  }
  return GetHeadSignAlg(&peeked.label(), buffer, length);
}

std::int32_t GetLable(const std::uint8_t* der, std::uint32_t derLen, std::uint8_t* text) {
  tq::PeekedHead peeked;
  if (text == nullptr || !peeked.read(der, derLen, tq::PeekedHead::Body::kNotAsked)) return -1;
  if (LabelBodyNeedEnc(&peeked.label()) != 1) return 0;
  std::uint32_t room = tq::kTextLimit;
  return tq::copy_out(peeked.head().label, text, &room);
}

std::int32_t GetCustomAttr(const std::uint8_t* der, std::int32_t derLen, std::uint8_t* buffer,
                           std::int32_t* length) {
  tq::PeekedHead peeked;
  if (length == nullptr || !peeked.read(der, derLen, tq::PeekedHead::Body::kRequired)) return -1;
  return tq::copy_out(peeked.head().custom, buffer, length);
}

std::int32_t HavePadded(const std::uint8_t* der, std::uint32_t derLen, std::uint32_t* flag) {
  tq::Outline parts;
  if (flag == nullptr || !tq::outline(der, derLen, parts) || !parts.has_body) return -1;
  *flag = parts.has_padding ? 1 : 0;
  return 0;
}
