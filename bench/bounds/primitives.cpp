// The DER layer. An input gets the tag that the primitive is for.

#include "bounds/entry_points.h"

namespace tq::bench {
namespace {

using OnNode = bool (*)(const ANYBUF& element);

std::function<Call(const WorstInput&)> on_node(std::uint8_t tag, OnNode call) {
  return [=](const WorstInput& input) -> Call {
    return [=, bytes = input.bytes]() mutable {
      if (tag != 0) bytes.front() = tag;
      const ANYBUF node = {bytes.data(), size32(bytes), 0, ASN1_FORM_VIEW, 0, nullptr, nullptr};
      return call(node);
    };
  };
}

template <auto kConvert>
bool convert(const ANYBUF& element) {
  ANYBUF* made = nullptr;
  const bool done = kConvert(&element, &made) == 0;
  DIFreeAnybuf(made);
  return done;
}

template <auto kGet, class Value>
bool get(const ANYBUF& element) {
  Value value = 0;
  return kGet(&element, &value) == 0;
}

bool get_explicit(const ANYBUF& element) {
  std::uint32_t number = 0;
  ANYBUF* inner = nullptr;
  const bool done = QZAsn1GetExplicit(&element, &number, &inner) == 0;
  DIFreeAnybuf(inner);
  return done;
}

// Opens the first element of each level and keeps all levels until the last.
bool open_all(const ANYBUF& element) {
  ANYBUF* kept = nullptr;
  ANYBUF* children = nullptr;
  const bool done = QZAsn1GetSequence(&element, &children) == 0;
  while (children != nullptr) {
    ANYBUF* last = children;
    while (last->next != nullptr) last = last->next;
    last->next = kept;
    kept = children;
    children = nullptr;
    if (QZAsn1GetSequence(kept, &children) != 0) break;
  }
  DIFreeAnybuf(kept);
  return done;
}

template <auto kWrap>
bool wrap_children(const ANYBUF& element) {
  ANYBUF* children = nullptr;
  ANYBUF* tree = nullptr;
  ANYBUF* copy = nullptr;
  const bool done = QZAsn1GetSequence(&element, &children) == 0 && kWrap(children, &tree) == 0 &&
                    QZCopyAnyBuf(tree, &copy) == 0;
  DIFreeAnybuf(tree);
  DIFreeAnybuf(copy);
  return done;
}

bool wrap_copy(const ANYBUF& element) {
  ANYBUF* inner = nullptr;
  ANYBUF* tree = nullptr;
  ANYBUF* copy = nullptr;
  const bool done = QZCopyAnyBuf(&element, &inner) == 0 &&
                    QZAsn1SetExplicit(0, inner, &tree) == 0 && QZCopyAnyBuf(tree, &copy) == 0;
  DIFreeAnybuf(tree);
  DIFreeAnybuf(copy);
  return done;
}

void add_strings(std::vector<EntryPoint>& all) {
  const auto string = [&](const char* name, std::uint8_t tag, OnNode get, OnNode set) {
    all.push_back(
        {name, "the QZAsn1Get of strings", kPrimitive, Gets::kRead, kCopied, on_node(tag, get)});
    all.push_back(
        {name, "the QZAsn1Set of strings", kContent, Gets::kRead, kCopied, on_node(0, set)});
  };
  string("IntegerArray", 0x02, convert<QZAsn1GetIntegerArray>, convert<QZAsn1SetIntegerArray>);
  string("BitString", 0x03, convert<QZAsn1GetBitString>, convert<QZAsn1SetBitString>);
  string("OctetString", 0x04, convert<QZAsn1GetOctetString>, convert<QZAsn1SetOctetString>);
  string("ObjectIdPJ", 0x06, convert<QZAsn1GetObjectIdPJ>, convert<QZAsn1SetObjectIdPJ>);
  string("PrintableString", 0x13, convert<QZAsn1GetPrintableString>,
         convert<QZAsn1SetPrintableString>);
  string("Ia5String", 0x16, convert<QZAsn1GetIa5String>, convert<QZAsn1SetIa5String>);
  string("BmpString", 0x1E, convert<QZAsn1GetBmpString>, convert<QZAsn1SetBmpString>);
}

}  // namespace

void add_primitives(std::vector<EntryPoint>& all) {
  const auto add = [&](const char* name, const char* group, unsigned forms, std::uint8_t tag,
                       Gets needs, double peak, OnNode call) {
    all.push_back({name, group, forms, needs, peak, on_node(tag, call)});
  };
  const auto split = [&](const char* name, std::uint8_t tag, OnNode call) {
    add(name, "QZAsn1GetSequence, QZAsn1GetSet", kConstructed, tag, Gets::kRead, kNodes, call);
  };
  split("QZAsn1GetSequence", 0x30, convert<QZAsn1GetSequence>);
  split("QZAsn1GetSet", 0x31, convert<QZAsn1GetSet>);
  all.push_back({"QZAsn1GetExplicit", "QZAsn1GetExplicit", kPrimitive, Gets::kRead, kNothing,
                 [](WorstInput input) {
                   input.bytes = test::tlv(0xA0, input.bytes);
                   return on_node(0, get_explicit)(input);
                 }});
  const char* const all_levels = "QZAsn1GetSequence of each level in turn";
  add(all_levels, all_levels, kConstructed, 0, Gets::kRead, kNodes, open_all);
  const auto wrap = [&](const char* name, OnNode call) {
    add(name, "QZAsn1SetSequence, QZAsn1SetSet of children, QZCopyAnyBuf", kConstructed, 0,
        Gets::kRead, kNodes + kCopied, call);
  };
  wrap("QZAsn1SetSequence", wrap_children<QZAsn1SetSequence>);
  wrap("QZAsn1SetSet", wrap_children<QZAsn1SetSet>);
  add("QZAsn1SetExplicit", "QZAsn1SetExplicit of a copy, QZCopyAnyBuf", kConstructed | kPrimitive,
      0, Gets::kSplit, 2 * kCopied, wrap_copy);
  add("QZCopyAnyBuf", "QZCopyAnyBuf", kConstructed | kPrimitive, 0, Gets::kSplit, kCopied,
      convert<QZCopyAnyBuf>);
  add_strings(all);
  const auto value = [&](const char* name, std::uint8_t tag, OnNode get) {
    add(name, "the QZAsn1Get of values", kPrimitive, tag, Gets::kNever, kNothing, get);
  };
  value("Integer", 0x02, get<QZAsn1GetInteger, std::uint32_t>);
  value("Boolean", 0x01, get<QZAsn1GetBoolean, std::uint8_t>);
  value("GeneralizedTime", 0x18, get<QZAsn1GetGeneralizedTime, std::uint64_t>);
}

}  // namespace tq::bench
