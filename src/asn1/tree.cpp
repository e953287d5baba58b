#include <tqasn1/asn1.h>

#include "asn1/der.h"
#include "asn1/node.h"

namespace {

using tq::asn1::kDone;
using tq::asn1::kFail;
using tq::der::Cursor;
using tq::der::Element;
using tq::der::Octet;
using tq::der::Writer;

// Set in the flags of a last child: its `next` is the way back up to the parent. With it a tree is
// walked in a loop, so that input cannot exhaust the stack by being deep.
constexpr std::uint32_t kThread = 1;

constexpr std::uint32_t kHighestTagNumber = 30;

bool is_threaded(const ANYBUF& node) { return (node.flags & kThread) != 0; }

// A tree has children: an element without any is encoded when it is built.
bool is_tree(const ANYBUF& node) {
  return node.last != nullptr && node.data == nullptr && node.length != 0;
}

ANYBUF* first_child(const ANYBUF& tree) { return static_cast<ANYBUF*>(tree.last); }

Octet tag_of(const ANYBUF& tree) {
  const auto type = static_cast<Octet>(tree.type);
  return type > tq::der::kNumberBits ? type : static_cast<Octet>(type | tq::der::kConstructedBit);
}

// A node keeps the size of its whole element. No two contents give the same size.
std::uint32_t content_length(const ANYBUF& tree) {
  std::uint32_t header = 2;
  while (tq::der::header_size(tree.length - header) != header) ++header;
  return tree.length - header;
}

// Whether the node is one element, or one that adds nothing.
bool is_element(const ANYBUF& node) {
  if (node.length == 0 || is_tree(node)) return true;
  return node.data != nullptr && tq::der::is_one_element(node.data, node.length);
}

void release(ANYBUF* node) {
  if (node->form == ASN1_FORM_OWNED) Asn1Free(node->data);
  Asn1Free(node);
}

// The node that is written after this one and all below it, or null at the end of the root.
const ANYBUF* following(const ANYBUF* node, const ANYBUF* root) {
  while (node != root && is_threaded(*node)) node = node->next;
  return node == root ? nullptr : node->next;
}

void encode(const ANYBUF* root, Octet* bytes) {
  Writer out(bytes);
  for (const ANYBUF* node = root; node != nullptr;) {
    if (is_tree(*node)) {
      out.header(tag_of(*node), content_length(*node));
      node = first_child(*node);
    } else {
      out.octets(node->data, node->length);
      node = following(node, root);
    }
  }
}

std::uint32_t type_of_copy(const ANYBUF& element) {
  return element.data == nullptr || element.length == 0 ? element.type
                                                        : tq::der::type_word(*element.data);
}

// The last of a chain of future children, and the sum of their sizes. A threaded node is a child
// already.
bool measure(ANYBUF* chain, ANYBUF*& tail, std::uint64_t& content) {
  for (ANYBUF* node = chain; node != nullptr; node = node->next) {
    if (is_threaded(*node) || !is_element(*node)) return false;
    content += node->length;
    tail = node;
  }
  return true;
}

std::int32_t wrap(Octet tag, ANYBUF* children, ANYBUF** element) {
  ANYBUF* tail = nullptr;
  std::uint64_t content = 0;
  if (element == nullptr || !measure(children, tail, content)) return kFail;
  if (tail == nullptr) {
    return tq::asn1::build(tag, 0, element, [=](Writer& out) { out.header(tag, 0); });
  }
  const std::uint64_t size = tq::der::element_size(content);
  if (size > UINT32_MAX) return kFail;
  ANYBUF* tree = tq::asn1::new_node(ASN1_FORM_OWNED, tq::der::type_word(tag));
  if (tree == nullptr) return kFail;
  tree->length = static_cast<std::uint32_t>(size);
  tree->last = children;
  tail->next = tree;
  tail->flags |= kThread;
  *element = tree;
  return kDone;
}

// Leaves what it has made in the chain when it fails.
bool view_children(const ANYBUF& parent, Cursor cursor, ANYBUF** chain) {
  Element child;
  while (cursor.next(child)) {
    *chain = tq::asn1::new_view(parent, child);
    if (*chain == nullptr) return false;
    chain = &(*chain)->next;
  }
  return true;
}

std::int32_t split(Octet tag, const ANYBUF* element, ANYBUF** children) {
  Element outer;
  if (element == nullptr || children == nullptr ||
      !tq::der::read_outermost(element->data, element->length, tag, outer) ||
      !Cursor(outer).finish()) {
    return kFail;
  }
  ANYBUF* chain = nullptr;
  if (!view_children(*element, Cursor(outer), &chain)) {
    DIFreeAnybuf(chain);
    return kFail;
  }
  *children = chain;
  return kDone;
}

bool is_explicit(Octet tag) {
  return (tag & ~tq::der::kNumberBits) == tq::der::kContext0 && tq::der::is_valid_tag(tag);
}

}  // namespace

void DIFreeAnybuf(ANYBUF* chain) {
  while (chain != nullptr) {
    ANYBUF* node = chain;
    if (is_tree(*node)) {
      chain = first_child(*node);
      node->last = nullptr;  // the last child leads back here, and then there is nothing below
    } else {
      chain = node->next;
      release(node);
    }
  }
}

void QZFreeQueue(ANYBUF** chain) {
  if (chain == nullptr) return;
  DIFreeAnybuf(*chain);
  *chain = nullptr;
}

int32_t QZCopyAnyBuf(const ANYBUF* element, ANYBUF** copy) {
  if (element == nullptr || copy == nullptr || !is_element(*element)) return kFail;
  ANYBUF* node = tq::asn1::new_inline(element->length, type_of_copy(*element));
  if (node == nullptr) return kFail;
  encode(element, node->data);
  *copy = node;
  return kDone;
}

int32_t QZAsn1GetSequence(const ANYBUF* element, ANYBUF** children) {
  return split(tq::der::kSequence, element, children);
}

int32_t QZAsn1SetSequence(ANYBUF* children, ANYBUF** element) {
  return wrap(tq::der::kSequence, children, element);
}

int32_t QZAsn1GetSet(const ANYBUF* element, ANYBUF** children) {
  return split(tq::der::kSet, element, children);
}

int32_t QZAsn1SetSet(ANYBUF* children, ANYBUF** element) {
  return wrap(tq::der::kSet, children, element);
}

int32_t QZAsn1GetExplicit(const ANYBUF* element, uint32_t* number, ANYBUF** inner) {
  if (element == nullptr || number == nullptr || inner == nullptr || element->data == nullptr ||
      element->length == 0 || !is_explicit(*element->data)) {
    return kFail;
  }
  Element outer;
  const Octet tag = *element->data;
  if (!tq::der::read_outermost(element->data, element->length, tag, outer)) return kFail;
  Cursor inside(outer);
  Element within;
  if (!inside.next(within) || !inside.at_end()) return kFail;
  ANYBUF* view = tq::asn1::new_view(*element, within);
  if (view == nullptr) return kFail;
  *number = tag & tq::der::kNumberBits;
  *inner = view;
  return kDone;
}

int32_t QZAsn1SetExplicit(uint32_t number, ANYBUF* inner, ANYBUF** element) {
  if (number > kHighestTagNumber || inner == nullptr || inner->next != nullptr ||
      inner->length == 0) {
    return kFail;
  }
  return wrap(static_cast<Octet>(tq::der::kContext0 + number), inner, element);
}
