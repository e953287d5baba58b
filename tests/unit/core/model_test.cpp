// Byte fields and versions.

#include <gtest/gtest.h>

#include <cstring>

#include "core/model/buffer.h"
#include "core/model/layout.h"
#include "unit/support/allocations.h"
#include "unit/support/labels.h"

namespace tq::test {
namespace {

TEST(ParseVersion, KnowsFourTextsAndLeavesTheRestAlone) {
  const struct {
    const char* text;
    const char* version;  // null where it fails
    std::uint8_t sub_version;
  } cases[] = {
      {"", nullptr, 0},       {"6", nullptr, 0},     {"6.00", nullptr, 0},  {"6.1", nullptr, 0},
      {"1.1.", nullptr, 0},   {"1.1.0", nullptr, 0}, {"1.1.3", nullptr, 0}, {"1.2.1", nullptr, 0},
      {"1.1.1 ", nullptr, 0}, {"6.0.1", nullptr, 0}, {"6.0", "6.0", 'x'},   {"1.1", "1.1", 'x'},
      {"1.1.1", "1.1", '1'},  {"1.1.2", "1.1", '2'},
  };
  for (const auto& one : cases) {
    TqLabelHandle label{};
    label.subVersion = 'x';
    char version[3] = {'?', '?', '?'};
    EXPECT_EQ(LBParseVersion(one.text, version, &label), one.version == nullptr ? -1 : 0)
        << one.text;
    EXPECT_EQ(std::string_view(version, 3), one.version == nullptr ? "???" : one.version);
    EXPECT_EQ(label.subVersion, one.version == nullptr ? 'x' : one.sub_version);
  }
  TqLabelHandle label{};
  EXPECT_EQ(LBParseVersion(nullptr, label.version, &label), -1);
  EXPECT_EQ(LBParseVersion("6.0", nullptr, &label), -1);
  EXPECT_EQ(LBParseVersion("6.0", label.version, nullptr), -1);
}

TEST(Layout, OfALabelFollowsItsVersionAndSubVersion) {
  const struct {
    const char* version;
    std::uint8_t sub_version;
    bool v60, v11, aligned, multi_sign;
  } cases[] = {
      {"\0\0\0", 0, false, false, false, false}, {"6.1", '2', false, false, false, false},
      {"6.0", 0, true, false, false, false},     {"6.0", '2', true, false, false, false},
      {"1.1", 0, false, true, false, false},     {"1.1", 1, false, true, true, false},
      {"1.1", '1', false, true, true, false},    {"1.1", '2', false, true, true, true},
      {"1.1", 255, false, true, true, true},
  };
  for (const auto& one : cases) {
    TqLabelHandle label{};
    std::memcpy(label.version, one.version, 3);
    label.subVersion = one.sub_version;
    const Layout layout = layout_of(label);
    EXPECT_EQ(layout.v60, one.v60) << one.version << one.sub_version;
    EXPECT_EQ(layout.v11, one.v11) << one.version << one.sub_version;
    EXPECT_EQ(layout.aligned, one.aligned) << one.version << one.sub_version;
    EXPECT_EQ(layout.multi_sign, one.multi_sign) << one.version << one.sub_version;
    EXPECT_EQ(layout.known(), one.v60 || one.v11);
  }
}

TEST(Buffer, IsReplacedAsAWholeOrNotAtAll) {
  const NoLeaks no_leaks;
  ANYBUF buffer{};
  ASSERT_TRUE(replace(buffer, "abc", 3, 19));
  EXPECT_FALSE(replace(buffer, nullptr, 1, 4));
  if constexpr (sizeof(std::size_t) > 4) {
    EXPECT_FALSE(replace(buffer, "abc", std::size_t{1} << 32, 4));
  }
  {
    const FailNth failure(1);
    EXPECT_FALSE(replace(buffer, "abcd", 4, 4));
  }
  EXPECT_EQ(content(buffer), text("abc"));
  EXPECT_EQ(buffer.type, 19U);
  ASSERT_TRUE(replace(buffer, "de", 2, 4));
  EXPECT_EQ(content(buffer), text("de"));
  ASSERT_TRUE(replace(buffer, nullptr, 0, 4));
  EXPECT_EQ(buffer.data, nullptr);
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Buffer, ReleasesOnlyItsOwnBytesAndKeepsItsLength) {
  FreeANYBUF(nullptr);
  const NoLeaks no_leaks;
  ANYBUF own = owned(text("abc"), 4);
  ANYBUF view = field("abc");
  for (ANYBUF* buffer : {&own, &view}) {
    FreeANYBUF(buffer);
    EXPECT_EQ(buffer->data, nullptr);
    EXPECT_EQ(buffer->length, 3U);
    clear(*buffer);
    EXPECT_EQ(buffer->length, 0U);
  }
  EXPECT_TRUE(no_leaks.hold());
}

TEST(Buffer, IsCopiedWithItsType) {
  const ANYBUF element = field("abc", 16);
  ANYBUF copy{};
  EXPECT_EQ(QZDecodeCopy(nullptr, &copy), -1);
  EXPECT_EQ(QZDecodeCopy(&element, nullptr), -1);
  fail_each_allocation([&] {
    const bool copied = QZDecodeCopy(&element, &copy) == 0;
    EXPECT_EQ(content(copy), copied ? text("abc") : Bytes{});
    EXPECT_EQ(copy.type, copied ? 16U : 0U);
    clear(copy);
    copy = {};
    return copied;
  });
}

TEST(Buffer, TakesOverTheBytesOfANodeWhateverItsForm) {
  ANYBUF buffer{};
  EXPECT_EQ(CopyElementOtoO(nullptr, &buffer), -1);
  const NoLeaks no_leaks;
  const ANYBUF octets = field("abc");
  const Bytes element = hex("04 03 61 62 63");
  const ANYBUF node = field(element);

  ANYBUF* owning = nullptr;
  ASSERT_EQ(QZAsn1GetOctetString(&node, &owning), 0);
  EXPECT_EQ(CopyElementOtoO(owning, nullptr), -1);
  ASSERT_EQ(CopyElementOtoO(owning, &buffer), 0);
  EXPECT_EQ(content(buffer), text("abc"));
  EXPECT_EQ(buffer.type, 4U);
  clear(buffer);

  ANYBUF* in_block = nullptr;  // its bytes go with its shell
  ASSERT_EQ(QZAsn1SetOctetString(&octets, &in_block), 0);
  ASSERT_EQ(CopyElementOtoO(in_block, &buffer), 0);
  EXPECT_EQ(content(buffer), element);
  EXPECT_EQ(buffer.form, std::uint32_t{ASN1_FORM_OWNED});
  clear(buffer);

  ANYBUF* view = nullptr;
  const Bytes parent = sequence(element);
  const ANYBUF around = field(parent);
  ASSERT_EQ(QZAsn1GetSequence(&around, &view), 0);
  ASSERT_EQ(CopyElementOtoO(view, &buffer), 0);
  EXPECT_EQ(buffer.data, parent.data() + 2);
  clear(buffer);
  EXPECT_TRUE(no_leaks.hold());
}

template <class Length>
void expect_protocol(const Bytes& bytes) {
  const auto size = static_cast<Length>(bytes.size());
  auto length = static_cast<Length>(size - 1);
  Bytes buffer(bytes.size(), '?');
  const ANYBUF source = field(bytes);
  EXPECT_EQ(copy_out<Length>(source, buffer.data(), nullptr), -1);
  EXPECT_EQ(copy_out(source, buffer.data(), &length), -1);
  EXPECT_EQ(length, static_cast<Length>(size - 1));
  EXPECT_EQ(buffer, Bytes(bytes.size(), '?'));
  EXPECT_EQ(copy_out(source, nullptr, &length), 0);
  EXPECT_EQ(length, size);
  EXPECT_EQ(copy_out(source, buffer.data(), &length), 0);
  EXPECT_EQ(buffer, bytes);
}

TEST(CopyOut, FollowsTheOutputBufferProtocol) {
  expect_protocol<std::uint8_t>(Bytes(255, 'a'));
  expect_protocol<std::uint32_t>(Bytes(256, 'b'));
  const Bytes longer(256, 'c');
  std::uint8_t length = 7;
  EXPECT_EQ(copy_out(field(longer), nullptr, &length), -1);  // more than the length can say
  EXPECT_EQ(length, 7);
  ANYBUF released = field("abc");
  released.data = nullptr;
  EXPECT_EQ(copy_out(released, &length, &length), 0);
  EXPECT_EQ(length, 0);
}

}  // namespace
}  // namespace tq::test
