#ifndef TQ_CORE_MODEL_CHAIN_H
#define TQ_CORE_MODEL_CHAIN_H

// Chains through `next`. A link is what points to a node: the owner's field or another node's
// `next`.

#include <cstdint>

namespace tq {

template <class Node>
void push_front(Node*& first, Node* node) {
  node->next = first;
  first = node;
}

// Takes a node out of its chain.
template <class Node>
[[nodiscard]] Node* unlink(Node** link) {
  Node* node = *link;
  *link = node->next;
  node->next = nullptr;
  return node;
}

// The link to the node at a position, or to the end of a chain that is too short.
template <class Node>
[[nodiscard]] Node** link_at(Node*& first, std::uint32_t position) {
  Node** link = &first;
  for (; *link != nullptr && position != 0; --position) link = &(*link)->next;
  return link;
}

template <class Node>
[[nodiscard]] std::uint32_t count(const Node* first) {
  std::uint32_t counted = 0;
  for (; first != nullptr; first = first->next) ++counted;
  return counted;
}

}  // namespace tq

#endif
