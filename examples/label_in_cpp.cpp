// Makes a label in C++, adds a recipient and a log entry, encodes it, reads it back and lists it.
#include <cstdio>
#include <tqlabel/label.hpp>

namespace {

using tqlabel::Bytes, tqlabel::Label, tqlabel::Result;

// Any DER SEQUENCE passes for a certificate, and any bytes for a wrapped key.
const Bytes kCertificate = {0x30, 3, 2, 1, 1};
const Bytes kWrappedKey(256, 0x51);

// The first step that fails is the result.
Result<Bytes> make() {
  const auto authority = tqlabel::attribute("CN", "Example Root");
  if (!authority) return authority.error();
  const tqlabel::Recipient alice = {{1}, {*authority}};
  const tqlabel::Envelope envelope = {alice, "RSA", kWrappedKey};
  tqlabel::Privileges may_read;
  may_read.data = kCertificate;
  may_read.flag1 = true;
  const tqlabel::Log created = {1, "alice", alice.issuer, {1}, {1}, 1700000000, 0, "created"};

  Result<Label> label = Label::make("1.1");
  if (!label) return label.error();
  return label->set_text("internal")
      .and_then([&] { return label->set_author(alice); })
      .and_then([&] { return label->set_body_certificate(kCertificate); })
      .and_then([&] { return label->set_file_name("report.odt"); })
      .and_then([&] { return label->add_to_head(envelope); })
      .and_then([&] { return label->add_to_body(envelope, may_read); })
      .and_then([&] { return label->add_log(created); })
      .and_then([&] { return label->encode(); });
}

Result<void> list(const Label& label) {
  auto recipients = label.recipients();
  if (!recipients) return recipients.error();
  std::printf("%s\n", label.file_name().value_or("a file without a name").c_str());
  for (const auto& each : *recipients) {
    if (!each) return each.error();
    std::printf("recipient: %s\n", each->envelope.recipient.issuer.front().value.c_str());
  }
  for (const auto& log : label.logs()) {
    if (!log) return log.error();
    std::printf("log: %s, %s\n", log->text1.c_str(), log->text2.c_str());
  }
  return {};
}

}  // namespace

int main() {
  const Result<void> done = make()
                                .and_then([](const Bytes& der) { return Label::decode(der); })
                                .and_then([](const Label& label) { return list(label); });
  if (!done) std::fprintf(stderr, "failed: %s\n", message(done.error()).data());
  return done ? 0 : 1;
}
