// Changes labels by their elements and mends the lengths, so that what is changed is still read.

#include <random>

#include "support.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace tq::fuzz {
namespace {

constexpr int kDeepest = 30;

struct Element {
  char tag;
  Bytes content;
  std::vector<Element> children;
};
using Elements = std::vector<Element>;

bool take_length(const Bytes& bytes, std::size_t& at, std::size_t& length) {
  length = u8(bytes)[at++];
  if (length >= 0x80) {
    std::size_t octets = length & 0x7F;
    if (octets > 3 || octets > bytes.size() - at) return false;
    for (length = 0; octets > 0; --octets) length = length << 8 | u8(bytes)[at++];
  }
  return length <= bytes.size() - at;
}

// Splits bytes that are elements without a rest; else there are none.
Elements parse(const Bytes& bytes, int depth = 0) {
  Elements elements;
  for (std::size_t at = 0, length = 0; at < bytes.size(); at += length) {
    if (depth > kDeepest || bytes.size() - at < 2) return {};
    Element& element = elements.emplace_back();
    element.tag = bytes[at++];
    if (!take_length(bytes, at, length)) return {};
    element.content = bytes.substr(at, length);
    if ((element.tag & 0x20) != 0) element.children = parse(element.content, depth + 1);
  }
  return elements;
}

Bytes encode(const Elements& elements) {
  Bytes bytes;
  for (const auto& [tag, own, children] : elements) {
    const Bytes content = children.empty() ? own : encode(children);
    Bytes length;
    for (std::size_t rest = content.size(); rest != 0; rest >>= 8) {
      length.insert(length.begin(), static_cast<char>(rest));
    }
    const bool is_long = content.size() >= 0x80;
    if (is_long || length.empty()) {
      length.insert(length.begin(), static_cast<char>(is_long ? 0x80 + length.size() : 0));
    }
    bytes += tag + length + content;
  }
  return bytes;
}

// The list that holds an element, and its position there.
using Place = std::pair<Elements*, std::size_t>;

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}
  std::size_t below(std::size_t limit) { return random_() % limit; }

  Place any_of(Elements& elements) {
    std::vector<Place> places;
    collect(elements, places);
    return places[below(places.size())];
  }

  void change(Elements& elements) {
    const auto [list, at] = any_of(elements);
    Element& element = (*list)[at];
    switch (below(6)) {
      case 0:
        list->erase(list->begin() + static_cast<std::ptrdiff_t>(at));
        break;
      case 1:
        std::swap(element, (*list)[below(list->size())]);
        break;
      case 2: {
        const auto [other, where] = any_of(elements);
        splice({list, at}, (*other)[where]);
        break;
      }
      case 3:
        retag(element);
        break;
      default:
        element.children.empty() ? refill(element.content) : retag(element);
    }
  }

  void splice(Place here, Element element) {
    const auto [list, at] = here;
    if (below(2) == 0) {
      (*list)[at] = std::move(element);
    } else {
      list->insert(list->begin() + static_cast<std::ptrdiff_t>(at), std::move(element));
    }
  }

 private:
  void collect(Elements& list, std::vector<Place>& places) {
    for (std::size_t i = 0; i < list.size(); ++i) {
      places.emplace_back(&list, i);
      collect(list[i].children, places);
    }
  }

  void retag(Element& element) {
    constexpr char kTags[] = "\x01\x02\x03\x04\x05\x06\x0C\x13\x16\x18\x1E\x30\x31\xA0\xA1\xA2";
    element.tag = kTags[below(sizeof kTags - 1)];
  }

  void refill(Bytes& content) {
    const std::size_t size = content.size();
    content.resize(size + (below(8) == 0 ? 300 : 20));
    content.resize(LLVMFuzzerMutate(u8(content), size, content.size()));
  }

  std::mt19937 random_;
};

std::size_t store(const Elements& elements, std::uint8_t* out, std::size_t most) {
  const Bytes bytes = encode(elements);
  if (bytes.size() > most) return 0;
  std::copy(bytes.begin(), bytes.end(), out);
  return bytes.size();
}

}  // namespace
}  // namespace tq::fuzz

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned seed) {
  using namespace tq::fuzz;
  Mutator mutator(seed);
  Elements elements = parse(Bytes(data, data + size));
  if (elements.empty() || mutator.below(20) == 0) return LLVMFuzzerMutate(data, size, most);
  for (std::size_t i = 1 + mutator.below(3); i > 0 && !elements.empty(); --i) {
    mutator.change(elements);
  }
  const std::size_t changed = store(elements, data, most);
  return changed != 0 ? changed : LLVMFuzzerMutate(data, size, most);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                                 const std::uint8_t* data2, std::size_t size2,
                                                 std::uint8_t* out, std::size_t most,
                                                 unsigned seed) {
  using namespace tq::fuzz;
  Mutator mutator(seed);
  Elements one = parse(Bytes(data1, data1 + size1));
  Elements other = parse(Bytes(data2, data2 + size2));
  if (one.empty() || other.empty()) return 0;
  const auto [list, at] = mutator.any_of(other);
  mutator.splice(mutator.any_of(one), (*list)[at]);
  return store(one, out, most);
}
