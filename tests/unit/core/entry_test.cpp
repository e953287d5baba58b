// Whole labels: the entry points against the parts that labels can be put together from.

#include <gtest/gtest.h>

#include <string>

#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

constexpr std::uint32_t kSeeds = 8;

template <class Encoder>
Node made(Encoder encoder, const TqLabelHandle* label) {
  ANYBUF* slot = nullptr;
  EXPECT_EQ(encoder(label, &slot), 0);
  return Node(slot);
}

// Runs a check on random labels of every version.
template <class Check>
void for_each_label(Check check, Lengths lengths = Lengths::kEdges) {
  for (const Version& version : kVersions) {
    for (std::uint32_t seed = 0; seed < kSeeds && !::testing::Test::HasFailure(); ++seed) {
      SCOPED_TRACE(std::string(version.text) + ", seed " + std::to_string(seed));
      RandomLabel label(version, seed, lengths);
      check(label.get());
    }
  }
}

LabelOwner decode_label(const Bytes& bytes) {
  const Bytes exact(bytes.begin(), bytes.end());
  TqLabel label = nullptr;
  if (DecodeLabel(exact.data(), static_cast<std::uint32_t>(exact.size()), &label) != 0) {
    EXPECT_EQ(label, nullptr);
  }
  return LabelOwner(label);
}

TEST(EncodeLabel, GivesWhatItsPartsGiveTogether) {
  for_each_label([](TqLabelHandle* label) {
    const Node head = made(EncodeHeadD, label);
    const Node message_head = made(GetMHead, label);
    const Node body = made(EncodeBodyD, label);
    ANYBUF* const none = nullptr;
    EXPECT_EQ(encoded(EncodeLabel_F, label, none, body.get()), std::nullopt);
    EXPECT_EQ(encoded(EncodeLabel_F, label, head.get(), none), std::nullopt);
    EXPECT_EQ(written(EncodeLabel, label), encoded(EncodeLabel_F, label, head.get(), body.get()));
    EXPECT_EQ(written(GetSignatureMessage, label),
              encoded(EncodeLabel_F, label, message_head.get(), body.get()));
    EXPECT_EQ(written(EncodeBodyPlaint, label), bytes_of(body.get()));
    EXPECT_EQ(head->next, nullptr);  // unlinked again
    EXPECT_EQ(body->next, nullptr);

    const Bytes sealed = text("sealed");
    const ANYBUF octets = field(sealed);
    ANYBUF* wrapped = nullptr;
    ASSERT_EQ(QZAsn1SetOctetString(&octets, &wrapped), 0);
    const Node sealed_body(wrapped);
    const auto* bytes = sealed.data();
    EXPECT_EQ(written(EncodeLabelEncrypted, label, bytes, 6U),
              encoded(EncodeLabel_F, label, head.get(), sealed_body.get()));
    for (const std::uint32_t padding : {0U, 1U, 300U}) {
      ASSERT_EQ(SetLabelPadSize(label, padding), 0);
      const ANYBUF* const pad = &label->pad;
      const auto padded = written(EncodeLabelPad, label);
      EXPECT_EQ(padded, encoded(EncodeLabelPad_F, label, head.get(), body.get(), pad));
      EXPECT_EQ(written(EncodeLabelPadEncrypted, label, bytes, 6U),
                encoded(EncodeLabelPad_F, label, head.get(), sealed_body.get(), pad));
      ASSERT_TRUE(padded.has_value());
      const Bytes zeros_element = tlv(4, zeros(padding));
      EXPECT_TRUE(std::equal(zeros_element.rbegin(), zeros_element.rend(), padded->rbegin()));
    }
  });
}

TEST(EncodeLabel, IsReadBackToALabelThatEncodesTheSame) {
  for_each_label([](TqLabelHandle* label) {
    const NoLeaks no_leaks;
    {
      const auto bytes = written(EncodeLabel, label);
      ASSERT_TRUE(bytes.has_value());
      const LabelOwner copy = decode_label(*bytes);
      ASSERT_TRUE(copy);
      EXPECT_EQ(written(EncodeLabel, copy.get()), bytes);
      EXPECT_EQ(written(GetSignatureMessage, copy.get()), written(GetSignatureMessage, label));
      const LabelOwner padded = decode_label(*written(EncodeLabelPad, label));
      ASSERT_TRUE(padded);
      EXPECT_EQ(written(EncodeLabel, padded.get()), bytes);
    }
    EXPECT_TRUE(no_leaks.hold());
  });
}

TEST(EncodeLabel, RefusesAVersionThatItWouldNotReadBack) {
  for_each_label([](TqLabelHandle* label) {
    const ANYBUF text_before = label->head.versionText;
    const Bytes sealed = text("x");
    const std::uint8_t* const bytes = sealed.data();
    const auto refused = [&] {
      EXPECT_EQ(written(EncodeLabel, label), std::nullopt);
      EXPECT_EQ(written(EncodeLabelPad, label), std::nullopt);
      EXPECT_EQ(written(GetSignatureMessage, label), std::nullopt);
      EXPECT_EQ(written(EncodeLabelEncrypted, label, bytes, 1U), std::nullopt);
      EXPECT_EQ(written(EncodeLabelPadEncrypted, label, bytes, 1U), std::nullopt);
    };
    for (const Version& other : kVersions) {
      if (text(other.text) == content(text_before)) continue;
      label->head.versionText = field(other.text);
      refused();
    }
    const Bytes with_nul = join(content(text_before), zeros(1));
    label->head.versionText = field(with_nul);
    refused();
    label->head.versionText = text_before;
  });
}

TEST(EncodeLabel, LeavesABufferThatIsTooShortAlone) {
  RandomLabel label(k112, 3);
  const auto bytes = written(EncodeLabel, label.get());
  ASSERT_TRUE(bytes.has_value());
  Bytes buffer(bytes->size() - 1, '?');
  auto length = static_cast<std::uint32_t>(buffer.size());
  EXPECT_EQ(EncodeLabel(label.get(), buffer.data(), &length), -1);
  EXPECT_EQ(length, buffer.size());
  EXPECT_EQ(buffer, Bytes(buffer.size(), '?'));
  EXPECT_EQ(EncodeLabel(label.get(), buffer.data(), nullptr), -1);
  EXPECT_EQ(EncodeLabel(nullptr, nullptr, &length), -1);
  EXPECT_EQ(EncodeLabelEncrypted(label.get(), nullptr, 0, nullptr, &length), -1);
}

TEST(DecodeLabel, AllocatesTheHandleTheBytesAndOneNodePerListEntry) {
  for_each_label([](TqLabelHandle* label) {
    const auto bytes = written(EncodeLabel, label);
    const std::size_t before = allocations().calls;
    const LabelOwner copy = decode_label(*bytes);
    const std::size_t made = allocations().calls - before;
    ASSERT_TRUE(copy);
    const Census census = walk(kLabel, *copy, tq::scope_of(*copy), Census{});
    EXPECT_EQ(census.owned, census.blobs);
    EXPECT_EQ(made, 2 + census.entries + census.blobs);
  });
}

TEST(DecodeLabel, FailsWithoutLeaksWhereverMemoryRunsOut) {
  for (const Version& version : kVersions) {
    SCOPED_TRACE(version.text);
    RandomLabel label(version, 5, Lengths::kShort);
    const auto bytes = written(EncodeLabel, label.get());
    ASSERT_TRUE(bytes.has_value());
    fail_each_allocation([&] { return decode_label(*bytes) != nullptr; });
    const auto sealed = written(EncodeLabelEncrypted, label.get(), bytes->data(), 200U);
    const auto body = written(EncodeBodyPlaint, label.get());
    fail_each_allocation([&] {
      std::uint8_t buffer[200];
      std::uint32_t length = sizeof buffer;
      TqLabel opened = nullptr;
      if (DecodeLabelEncrypted(sealed->data(), static_cast<std::uint32_t>(sealed->size()), buffer,
                               &length, &opened) != 0) {
        EXPECT_EQ(length, sizeof buffer);
        return false;
      }
      const LabelOwner owner(opened);
      return DecodeLabelDecrypted(opened, body->data(), static_cast<std::uint32_t>(body->size())) ==
             0;
    });
  }
}

TEST(DecodeLabel, RefusesEveryTruncationAndSurvivesEveryChangedOctet) {
  for (const Version& version : kVersions) {
    SCOPED_TRACE(version.text);
    RandomLabel label(version, 6, Lengths::kShort);
    auto bytes = *written(EncodeLabel, label.get());
    const NoLeaks no_leaks;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_FALSE(
          decode_label({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}))
          << length;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      for (unsigned change = 1; change < 0x100; change *= 2) {
        bytes[i] = static_cast<std::uint8_t>(bytes[i] ^ change);
        const LabelOwner copy = decode_label(bytes);
        const auto again = copy ? written(EncodeLabel, copy.get()) : std::nullopt;
        if (again.has_value()) {
          const LabelOwner second = decode_label(*again);
          ASSERT_TRUE(second) << i;
          ASSERT_EQ(written(EncodeLabel, second.get()), again) << i;
        }
        bytes[i] = static_cast<std::uint8_t>(bytes[i] ^ change);
      }
    }
    EXPECT_TRUE(no_leaks.hold());
  }
}

TEST(DecodeLabelDecrypted, ReleasesWhatTheBodyHeldAndLeavesNoHalfOfOne) {
  RandomLabel label(k112, 7, Lengths::kShort);
  const auto body = *written(EncodeBodyPlaint, label.get());
  const LabelOwner copy = decode_label(*written(EncodeLabel, label.get()));
  ASSERT_TRUE(copy);
  const auto size = static_cast<std::uint32_t>(body.size());
  ASSERT_EQ(DecodeLabelDecrypted(copy.get(), body.data(), size), 0);
  const NoLeaks no_leaks;  // one opened body is as large as another
  ASSERT_EQ(DecodeLabelDecrypted(copy.get(), body.data(), size), 0);
  EXPECT_TRUE(no_leaks.hold());
  EXPECT_EQ(written(EncodeBodyPlaint, copy.get()), body);
  EXPECT_EQ(DecodeLabelDecrypted(copy.get(), body.data(), size - 1), -1);
  const Bytes no_body = hex("30 02 05 00");
  EXPECT_EQ(DecodeLabelDecrypted(copy.get(), no_body.data(), 4), -1);
  EXPECT_EQ(copy->body.bodyEnvelopes, nullptr);
  EXPECT_EQ(copy->body.logs, nullptr);
}

}  // namespace
}  // namespace tq::test
