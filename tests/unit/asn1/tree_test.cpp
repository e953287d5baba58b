#include <gtest/gtest.h>
#include <tqasn1/asn1.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "unit/support/allocations.h"
#include "unit/support/bytes.h"

namespace tq::asn1 {
namespace {

using test::Bytes;
using test::bytes_of;
using test::Chain;
using test::hex;
using test::Input;
using test::tlv;

// Deep or long enough that a frame per node overflows any stack, and a loop per node any patience.
constexpr std::size_t kMany = 300000;

// A node as a program may make one itself.
ANYBUF* node_of(const Bytes& bytes) {
  auto* node = static_cast<ANYBUF*>(Asn1Malloc(sizeof(ANYBUF)));
  auto* data = static_cast<std::uint8_t*>(Asn1Malloc(bytes.size()));
  Asn1memcpy(data, bytes.data(), bytes.size());
  *node = {data, static_cast<std::uint32_t>(bytes.size()), 0, ASN1_FORM_OWNED, 0, nullptr, nullptr};
  return node;
}

ANYBUF* chain_of(const std::vector<Bytes>& elements) {
  ANYBUF* first = nullptr;
  for (auto it = elements.rbegin(); it != elements.rend(); ++it) {
    ANYBUF* node = node_of(*it);
    node->next = first;
    first = node;
  }
  return first;
}

ANYBUF* sequence(ANYBUF* children) {
  ANYBUF* made = nullptr;
  EXPECT_EQ(QZAsn1SetSequence(children, &made), 0);
  return made;
}

Bytes encoded(const ANYBUF* element) {
  ANYBUF* copy = nullptr;
  EXPECT_EQ(QZCopyAnyBuf(element, &copy), 0);
  return copy != nullptr ? bytes_of(Chain(copy).get()) : Bytes{};
}

class Tree : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_TRUE(no_leaks_.hold()); }

 private:
  test::NoLeaks no_leaks_;
};

TEST_F(Tree, EncodesShapesOfAllKindsAndStaysAsItIs) {
  ANYBUF* last = node_of(hex("02 01 03"));
  ANYBUF* members = chain_of({hex("02 01 09"), hex("01 01 FF")});
  members->next->next = last;
  ANYBUF* set = nullptr;
  ASSERT_EQ(QZAsn1SetSet(members, &set), 0);
  ANYBUF* tagged = nullptr;
  ASSERT_EQ(QZAsn1SetExplicit(30, sequence(nullptr), &tagged), 0);
  set->next = node_of(hex("0C 01 41"));
  set->next->next = tagged;
  const Chain tree(sequence(sequence(set)));
  const Bytes expected =
      hex("30 14 30 12  31 09 02 01 09 01 01 FF 02 01 03  0C 01 41  BE 02 30 00");
  EXPECT_EQ(tree->data, nullptr);
  EXPECT_EQ(tree->length, expected.size());
  EXPECT_EQ(tree->type, 16U);
  EXPECT_EQ(set->type, 17U);
  EXPECT_EQ(tagged->type, 0xBEU);
  EXPECT_EQ(encoded(tree.get()), expected);
  EXPECT_EQ(encoded(tree.get()), expected);
  EXPECT_EQ(encoded(set), hex("31 09 02 01 09 01 01 FF 02 01 03"));
  EXPECT_EQ(encoded(last), hex("02 01 03"));
  EXPECT_EQ(encoded(tagged), hex("BE 02 30 00"));
}

TEST_F(Tree, CountsHeadersWhereContentsCrossALengthForm) {
  for (const std::uint32_t edge : {0x80U, 0x100U, 0x10000U, 0x1000000U}) {
    for (std::uint32_t length = edge - 9; length < edge + 2; length += edge < 0x1000000 ? 1 : 5) {
      const Bytes leaf = tlv(0x04, Bytes(length, 7));
      const Chain tree(sequence(sequence(node_of(leaf))));
      EXPECT_EQ(encoded(tree.get()), tlv(0x30, tlv(0x30, leaf))) << length;
    }
  }
}

TEST_F(Tree, MayBeDeep) {
  const std::size_t calls = test::allocations().calls;
  ANYBUF* tree = sequence(nullptr);
  std::vector<Bytes> headers{hex("30 00")};
  for (std::size_t depth = 0; depth < kMany; ++depth) {
    headers.push_back(test::header(0x30, tree->length));
    tree = sequence(tree);
  }
  Bytes expected;
  for (auto it = headers.rbegin(); it != headers.rend(); ++it) {
    expected.insert(expected.end(), it->begin(), it->end());
  }
  EXPECT_TRUE(encoded(tree) == expected);
  EXPECT_EQ(test::allocations().calls - calls, kMany + 2);
  DIFreeAnybuf(tree);
}

TEST_F(Tree, MayBeWide) {
  ANYBUF* chain = nullptr;
  Bytes content;
  for (std::size_t i = kMany; i-- > 0;) {
    ANYBUF* child = nullptr;
    ASSERT_EQ(QZAsn1SetInteger(static_cast<std::uint32_t>(i % 100), &child), 0);
    if (i % 3 == 0) child = sequence(child);
    child->next = chain;
    chain = child;
  }
  for (std::size_t i = 0; i < kMany; ++i) {
    if (i % 3 == 0) content.insert(content.end(), {0x30, 3});
    content.insert(content.end(), {2, 1, static_cast<std::uint8_t>(i % 100)});
  }
  const Chain tree(sequence(chain));
  ANYBUF* copy = nullptr;
  ASSERT_EQ(QZCopyAnyBuf(tree.get(), &copy), 0);
  const Chain whole(copy);
  EXPECT_TRUE(bytes_of(copy) == tlv(0x30, content));
  ANYBUF* children = nullptr;
  ASSERT_EQ(QZAsn1GetSequence(copy, &children), 0);
  const Chain owner(children);
  std::size_t count = 0;
  for (const ANYBUF* child = children; child != nullptr; child = child->next) ++count;
  EXPECT_EQ(count, kMany);
}

TEST_F(Tree, TakesEmptyNodesOverWithoutWritingThem) {
  ANYBUF* chain = chain_of({{}, hex("05 00"), {}});
  const Chain tree(sequence(chain));
  EXPECT_EQ(encoded(tree.get()), hex("30 02 05 00"));
  const Chain nothing(sequence(node_of({})));
  EXPECT_EQ(encoded(nothing.get()), hex("30 00"));
}

TEST_F(Tree, LeavesTheChainAloneWhenItFails) {
  const Bytes good = hex("02 01 05");
  for (const char* bad : {"02 01", "02 01 05 00", "05 00 05 00", "00 00", "30 80 00 00", "24 00",
                          "1F 01 00", "04 81 01 00"}) {
    const Chain chain(chain_of({good, hex(bad), good}));
    ANYBUF* made = nullptr;
    EXPECT_EQ(QZAsn1SetSequence(chain.get(), &made), -1) << bad;
    EXPECT_EQ(QZAsn1SetSet(chain.get(), &made), -1) << bad;
    EXPECT_EQ(QZAsn1SetExplicit(0, chain->next->next, nullptr), -1);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(bytes_of(chain.get()), good);
    EXPECT_EQ(chain->next->next->flags, 0U);
    EXPECT_EQ(chain->next->next->next, nullptr);
  }
}

TEST_F(Tree, RefusesNodesThatHaveAParent) {
  ANYBUF* child = node_of(hex("05 00"));
  const Chain tree(sequence(child));
  ANYBUF* made = nullptr;
  EXPECT_EQ(QZAsn1SetSequence(child, &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(1, child, &made), -1);
  EXPECT_EQ(encoded(tree.get()), hex("30 02 05 00"));
}

// An element of the size without memory for it: views of one buffer add up.
ANYBUF* views_of(Input& input, int count, ANYBUF* next) {
  for (; count > 0; --count) {
    auto* node = static_cast<ANYBUF*>(Asn1Malloc(sizeof(ANYBUF)));
    *node = *input.node();
    node->next = std::exchange(next, node);
  }
  return next;
}

TEST_F(Tree, RefusesSumsAboveThirtyTwoBits) {
  constexpr std::uint32_t kSize = 1U << 22;
  Input block(tlv(0x04, Bytes(kSize - 5)));
  Input last(tlv(0x04, Bytes(kSize - 7 - 5)));
  Input too_long(tlv(0x04, Bytes(kSize - 6 - 5)));
  ANYBUF* made = nullptr;
  const Chain refused(views_of(block, 1023, views_of(too_long, 1, nullptr)));
  EXPECT_EQ(QZAsn1SetSequence(refused.get(), &made), -1);
  const Chain twice(views_of(block, 2048, nullptr));
  EXPECT_EQ(QZAsn1SetSet(twice.get(), &made), -1);
  const Chain largest(sequence(views_of(block, 1023, views_of(last, 1, nullptr))));
  EXPECT_EQ(largest->length, UINT32_MAX);
  EXPECT_EQ(QZAsn1SetSequence(largest.get(), &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(0, largest.get(), &made), -1);
  EXPECT_EQ(made, nullptr);
}

TEST_F(Tree, FreesBytesByTheirForm) {
  Input input(hex("30 03 02 01 05"));
  ANYBUF* view = nullptr;
  ASSERT_EQ(QZAsn1GetSequence(input.node(), &view), 0);
  ANYBUF* content = nullptr;
  ASSERT_EQ(QZAsn1GetIntegerArray(view, &content), 0);
  ANYBUF* in_line = nullptr;
  ASSERT_EQ(QZAsn1SetOctetString(content, &in_line), 0);
  view->next = in_line;
  in_line->next = content;
  content->next = sequence(sequence(sequence(node_of(hex("05 00")))));
  ANYBUF* chain = view;
  QZFreeQueue(&chain);
  EXPECT_EQ(chain, nullptr);
  QZFreeQueue(&chain);
  QZFreeQueue(nullptr);
  DIFreeAnybuf(nullptr);
  EXPECT_EQ(bytes_of(input.node()), hex("30 03 02 01 05"));
}

TEST_F(Tree, IsNotReadBeforeItIsEncoded) {
  const Chain tree(sequence(node_of(hex("05 00"))));
  ANYBUF* children = nullptr;
  std::uint32_t number = 77;
  EXPECT_EQ(QZAsn1GetSequence(tree.get(), &children), -1);
  EXPECT_EQ(QZAsn1GetSet(tree.get(), &children), -1);
  EXPECT_EQ(QZAsn1GetExplicit(tree.get(), &number, &children), -1);
  EXPECT_EQ(QZAsn1SetOctetString(tree.get(), &children), -1);
  EXPECT_EQ(children, nullptr);
  EXPECT_EQ(number, 77U);
}

using Copy = Tree;

TEST_F(Copy, MakesOneNodeOfExactlyOneElement) {
  Input input(hex("A1 03 02 01 05"));
  input.node()->next = input.node();
  ANYBUF* copy = nullptr;
  ASSERT_EQ(QZCopyAnyBuf(input.node(), &copy), 0);
  const Chain owner(copy);
  EXPECT_EQ(bytes_of(copy), bytes_of(input.node()));
  EXPECT_NE(copy->data, input.node()->data);
  EXPECT_EQ(copy->form, ASN1_FORM_INLINE);
  EXPECT_EQ(copy->type, 0xA1U);
  EXPECT_EQ(copy->flags, 0U);
  EXPECT_EQ(copy->next, nullptr);
  EXPECT_EQ(copy->last, nullptr);
}

TEST_F(Copy, OfAnEmptyNodeHasNoBytesAndTheSameType) {
  std::uint8_t octet = 5;
  for (std::uint8_t* data : {static_cast<std::uint8_t*>(nullptr), &octet}) {
    ANYBUF empty{};
    empty.data = data;
    empty.type = 0xA7;
    empty.last = &empty;  // left over from another use; without a length it means nothing
    ANYBUF* copy = nullptr;
    ASSERT_EQ(QZCopyAnyBuf(&empty, &copy), 0);
    EXPECT_EQ(copy->data, nullptr);
    EXPECT_EQ(copy->length, 0U);
    EXPECT_EQ(copy->type, 0xA7U);
    const Chain tree(sequence(copy));
    EXPECT_EQ(encoded(tree.get()), hex("30 00"));
  }
}

TEST_F(Copy, RefusesEverythingElse) {
  ANYBUF* copy = nullptr;
  for (const char* bad : {"05", "05 00 00", "05 01", "10 00", "30 80", "30 02 05 00 05 00"}) {
    EXPECT_EQ(QZCopyAnyBuf(Input(hex(bad)).node(), &copy), -1) << bad;
  }
  ANYBUF no_bytes{};
  no_bytes.length = 2;
  EXPECT_EQ(QZCopyAnyBuf(&no_bytes, &copy), -1);
  EXPECT_EQ(QZCopyAnyBuf(nullptr, &copy), -1);
  EXPECT_EQ(QZCopyAnyBuf(Input(hex("05 00")).node(), nullptr), -1);
  EXPECT_EQ(copy, nullptr);
}

using Split = Tree;

TEST_F(Split, HandsOutViewsInOrderAndIgnoresWhatLiesBehind) {
  Input input(hex("31 0B  02 01 05  A0 02 30 80  80 00  30 00  FF FF"));
  ANYBUF* children = nullptr;
  ASSERT_EQ(QZAsn1GetSet(input.node(), &children), 0);
  const Chain owner(children);
  const struct {
    std::ptrdiff_t at;
    std::uint32_t length;
    std::uint32_t type;
  } expected[] = {{2, 3, 2}, {5, 4, 0xA0}, {9, 2, 0x80}, {11, 2, 16}};
  for (const auto& one : expected) {
    ASSERT_NE(children, nullptr);
    EXPECT_EQ(children->data, input.node()->data + one.at);
    EXPECT_EQ(children->length, one.length);
    EXPECT_EQ(children->type, one.type);
    EXPECT_EQ(children->form, ASN1_FORM_VIEW);
    EXPECT_EQ(children->flags, 0U);
    EXPECT_EQ(children->last, nullptr);
    children = children->next;
  }
  EXPECT_EQ(children, nullptr);
}

TEST_F(Split, GivesNullForNoChildren) {
  Input input(hex("30 00"));
  ANYBUF* children = input.node();
  EXPECT_EQ(QZAsn1GetSequence(input.node(), &children), 0);
  EXPECT_EQ(children, nullptr);
}

TEST_F(Split, RefusesChildrenThatDoNotFillTheirParent) {
  const std::size_t calls = test::allocations().calls;
  ANYBUF* children = nullptr;
  for (const char* bad :
       {"", "30", "30 01 05", "30 03 05 00 05 00", "30 03 05 00 00", "30 03 05 00 05",
        "30 02 00 00", "30 04 05 00 04 01", "30 04 05 00 1F 00", "30 80 00 00", "30 81 02 05 00",
        "31 02 05 00", "10 02 05 00", "A0 02 05 00", "70 02 05 00"}) {
    EXPECT_EQ(QZAsn1GetSequence(Input(hex(bad)).node(), &children), -1) << bad;
  }
  EXPECT_EQ(QZAsn1GetSet(Input(hex("30 02 05 00")).node(), &children), -1);
  EXPECT_EQ(QZAsn1GetSequence(nullptr, &children), -1);
  EXPECT_EQ(QZAsn1GetSequence(Input(hex("30 00")).node(), nullptr), -1);
  EXPECT_EQ(children, nullptr);
  EXPECT_EQ(test::allocations().calls, calls);
}

using Explicit = Tree;

TEST_F(Explicit, HoldsExactlyOneElement) {
  for (const std::uint32_t number : {0U, 1U, 30U}) {
    ANYBUF* made = nullptr;
    ASSERT_EQ(QZAsn1SetExplicit(number, node_of(hex("02 01 05")), &made), 0);
    const Chain tree(made);
    Input whole(encoded(made));
    EXPECT_EQ(bytes_of(whole.node()),
              tlv(static_cast<std::uint8_t>(0xA0 + number), hex("02 01 05")));
    std::uint32_t read = 77;
    ANYBUF* inner = nullptr;
    ASSERT_EQ(QZAsn1GetExplicit(whole.node(), &read, &inner), 0);
    const Chain owner(inner);
    EXPECT_EQ(read, number);
    EXPECT_EQ(inner->data, whole.node()->data + 2);
    EXPECT_EQ(inner->length, 3U);
    EXPECT_EQ(inner->type, 2U);
  }
}

TEST_F(Explicit, RefusesToHoldAnythingElse) {
  ANYBUF* made = nullptr;
  const Chain two(chain_of({hex("05 00"), hex("05 00")}));
  const Chain none(node_of({}));
  const Chain broken(node_of(hex("05 01")));
  const Chain good(node_of(hex("05 00")));
  EXPECT_EQ(QZAsn1SetExplicit(0, two.get(), &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(0, none.get(), &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(0, broken.get(), &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(31, good.get(), &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(0x100, good.get(), &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(0, nullptr, &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(0, good.get(), nullptr), -1);
  EXPECT_EQ(made, nullptr);
  std::uint32_t number = 77;
  for (const char* bad :
       {"", "A0", "A0 00", "A0 04 05 00 05 00", "A0 03 05 00 00", "A0 02 05 01", "80 02 05 00",
        "30 02 05 00", "E0 02 05 00", "60 02 05 00", "BF 02 05 00", "A0 80 05 00 00 00"}) {
    EXPECT_EQ(QZAsn1GetExplicit(Input(hex(bad)).node(), &number, &made), -1) << bad;
  }
  Input input(hex("A0 02 05 00"));
  EXPECT_EQ(QZAsn1GetExplicit(nullptr, &number, &made), -1);
  EXPECT_EQ(QZAsn1GetExplicit(input.node(), nullptr, &made), -1);
  EXPECT_EQ(QZAsn1GetExplicit(input.node(), &number, nullptr), -1);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(number, 77U);
}

// Appends what the primitive makes to the chain, or reports that it failed.
template <class Make>
bool append(Chain& chain, Make make) {
  ANYBUF* made = nullptr;
  if (make(&made) != 0) return false;
  made->next = chain.release();
  chain.reset(made);
  return true;
}

// Replaces the chain by what the primitive builds around it.
template <class Wrap>
bool wrap(Chain& chain, Wrap build) {
  ANYBUF* made = nullptr;
  if (build(chain.get(), &made) != 0) return false;
  static_cast<void>(chain.release());
  chain.reset(made);
  return true;
}

TEST_F(Tree, SurvivesEveryFailedAllocation) {
  const auto attempt = [] {
    Chain chain;
    ANYBUF* children = nullptr;
    ANYBUF* inner = nullptr;
    std::uint32_t number = 0;
    const bool done =
        append(chain, [](ANYBUF** made) { return QZAsn1SetInteger(5, made); }) &&
        append(chain, [](ANYBUF** made) { return QZAsn1SetNull(made); }) &&
        append(chain, [](ANYBUF** made) { return QZAsn1SetSet(nullptr, made); }) &&
        wrap(chain, QZAsn1SetSet) &&
        append(chain, [](ANYBUF** made) { return QZAsn1SetBoolean(1, made); }) &&
        wrap(chain, QZAsn1SetSequence) &&
        wrap(chain, [](ANYBUF* one, ANYBUF** made) { return QZAsn1SetExplicit(3, one, made); });
    Chain copy;
    const bool read =
        done && append(copy, [&](ANYBUF** made) { return QZCopyAnyBuf(chain.get(), made); }) &&
        bytes_of(copy.get()) == hex("A3 0E 30 0C 01 01 FF 31 07 31 00 05 00 02 01 05") &&
        QZAsn1GetExplicit(copy.get(), &number, &inner) == 0 &&
        QZAsn1GetSequence(inner, &children) == 0;
    DIFreeAnybuf(children);
    DIFreeAnybuf(inner);
    return read;
  };
  EXPECT_EQ(test::fail_each_allocation(attempt), 11U);
}

}  // namespace
}  // namespace tq::asn1
