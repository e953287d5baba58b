// The C++ interface: what it adds to the C one, which has its own tests.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <tqlabel/label.hpp>
#include <tuple>

namespace tqlabel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Bytes kCertificate = {0x30, 3, 2, 1, 1};
constexpr Seconds kTime = 1700000000;

Recipient recipient(std::uint8_t serial, std::string_view authority = "Example Root") {
  return {{serial}, {attribute("CN", authority).value()}};
}
Envelope envelope(std::uint8_t serial, std::size_t key_length = 16) {
  return {recipient(serial), "RSA", Bytes(key_length, serial)};
}
Privileges privileges(std::uint8_t of) {
  return {kCertificate, true, of, 22, false, true, false, 33, 44, {}};
}
Label label_of(std::string_view version = "1.1") {
  Label label = Label::make(version).value();
  EXPECT_TRUE(label.set_author(recipient(1)) && label.set_body_certificate(kCertificate));
  return label;
}
Label label_for(std::uint8_t people) {
  Label label = label_of();
  for (std::uint8_t i = 1; i <= people; ++i) {
    EXPECT_TRUE(label.add_to_head(envelope(i)) && label.add_to_body(envelope(i), privileges(i)));
  }
  return label;
}
Log log_entry(std::uint32_t number) {
  return {number, "who", recipient(1).issuer, {1}, {2, 3}, kTime, 7, "what"};
}
std::vector<std::uint32_t> numbers(const Logs& logs) {
  std::vector<std::uint32_t> all;
  for (const Result<Log>& log : logs) all.push_back(log->number);
  return all;
}

template <class T, class Value>
void expect_value(const Result<T>& result, const Value& value) {
  ASSERT_TRUE(result.has_value()) << message(result.error());
  EXPECT_EQ(*result, value);
}
template <class T>
void expect_error(const Result<T>& result, Error error) {
  ASSERT_FALSE(result.has_value());
  EXPECT_EQ(result.error(), error) << message(result.error());
}

TEST(Result, ChainsWhileThereIsAValue) {
  const auto half = [](int n) { return n % 2 == 0 ? Result<int>(n / 2) : Error::kTooLong; };
  expect_value(half(8).and_then(half), 2);
  expect_error(half(3).and_then(half), Error::kTooLong);
  expect_value(Result<void>().and_then([] { return Result<int>(5); }), 5);
  EXPECT_EQ(half(3).value_or(9), 9);
}

TEST(Result, EndsTheProgramWhenAskedForWhatIsNotThere) {
  EXPECT_DEATH(static_cast<void>(Result<int>(Error::kRefused).value()), "");
  EXPECT_DEATH(static_cast<void>(Result<int>(1).error()), "");
}

TEST(Label, TellsRefusedFromNothing) {
  expect_error(Label::decode(kCertificate), Error::kRefused);
  expect_error(Label::make(""), Error::kRefused);
  expect_error(Label::make("1.1").value().encode(), Error::kRefused);
  expect_error(identifier_of("no such algorithm"), Error::kRefused);
  expect_error(label_of().body_envelope(recipient(1)), Error::kNothing);
  expect_error(label_of().set_encoded_signature(kCertificate), Error::kNothing);
}

TEST(Label, TooLongArgumentsAreNotCut) {
  Label label = label_of();
  const std::string text(256, 'x');
  Recipient of_many = recipient(1);
  of_many.issuer.resize(11, of_many.issuer[0]);
  Log log = log_entry(1);
  log.array2.resize(256);
  const Bytes before = label.encode().value();
  for (const Result<void>& result :
       {label.set_text(text), label.set_file_name(text), label.set_cipher(text),
        label.set_author({Bytes(256), {}}), label.set_author(of_many), label.add_log(log),
        label.set_author(recipient(1, text.substr(0, 129))),
        label.add_to_head({recipient(1), text, {}})}) {
    expect_error(result, Error::kTooLong);
  }
  EXPECT_EQ(label.encode().value(), before);
}

TEST(Label, MovesItsHandleAndRefusesEverythingWithoutOne) {
  Label from = label_for(1);
  const TqLabel handle = from.handle();
  Label to = std::move(from);
  EXPECT_EQ(to.handle(), handle);
  expect_error(from.encode(), Error::kRefused);
  expect_error(from.set_text("x"), Error::kRefused);
  expect_error(from.certificate(recipient(1)), Error::kRefused);
  expect_error(from.recipients(), Error::kRefused);
  EXPECT_TRUE(from.logs().empty() && from.extensions().empty() && !from.is_valid());

  from = Label::make("6.0").value();
  expect_value(from.version(), "6.0");
  from = std::move(to);  // releases the other handle
  EXPECT_EQ(from.handle(), handle);
  const Label again(from.release());
  EXPECT_EQ(again.handle(), handle);
}

// Two fields that are swapped show, since each has a value of its own.
TEST(Label, KeepsEachFieldThroughEncoding) {
  Label label = label_of("1.1.1");
  ASSERT_TRUE(label.set_text("text") && label.set_custom(as_octets("custom")) &&
              label.set_modified(1) && label.set_cipher("AES.256.CBC", 8) &&
              label.set_sign_algorithm("sha256WithRSAEncryption") &&
              label.set_head_certificate(Bytes{0x30, 1, 0}) && label.set_head_signature(Bytes{4}) &&
              label.set_body_signature(Bytes(32, 5)) && label.set_file_type(6) &&
              label.set_secrecy(7) && label.set_file_size(8) && label.set_file_name("name") &&
              label.set_file_title("title") && label.set_file_modified(9) && label.set_expiry(10) &&
              label.set_destruction(11) && label.set_file_number("number") &&
              label.set_file_align(12) && label.set_uneffective(13) && label.set_label_align(14));
  const Label read = Label::decode(label.encode().value()).value();
  EXPECT_EQ(std::tuple(*read.version(), *read.text(), *read.custom(), *read.author(),
                       *read.serial(), *read.modified(), *read.cipher(), *read.sign_algorithm()),
            std::tuple("1.1.1", "text", Bytes{'c', 'u', 's', 't', 'o', 'm'}, recipient(1), Bytes{1},
                       Seconds{1}, Cipher{"AES", 8}, "sha256WithRSAEncryption"));
  EXPECT_THAT((std::array{*read.head_certificate(), *read.head_signature(),
                          *read.body_certificate(), *read.body_signature()}),
              ElementsAre(Bytes{0x30, 1, 0}, Bytes{4}, kCertificate, Bytes(32, 5)));
  expect_value(read.content(), Content{6, 7, 8, "name", "title", 9, 10, 0, 11});
  EXPECT_THAT((std::array{*read.file_name(), *read.file_title(), *read.file_number()}),
              ElementsAre("name", "title", "number"));
  EXPECT_THAT((std::array{*read.file_type(), *read.secrecy(), *read.file_size(), *read.file_align(),
                          *read.uneffective(), *read.label_align()}),
              ElementsAre(6, 7, 8, 12, 13, 14));
  EXPECT_THAT((std::array{*read.file_modified(), *read.expiry(), *read.destruction()}),
              ElementsAre(9, 10, 11));
  EXPECT_EQ(label.signature_message().value().size() + 4, label.encode().value().size());
}

TEST(Label, AgreesWithCallsOfTheCInterface) {
  Label cpp = label_of();
  const Content content = {1, 2, 3, "name", "title", 4, 5, 6, 7};
  ASSERT_TRUE(cpp.set_content(content) && cpp.set_file_creator({"number", "text", 8}));
  expect_error(cpp.set_content(content), Error::kRefused);
  const Label c = label_of();
  std::uint8_t name[] = "name", title[] = "title", number[] = "number", text[] = "text";
  const ContentAttrInfo info = {1, 2, 3, name, 4, title, 5, 4, 5, 6, 7};
  const FileCreatorInfo creator = {number, 6, text, 4, 8};
  ASSERT_EQ(SetContentAtrr(c.handle(), &info) | SetBodyFileCreator(c.handle(), &creator), 0);
  EXPECT_EQ(cpp.encode().value(), c.encode().value());
  expect_value(c.content(), content);
  expect_value(c.file_creator(), FileCreator{"number", "text", 8});
}

TEST(Label, ReadsTextsBesideMoreEnvelopesThanSizesAreToldFor) {
  Label label = label_of();
  for (std::uint8_t i = 0; i < 101; ++i) ASSERT_TRUE(label.add_to_head(envelope(i)));
  ASSERT_TRUE(label.set_file_number("number"));
  expect_error(label.sizes(), Error::kRefused);
  expect_value(label.file_number(), "number");
}

TEST(Label, ComesBackFromAnEncryptedBody) {
  Label label = label_for(1);
  ASSERT_TRUE(label.set_cipher("AES.256.CBC") && label.set_text("sealed") &&
              label.set_custom(Bytes{9}) && label.set_padding(5) && label.set_file_name("name"));
  const Bytes body = label.encode_body().value();
  const Bytes der = label.encode_padded_encrypted(body).value();
  EXPECT_EQ(der.size(), label.encode_encrypted(body).value().size() + 7);
  EXPECT_TRUE(*peek::is_encrypted(der) && *peek::has_padding(der) && *label.names_cipher());
  expect_value(peek::text(der), "sealed");
  expect_value(peek::custom(der), Bytes{9});
  EXPECT_TRUE(*peek::in_head(der, recipient(1)) && peek::may_open(der, Bytes{1}));
  EXPECT_FALSE(*peek::in_head(der, recipient(2)) || peek::may_open(der, Bytes{2}));

  auto [read, sealed] = Label::decode_encrypted(der).value();
  EXPECT_EQ(sealed, body);
  expect_value(read.file_name(), "");
  ASSERT_TRUE(read.decode_body(sealed));
  EXPECT_EQ(read.encode().value(), label.encode().value());
  EXPECT_EQ(label.encode_padded().value().size(), label.encode().value().size() + 7);
}

TEST(Lists, AreForwardRangesNewestFirst) {
  static_assert(std::ranges::forward_range<Logs> && std::ranges::forward_range<Recipients>);
  Label label = label_of();
  EXPECT_THAT(numbers(label.logs()), IsEmpty());
  for (std::uint32_t i = 1; i <= 3; ++i) {
    ASSERT_TRUE(label.add_log(log_entry(i)) && label.add_extension(i, Bytes(i - 1, 7)));
    ASSERT_EQ(label.logs().size(), i);
  }
  EXPECT_THAT(numbers(label.logs()), ElementsAre(3, 2, 1));
  expect_value(*std::ranges::next(label.logs().begin(), 2), log_entry(1));
  const Extensions extensions = label.extensions();
  const auto empty = std::ranges::find_if(
      extensions, [](const Result<Extension>& each) { return each->value.empty(); });
  expect_value(*empty, Extension{1, {}});
  EXPECT_EQ(std::ranges::distance(empty, extensions.end()), 1);
  expect_value(label.extension(3), Bytes{7, 7});

  expect_error(label.remove_log(0), Error::kRefused);
  expect_error(label.remove_log(3), Error::kRefused);
  ASSERT_TRUE(label.remove_log(1) && label.remove_extension(2));
  EXPECT_THAT(numbers(label.logs()), ElementsAre(3, 1));
  EXPECT_EQ(label.extensions().size(), 2U);
  ASSERT_TRUE(label.clear_logs());
  EXPECT_TRUE(label.logs().empty());
}

class RecipientsOf : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Lists, RecipientsOf, testing::Values(0, 1, 2, 5));

TEST_P(RecipientsOf, AreAllReadAndLeaveTheLabelAsItWas) {
  const auto people = static_cast<std::uint8_t>(GetParam());
  const Label label = label_for(people);
  const Bytes before = label.encode().value();
  std::uint8_t next = people;
  for (const Result<BodyEnvelope>& each : label.recipients().value()) {
    expect_value(each, BodyEnvelope{envelope(next), privileges(next)});
    --next;
  }
  EXPECT_EQ(next, 0);
  EXPECT_EQ(label.encode().value(), before);
}

TEST(Recipients, MayHaveLargeKeysAndPairs) {
  Label label = label_for(1);
  Privileges rights = privileges(2);
  rights.pairs = {{1, 600}, {2, 1}};
  ASSERT_TRUE(label.add_to_body(envelope(2, 5000), rights));
  std::ranges::reverse(rights.pairs);
  const BodyEnvelope expected = {envelope(2, 5000), rights};
  expect_value(*label.recipients()->begin(), expected);
  expect_value(label.body_envelope(recipient(2)), expected);
}

TEST(Recipients, AreFoundChangedAndRemoved) {
  Label label = label_for(2);
  expect_value(label.head_envelope(recipient(2)), envelope(2));
  expect_value(label.certificate(recipient(2)), kCertificate);
  expect_error(label.body_envelope(recipient(3)), Error::kRefused);
  ASSERT_TRUE(label.set_read_count(recipient(2), 9));
  EXPECT_EQ(label.body_envelope(recipient(2))->privileges.read_count, 9U);
  ASSERT_TRUE(label.remove(recipient(2)));
  EXPECT_TRUE(*label.in_head(recipient(1)) && *label.in_body(recipient(1)));
  EXPECT_FALSE(*label.in_head(recipient(2)) || *label.in_body(recipient(2)));
}

TEST(Recipients, AreRekeyedUntilOneFails) {
  Label label = label_for(3);
  std::uint8_t calls = 0;
  ASSERT_TRUE(label.rekey([&](ByteView data) -> Result<WrappedKeys> {
    EXPECT_TRUE(std::ranges::equal(data, kCertificate));
    ++calls;
    return WrappedKeys{{calls}, {calls, calls}};
  }));
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(label.head_envelope(recipient(3))->key, Bytes{3});
  EXPECT_EQ(label.body_envelope(recipient(3))->envelope.key, (Bytes{3, 3}));
  expect_error(label.rekey([](ByteView) -> Result<WrappedKeys> { return Error::kTooLong; }),
               Error::kTooLong);
}

TEST(Signatures, FormAChain) {
  Label label = label_of("1.1.2");
  const Signature first = {"sha256WithRSAEncryption", Bytes(32, 1), {0x30, 1, 1}};
  const Signature second = {"sha256WithRSAEncryption", Bytes(64, 2), {0x30, 1, 2}};
  ASSERT_TRUE(label.set_sign_algorithm(first.algorithm) && label.set_signature(first));
  const Bytes covered = label.signer_message().value();
  ASSERT_TRUE(label.add_signature(second));
  expect_value(label.signature(), first);
  EXPECT_THAT(label.signatures().value(), ElementsAre(first, second));
  expect_value(label.signer_message(second.certificate), covered);
  expect_value(label.signer_message(first.certificate), Bytes{});
}

TEST(Markings, AreOwnedRecords) {
  Label label = label_of();
  std::uint8_t data[] = {1, 2, 3};
  char text[] = "mark";
  const WaterMark mark = {data, 3, data, 2, 4, 5, text, 0, kTime};
  ASSERT_TRUE(label.set_watermark(mark));
  const Owned<WaterMark> read = label.watermark().value();
  EXPECT_STREQ(read->text, text);
  EXPECT_EQ(read->data1Len, 3U);
  EXPECT_EQ(label.stamp().value()->name, nullptr);
  EXPECT_EQ(label.fingerprints().value()->list.count, 0U);
}

}  // namespace
}  // namespace tqlabel
