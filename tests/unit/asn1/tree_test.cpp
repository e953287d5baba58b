#include <gtest/gtest.h>

#include "core/model/buffer.h"
#include "unit/support/allocations.h"
#include "unit/support/bytes.h"

namespace tq::test {
namespace {

// A chain of nodes as a program may make them itself.
ANYBUF* chain_of(const std::vector<Bytes>& elements) {
  ANYBUF* first = nullptr;
  for (auto it = elements.rbegin(); it != elements.rend(); ++it) {
    auto* node = static_cast<ANYBUF*>(Asn1Malloc(sizeof(ANYBUF)));
    auto* data = static_cast<std::uint8_t*>(Asn1Malloc(it->size()));
    Asn1memcpy(data, it->data(), it->size());
    const auto length = static_cast<std::uint32_t>(it->size());
    *node = {data, length, 0, ASN1_FORM_OWNED, 0, std::exchange(first, node), nullptr};
  }
  return first;
}

ANYBUF* sequence_of(ANYBUF* children) {
  EXPECT_EQ(QZAsn1SetSequence(children, &children), 0);
  return children;
}

Bytes encoded(const ANYBUF* element) {
  ANYBUF* copy = nullptr;
  EXPECT_EQ(QZCopyAnyBuf(element, &copy), 0);
  return copy != nullptr ? bytes_of(Node(copy).get()) : Bytes{};
}

struct Tree : ::testing::Test {
  ~Tree() override { EXPECT_TRUE(no_leaks.hold()); }
  NoLeaks no_leaks;
};

TEST_F(Tree, EncodesShapesOfAllKindsAndStaysAsItIs) {
  ANYBUF* set = chain_of({{}, hex("02 01 09"), hex("01 01 FF"), {}});  // empty ones add nothing
  ASSERT_EQ(QZAsn1SetSet(set, &set), 0);
  ANYBUF* tagged = nullptr;
  ASSERT_EQ(QZAsn1SetExplicit(30, sequence_of(nullptr), &tagged), 0);
  set->next = chain_of({hex("0C 01 41")});
  set->next->next = tagged;
  tagged->next = sequence_of(chain_of({{}}));
  const Node tree(sequence_of(sequence_of(set)));
  const Bytes expected = hex("30 13 30 11  31 06 02 01 09 01 01 FF  0C 01 41  BE 02 30 00  30 00");
  EXPECT_EQ(tree->length, expected.size());
  EXPECT_EQ(tree->type, 16U);
  EXPECT_EQ(tagged->type, 0xBEU);
  EXPECT_EQ(encoded(tree.get()), expected);
  EXPECT_EQ(encoded(set), hex("31 06 02 01 09 01 01 FF"));
  // A child has its parent already, and a tree is not read before it is encoded.
  ANYBUF* made = nullptr;
  std::uint32_t number = 77;
  EXPECT_EQ(QZAsn1SetSequence(set, &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(1, tagged, &made), -1);
  EXPECT_EQ(QZAsn1GetSequence(tree.get(), &made), -1);
  EXPECT_EQ(QZAsn1GetExplicit(tagged, &number, &made), -1);
  EXPECT_EQ(QZAsn1SetOctetString(tree.get(), &made), -1);
  EXPECT_EQ(encoded(tree.get()), expected);
}

TEST_F(Tree, CountsHeadersWhereContentsCrossALengthForm) {
  for (const std::uint32_t edge : {0x80U, 0x100U, 0x10000U, 0x1000000U}) {
    for (std::uint32_t length = edge - 9; length < edge + 2; length += edge < 0x1000000 ? 1 : 5) {
      const Bytes leaf = tlv(0x04, Bytes(length, 7));
      const Node tree(sequence_of(sequence_of(chain_of({leaf}))));
      EXPECT_TRUE(encoded(tree.get()) == sequence(sequence(leaf))) << length;
    }
  }
}

// Deep or wide enough that a frame per node overflows any stack, and a loop per node any patience.
TEST_F(Tree, MayBeDeepAndWide) {
  const std::size_t many = quick() ? 30000 : 300000;
  Node deep(sequence_of(nullptr));
  Bytes reversed = hex("00 30");
  for (std::size_t depth = 0; depth < many; ++depth) {
    const Bytes around = header(0x30, deep->length);
    reversed.insert(reversed.end(), around.rbegin(), around.rend());
    deep.reset(sequence_of(deep.release()));
  }
  EXPECT_TRUE(encoded(deep.get()) == Bytes(reversed.rbegin(), reversed.rend()));
  const Node wide(sequence_of(chain_of(std::vector<Bytes>(many, hex("02 01 05")))));
  Input whole(encoded(wide.get()));
  EXPECT_EQ(whole.node()->length, 5 + 3 * many);
  ANYBUF* child = nullptr;
  ASSERT_EQ(QZAsn1GetSequence(whole.node(), &child), 0);
  const Node owner(child);
  for (std::size_t i = 1; i < many; ++i, child = child->next) ASSERT_EQ(child->length, 3U);
  EXPECT_EQ(child->next, nullptr);
}

TEST_F(Tree, LeavesTheChainAloneWhenItFails) {
  const Bytes good = hex("02 01 05");
  for (const Bytes& bad :
       hexes("02 01|02 01 05 00|05 00 05 00|00 00|30 80 00 00|24 00|1F 01 00|04 81 01 00")) {
    const Node chain(chain_of({good, bad, good}));
    ANYBUF* made = nullptr;
    EXPECT_EQ(QZAsn1SetSequence(chain.get(), &made), -1) << ::testing::PrintToString(bad);
    EXPECT_EQ(QZCopyAnyBuf(Input(bad).node(), &made), -1) << ::testing::PrintToString(bad);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(bytes_of(chain.get()), good);
    EXPECT_EQ(chain->next->next->flags, 0U);
    EXPECT_EQ(chain->next->next->next, nullptr);
  }
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
  const Node refused(views_of(block, 1023, views_of(too_long, 1, nullptr)));
  EXPECT_EQ(QZAsn1SetSequence(refused.get(), &made), -1);
  const Node largest(sequence_of(views_of(block, 1023, views_of(last, 1, nullptr))));
  EXPECT_EQ(largest->length, UINT32_MAX);
  EXPECT_EQ(QZAsn1SetExplicit(0, largest.get(), &made), -1);
}

TEST_F(Tree, FreesBytesByTheirForm) {
  Input input(hex("30 03 02 01 05"));
  ANYBUF* chain = nullptr;
  ASSERT_EQ(QZAsn1GetSequence(input.node(), &chain), 0);
  ASSERT_EQ(QZAsn1GetIntegerArray(chain, &chain->next), 0);
  ASSERT_EQ(QZAsn1SetOctetString(chain->next, &chain->next->next), 0);
  chain->next->next->next = sequence_of(sequence_of(chain_of({hex("05 00")})));
  QZFreeQueue(&chain);
  EXPECT_EQ(chain, nullptr);
  QZFreeQueue(nullptr);
  EXPECT_EQ(bytes_of(input.node()), hex("30 03 02 01 05"));
}

TEST_F(Tree, IsCopiedToOneNodeOfItsOwn) {
  Input input(hex("A1 03 02 01 05"));
  input.node()->next = input.node();
  ANYBUF* copy = nullptr;
  ASSERT_EQ(QZCopyAnyBuf(input.node(), &copy), 0);
  const Node owner(copy);
  EXPECT_EQ(copy->form, ASN1_FORM_INLINE);
  EXPECT_EQ(copy->type, 0xA1U);
  EXPECT_EQ(copy->next, nullptr);
  EXPECT_EQ(bytes_of(copy), bytes_of(input.node()));
  ANYBUF empty{};
  empty.last = &empty;  // left over from another use; without a length it means nothing
  EXPECT_EQ(encoded(&empty), Bytes{});
}

TEST_F(Tree, IsSplitIntoViewsInOrder) {
  Input input(hex("31 0B  02 01 05  A0 02 30 80  80 00  30 00  FF FF"));
  ANYBUF* child = nullptr;
  ASSERT_EQ(QZAsn1GetSet(input.node(), &child), 0);
  const Node owner(child);
  const std::uint8_t* at = input.node()->data + 2;
  for (const auto& [length, type] : {std::pair(3U, 2U), {4U, 0xA0U}, {2U, 0x80U}, {2U, 16U}}) {
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->data, std::exchange(at, at + length));
    EXPECT_EQ(child->length, length);
    EXPECT_EQ(child->type, type);
    EXPECT_EQ(child->form, ASN1_FORM_VIEW);
    child = child->next;
  }
  EXPECT_EQ(child, nullptr);
  child = input.node();
  EXPECT_EQ(QZAsn1GetSequence(Input(hex("30 00")).node(), &child), 0);
  EXPECT_EQ(child, nullptr);
  for (const Bytes& bad :
       hexes("|30|30 01 05|30 03 05 00 05 00|30 03 05 00 00|30 03 05 00 05|30 02 00 00"
             "|30 04 05 00 04 01|30 04 05 00 1F 00|30 80 00 00|30 81 02 05 00|31 02 05 00"
             "|10 02 05 00|A0 02 05 00|70 02 05 00")) {
    EXPECT_EQ(QZAsn1GetSequence(Input(bad).node(), &child), -1) << ::testing::PrintToString(bad);
  }
}

TEST_F(Tree, OfAnExplicitTagHoldsExactlyOneElement) {
  std::uint32_t read = 77;
  ANYBUF* made = nullptr;
  for (const std::uint8_t number : hex("00 01 1E")) {
    ASSERT_EQ(QZAsn1SetExplicit(number, chain_of({hex("02 01 05")}), &made), 0);
    const Node tree(made);
    Input whole(encoded(made));
    EXPECT_EQ(bytes_of(whole.node()), tlv(0xA0 | number, hex("02 01 05")));
    ASSERT_EQ(QZAsn1GetExplicit(whole.node(), &read, &made), 0);
    const Node inner(made);
    EXPECT_EQ(read, number);
    EXPECT_EQ(bytes_of(made), hex("02 01 05"));
    EXPECT_EQ(made->type, 2U);
  }
  for (const Bytes& bad :
       hexes("|A0|A0 00|A0 04 05 00 05 00|A0 03 05 00 00|A0 02 05 01|80 02 05 00|30 02 05 00"
             "|E0 02 05 00|60 02 05 00|BF 02 05 00|A0 80 05 00 00 00")) {
    EXPECT_EQ(QZAsn1GetExplicit(Input(bad).node(), &read, &made), -1);
  }
  const Node good(chain_of({hex("05 00")}));
  for (const auto& elements : {hexes("05 00|05 00"), hexes(""), hexes("05 01")}) {
    EXPECT_EQ(QZAsn1SetExplicit(0, Node(chain_of(elements)).get(), &made), -1);
  }
  EXPECT_EQ(QZAsn1SetExplicit(31, good.get(), &made), -1);
  EXPECT_EQ(QZAsn1SetExplicit(0, nullptr, &made), -1);
}

}  // namespace
}  // namespace tq::test
