#include "sealed/recipients.h"

#include <charconv>
#include <cstring>
#include <ctime>
#include <map>

#include "base/failure.h"
#include "crypto/issuers.h"
#include "crypto/wrap.h"

namespace tq::tool {
namespace {

template <class Number>
Number parse_number(std::string_view digits, const std::string& text) {
  Number number = 0;
  const char* end = digits.data() + digits.size();
  const auto [at, error] = std::from_chars(digits.data(), end, number);
  if (error == std::errc() && at == end) return number;
  throw Failure{.status = Status::kUsage,
                .why = "not a privilege",
                .field = text,
                .advice = "there are print, copy, edit, reads=N and TYPE=VALUE"};
}

void parse_right(const std::string& text, Rights& rights) {
  const std::map<std::string_view, bool*> flags = {
      {"print", &rights.print}, {"copy", &rights.copy}, {"edit", &rights.edit}};
  const auto flag = flags.find(text);
  if (flag != flags.end()) {
    *flag->second = true;
    return;
  }
  const std::string_view name = std::string_view(text).substr(0, text.find('='));
  const std::string_view digits =
      std::string_view(text).substr(std::min(name.size() + 1, text.size()));
  const auto value = parse_number<std::uint32_t>(digits, text);
  if (name == "reads") {
    rights.reads = value;
    return;
  }
  PrivilegeEntry entry;
  std::memset(&entry, 0, sizeof entry);  // its padding is stored, too
  entry.type = parse_number<std::uint16_t>(name, text);
  entry.value = value;
  rights.more.push_back(entry);
}

template <class Node>
Node& envelope_in(Node* first, const Party& party) {
  Node* const found = find_envelope(first, party);
  if (found != nullptr) return *found;
  throw Failure{.status = Status::kCrypto,
                .why = "not sealed for " + party.subject,
                .advice = "tqlabel inspect shows for whom it is"};
}

void need(bool done, const Party& party) {
  if (done) return;
  throw Failure{
      .status = Status::kCrypto, .why = "the label cannot hold this recipient", .file = party.file};
}

std::uint32_t count_recipients(TqLabel label) {
  std::uint32_t count = 0;
  GetDigitEnvlopeCountFromBody(label, &count);
  return count;
}

}  // namespace

bool is_envelope_of(const ENVELOPE& envelope, const Party& party) {
  const PJCertIssuer issuer = party.issuer_name();
  return is_for(envelope,
                {party.serial.data(), static_cast<std::uint8_t>(party.serial.size()), &issuer}) &&
         count_attributes(envelope.issuer) == issuer.count;
}

Rights parse_rights(const std::vector<std::string>& texts) {
  Rights rights;
  for (const std::string& text : texts) parse_right(text, rights);
  return rights;
}

void add_recipient(TqLabel label, const Party& recipient, const Secret& file_key,
                   const Rights& rights) {
  const std::uint32_t count = count_recipients(label);
  std::vector<std::uint8_t> key = wrap(file_key, recipient);
  std::string name = wrapping_name(recipient.kind);
  PJCertIssuer issuer = recipient.issuer_name();
  const EnvelopeInfo envelope = {.alg = as_octets(name.data()),
                                 .algLen = static_cast<std::uint8_t>(name.size()),
                                 .serial = const_cast<std::uint8_t*>(recipient.serial.data()),
                                 .serialLen = static_cast<std::uint8_t>(recipient.serial.size()),
                                 .key = key.data(),
                                 .keyLen = static_cast<std::uint32_t>(key.size()),
                                 .issuer = &issuer};
  PrivilegeInfo privilege = {};
  privilege.data = const_cast<std::uint8_t*>(recipient.certificate.data());
  privilege.dataLen = static_cast<std::uint32_t>(recipient.certificate.size());
  privilege.flag1 = 1;
  privilege.flag2 = rights.print ? 1 : 0;
  privilege.flag3 = rights.copy ? 1 : 0;
  privilege.flag4 = rights.edit ? 1 : 0;
  privilege.number1 = rights.reads;
  privilege.entryCount = static_cast<std::uint32_t>(rights.more.size());
  privilege.entries = const_cast<PrivilegeEntry*>(rights.more.data());
  need(AddEnvelopeToHead(label, &envelope) == 0 &&
           ADDigitEnvlopeToBody(label, &envelope, &privilege) == 0,
       recipient);
  if (count_recipients(label) == count + 1) return;
  throw Failure{.status = Status::kCrypto,
                .why = "another recipient has this serial number and issuer",
                .file = recipient.file};
}

Secret file_key_for(const Party& recipient, const TqLabelHandle& label) {
  const auto& envelope = envelope_in<const ENVELOPE>(label.head.encryptHead.envelopes, recipient);
  const ANYBUF& key = envelope.encryptedKey;
  return unwrap({key.data, key.length}, recipient);
}

BDigitEnvolope& envelope_for(const Party& recipient, TqLabelHandle& label) {
  return envelope_in(label.body.bodyEnvelopes, recipient);
}

void append_log(TqLabel label, Action action, const Party& who, std::uint32_t value,
                const std::string& note) {
  constexpr const char* kNames[] = {"", "open", "add", "remove", "rekey", "abolish", "note"};
  PJCertIssuer issuer = who.issuer_name();
  std::string text = kNames[static_cast<std::uint32_t>(action)];
  std::string more = note;
  std::uint8_t zero[] = {0};
  const LogInfo entry = {.number = static_cast<std::uint32_t>(action),
                         .text1 = as_octets(text.data()),
                         .text1Len = static_cast<std::uint32_t>(text.size()),
                         .issuer = &issuer,
                         .array1 = const_cast<std::uint8_t*>(who.serial.data()),
                         .array1Len = static_cast<std::uint32_t>(who.serial.size()),
                         .array2 = zero,
                         .array2Len = sizeof zero,
                         .time = static_cast<std::uint64_t>(std::time(nullptr)),
                         .value = value,
                         .text2 = as_octets(more.data()),
                         .text2Len = static_cast<std::uint32_t>(more.size())};
  need(AddLog(label, &entry) == 0, who);
}

void remove_recipient(TqLabel label, const Party& recipient) {
  static_cast<void>(envelope_for(recipient, *label));  // not one whom the lookup confuses with him
  const PJCertIssuer issuer = recipient.issuer_name();
  need(DelPrivilegeFromLabel(label, recipient.serial.data(),
                             static_cast<std::uint32_t>(recipient.serial.size()), &issuer) == 0,
       recipient);
}

std::vector<Party> recipients_of(const TqLabelHandle& label, const std::string& file) {
  std::vector<Party> recipients;
  const BDigitEnvolope* node = label.body.bodyEnvelopes;
  for (; node != nullptr; node = node->next) {
    Party recipient = party_of(bytes_of(node->privilege.priSubject), file);
    if (!is_envelope_of(node->envelope, recipient)) {
      throw Failure{.status = Status::kMalformed,
                    .why = "the envelope of " + recipient.subject + " is for another certificate",
                    .file = file};
    }
    recipients.push_back(std::move(recipient));
  }
  return recipients;
}

void rewrap(TqLabel label, const Secret& file_key, const std::string& file) {
  for (const Party& recipient : recipients_of(*label, file)) {
    const std::vector<std::uint8_t> key = wrap(file_key, recipient);
    const auto exchange = [&](ENVELOPE& envelope) {
      need(replace(envelope.encryptedKey, key.data(), key.size(), envelope.encryptedKey.type),
           recipient);
    };
    exchange(envelope_in(label->head.encryptHead.envelopes, recipient));
    exchange(envelope_for(recipient, *label).envelope);
  }
}

}  // namespace tq::tool
