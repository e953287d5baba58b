// Bytes as elements: what a primitive reads and builds again is the element that it was.

#include <tqasn1/asn1.h>

#include "support.h"

namespace tq::fuzz {
namespace {

struct NodesFreed {
  void operator()(ANYBUF* node) const { DIFreeAnybuf(node); }
};
using Node = std::unique_ptr<ANYBUF, NodesFreed>;

using Get = std::int32_t (*)(const ANYBUF*, ANYBUF**);
struct Strings {
  Get get;
  Get set;
};
constexpr Strings kStrings[] = {
    {QZAsn1GetIntegerArray, QZAsn1SetIntegerArray},
    {QZAsn1GetOctetString, QZAsn1SetOctetString},
    {QZAsn1GetBitString, QZAsn1SetBitString},
    {QZAsn1GetPrintableString, QZAsn1SetPrintableString},
    {QZAsn1GetIa5String, QZAsn1SetIa5String},
    {QZAsn1GetBmpString, QZAsn1SetBmpString},
    {QZAsn1GetObjectIdPJ, QZAsn1SetObjectIdPJ},
};

template <class Call, class... Values>
ANYBUF* made(Call call, Values... values) {
  ANYBUF* node = nullptr;
  require(call(values..., &node) == 0, "what was read is built");
  return node;
}

void require_start(const ANYBUF& element, const ANYBUF& built) {
  const Node bytes(made(QZCopyAnyBuf, &built));
  require(bytes->length <= element.length && bytes->length == built.length &&
              Asn1memcmp(bytes->data, element.data, bytes->length) == 0,
          "what was read builds to itself");
}

template <class Value, class Read, class Build>
void check_value(const ANYBUF& element, Read read, Build build) {
  Value value{};
  if (read(&element, &value) == 0) require_start(element, *Node(made(build, value)));
}

ANYBUF* rebuilt(const ANYBUF& element);

Node rebuilt_all(ANYBUF* chain) {
  ANYBUF* first = nullptr;
  ANYBUF** last = &first;
  for (; chain != nullptr; chain = chain->next) last = &(*last = rebuilt(*chain))->next;
  return Node(first);
}

// The element as a tree of its own, however deep.
ANYBUF* rebuilt(const ANYBUF& element) {
  ANYBUF* inside = nullptr;
  std::uint32_t number = 0;
  if (QZAsn1GetSequence(&element, &inside) == 0) {
    return made(QZAsn1SetSequence, rebuilt_all(Node(inside).get()).release());
  }
  if (QZAsn1GetSet(&element, &inside) == 0) {
    return made(QZAsn1SetSet, rebuilt_all(Node(inside).get()).release());
  }
  if (QZAsn1GetExplicit(&element, &number, &inside) == 0) {
    return made(QZAsn1SetExplicit, number, rebuilt_all(Node(inside).get()).release());
  }
  for (const Strings& type : kStrings) {
    if (type.get(&element, &inside) != 0) continue;
    const Node content(inside);
    return made(type.set, inside);
  }
  return made(QZCopyAnyBuf, &element);
}

bool is_read(const ANYBUF& element) {
  ANYBUF* inside = nullptr;
  std::uint32_t number = 0;
  const bool tree = QZAsn1GetSequence(&element, &inside) == 0 ||
                    QZAsn1GetSet(&element, &inside) == 0 ||
                    QZAsn1GetExplicit(&element, &number, &inside) == 0;
  const bool read = tree || std::any_of(std::begin(kStrings), std::end(kStrings), [&](auto& type) {
                      return type.get(&element, &inside) == 0;
                    });
  QZFreeQueue(&inside);
  return read;
}

}  // namespace
}  // namespace tq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tq::fuzz;
  std::vector<std::uint8_t> bytes(data, data + size);
  const ANYBUF element{
      bytes.data(), static_cast<std::uint32_t>(size), 0, ASN1_FORM_VIEW, 0, nullptr, nullptr};
  check_value<std::uint32_t>(element, QZAsn1GetInteger, QZAsn1SetInteger);
  check_value<std::uint8_t>(element, QZAsn1GetBoolean, QZAsn1SetBoolean);
  check_value<std::uint64_t>(element, QZAsn1GetGeneralizedTime, QZAsn1SetGeneralizedTime);
  if (is_read(element)) require_start(element, *Node(rebuilt(element)));
  ANYBUF* copy = nullptr;
  if (size != 0 && QZCopyAnyBuf(&element, &copy) == 0) {
    require(Node(copy)->length == size, "exactly one element is copied");
  }
  return 0;
}
