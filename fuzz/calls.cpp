// Bytes as calls on two labels of one version, against a model of what each of them holds.

#include "observe.h"

namespace tq::fuzz {

void (*seed_sink)(const Bytes& bytes) = nullptr;

namespace {

constexpr std::size_t kRoom = 700;  // no field is larger

class Source {
 public:
  Source(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}
  [[nodiscard]] bool empty() const { return at_ == end_; }
  std::uint8_t byte() { return empty() ? std::uint8_t{0} : *at_++; }
  std::uint32_t below(std::size_t limit) { return byte() % static_cast<std::uint32_t>(limit); }
  bool flip() { return below(2) == 0; }
  std::uint32_t number() {  // in order, whatever the compiler
    const std::uint32_t low = byte();
    return low | std::uint32_t{byte()} << 24;
  }
  Bytes text(std::size_t most = 255) {
    const std::size_t size = byte() * most / 255;
    return Bytes(size, static_cast<char>('a' + size % 26));
  }
  Bytes sequence() {
    const Bytes inside = text(100);
    return "\x30" + Bytes(1, static_cast<char>(inside.size() + 2)) + "\x04" +
           Bytes(1, static_cast<char>(inside.size())) + inside;
  }
  std::uint64_t time() { return one_of({0UL, 1UL, 1500000000UL, 253402300799UL}); }
  template <class Values>
  auto& one_of(Values& values) {
    return values[below(std::size(values))];
  }
  template <class Value>
  Value one_of(std::initializer_list<Value> values) {
    return values.begin()[below(values.size())];
  }

 private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

PJCertIssuerEntry attributes[] = {
    {{0x55, 4, 6}, 3, "XX", 2, 19},
    {{0x55, 4, 3}, 3, "Root", 4, 12},
    {{0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 1, 9, 1}, 9, "a@b.c", 5, 22},
    {{0x55, 4, 3}, 3, {0, 'R'}, 2, 30},
};
PJCertIssuer names[] = {
    {attributes, 2, 10}, {attributes + 1, 1, 10}, {attributes + 2, 2, 10}, {attributes, 0, 10}};
const Bytes kSerials[] = {"\x01", "\x02", Bytes("\0\x80", 2)};

struct Person {
  explicit Person(Source& in) : serial(in.one_of(kSerials)), name(in.below(4)) {}
  [[nodiscard]] bool found_by(const Person& asked) const {
    return asked.serial == serial &&
           (asked.name == name || asked.name == 3 || (name == 0 && asked.name == 1));
  }
  [[nodiscard]] const PJCertIssuer* issuer() const { return &names[name]; }

  Bytes serial;
  std::uint32_t name;  // the last finds everybody; nobody is stored with it
};

struct Row {
  std::vector<Bytes> parts;
  std::optional<Person> person;  // of an envelope
  Bytes subject;                 // likewise
};
using Rows = std::vector<Row>;

auto found_in(Rows& list, const Person& asked) {
  return std::find_if(list.begin(), list.end(),
                      [&](const Row& each) { return each.person->found_by(asked); });
}
bool removed(Rows& list, const Person& asked) {
  const auto found = found_in(list, asked);
  const bool there = found != list.end();
  if (there) list.erase(found);
  return there;
}

struct Model {
  Seen fields;
  Rows head, body, logs, extensions, signers;

  explicit Model(const Bytes& version) {
    for (const auto& rule : kBytes) fields[rule.name] = "";
    for (const auto& rule : kNumbers) fields[rule.name] = "0 ";
    for (const auto& rule : kTimes) fields[rule.name] = "0 ";
    fields["version"] = version;
    fields["feedback bits"] = "0 ";
    fields["cipher"] = fields["issuer"] = "";
    fields["sign algorithm"] = v60() ? "" : "none";
    fields["creator"] = "0 0 0 ";
    fields["water mark"] = describe(WaterMark{});
    fields["stamp"] = describe(StampRecord{});
    fields["finger"] = describe(Finger{});
  }

  [[nodiscard]] const Bytes& at(const char* name) const { return fields.at(name); }
  [[nodiscard]] bool v60() const { return at("version") == "6.0"; }
  [[nodiscard]] bool multi() const { return at("version") == "1.1.2"; }
  [[nodiscard]] bool has_algorithm() const {
    return !at("sign algorithm").empty() && at("sign algorithm") != "none";
  }
  [[nodiscard]] bool head_encodes() const {
    return (v60() || !at("issuer").empty()) && (!has_algorithm() || !at("head cert").empty());
  }
  [[nodiscard]] bool body_encodes() const { return multi() || !at("body cert").empty(); }

  // What comes back from encoded bytes.
  [[nodiscard]] Model written() const {
    Model copy = *this;
    if (v60()) copy.fields["feedback bits"] = "0 ";
    for (Row& log : copy.logs) log.parts.resize(v60() ? 1 : 2);  // the second one is the issuer
    if (at("version").size() != 5) {
      for (std::size_t i = 3; i < 6; ++i) copy.fields[kNumbers[i].name] = "0 ";
    }
    if (multi()) copy.fields["body cert"] = copy.fields["body signature"] = "";
    return copy;
  }

  [[nodiscard]] Model around(const Model& body_of) const {
    Model copy = body_of;
    for (const char* const name :
         {"label", "serial", "custom", "head cert", "head signature", "head modified", "created",
          "feedback bits", "sign algorithm", "cipher", "issuer"}) {
      copy.fields[name] = at(name);
    }
    copy.head = head;
    return copy;
  }

  [[nodiscard]] Seen seen() const {
    Seen seen = fields;
    seen["encrypted"] = at("cipher").empty() ? "0 " : "1 ";
    const auto list = [&](const Bytes& name, const Rows& rows, std::size_t shown) {
      seen[name + "s"] = row_of(rows.size());
      for (std::size_t i = 0; i < std::min<std::size_t>(shown, 40); ++i) {
        seen[name + " " + std::to_string(i)] = joined(rows[i].parts);
      }
    };
    list("log", logs, logs.size());
    list("extension", extensions, extensions.size());
    list("envelope", body, std::max<std::size_t>(body.size(), 1) - 1);
    if (!has_algorithm()) return seen;
    Rows all = signers;
    const Bytes& algorithm = at("sign algorithm");
    if (!multi()) all = {{{row_of(at("body signature"), at("body cert")), algorithm}, {}, {}}};
    if (all.empty()) all = {{{"0 0 ", ""}, {}, {}}};
    seen["first signer"] = joined(all[0].parts);
    for (Row& each : all) each.parts[1] = algorithm;
    list("signer", all, all.size());
    return seen;
  }
};

struct Subject {
  Label label;
  Model model;
  Seen seen;
  [[nodiscard]] TqLabel get() const { return label.get(); }
  // Stores a value in the model where the call took it.
  bool keep(std::int32_t result, const char* name, const Bytes& value) {
    if (result == 0) model.fields[name] = value;
    return result == 0;
  }
};

// The calls. Each mends the model and tells whether it may have changed the label.

bool set_bytes(Source& in, Subject& to) {
  const BytesRule& rule = in.one_of(kBytes);
  Bytes bytes = rule.kind == Kind::kElement ? in.sequence() : in.text();
  if (rule.kind == Kind::kUnits && in.flip()) bytes.resize(64);
  return to.keep(rule.set(to.get(), u8(bytes), size32(bytes)), rule.name, bytes);
}

bool set_number(Source& in, Subject& to) {
  const auto& rule = in.one_of(kNumbers);
  const std::uint32_t value = in.number();
  return to.keep(rule.set(to.get(), value), rule.name, row_of(value));
}

bool set_time(Source& in, Subject& to) {
  const auto& rule = in.one_of(kTimes);
  std::uint64_t value = in.time();
  if (rule.set != nullptr) return to.keep(rule.set(to.get(), value), rule.name, row_of(value));
  const auto present = rule.get == GetAbolishTime ? AbolishSF : SetHeadCreateTime;
  require(present(to.get()) == 0 && rule.get(to.get(), &value) == 0, "the present is stored");
  return to.keep(0, rule.name, row_of(value));
}

// An unknown name removes the earlier one in the "1.1" family and is as good as any in "6.0".
bool set_sign_algorithm(Source& in, Subject& to) {
  const Bytes name = in.one_of({"sm3WithSM2Encryption", "sha256WithRSAEncryption", "unknown"});
  const bool taken = SetHeadSignAlg(to.get(), u8(name), size32(name)) == 0;
  require(taken == (to.model.v60() || name != "unknown"), "a known algorithm is taken");
  return to.keep(0, "sign algorithm", taken ? name : "none");
}

bool set_cipher(Source& in, Subject& to) {
  const Bytes name = in.one_of({"AES.256.CBC", "SM4", "", "unknown"});
  const std::uint32_t bits = in.byte();
  const bool v60 = to.model.v60();
  const std::int32_t result = SetEncryptHead(to.get(), u8(name), size32(name), bits);
  if (v60 || !name.empty()) to.keep(result, "feedback bits", row_of(bits));
  return to.keep(result, "cipher", v60 ? name : name.substr(0, name.find('.')));
}

bool set_issuer(Source& in, Subject& to) {
  const Person who(in);
  const bool taken =
      SetCertSerialAndIssuerToHead(to.get(), u8(who.serial), size32(who.serial), who.issuer()) == 0;
  if (taken && !to.model.v60()) to.keep(0, "issuer", describe(who.issuer()));
  return to.keep(0, "serial", who.serial);
}

bool set_content(Source& in, Subject& to) {
  Bytes name = in.text();
  Bytes title = in.text();
  const ContentAttrInfo content{in.number(),  in.number(), in.number(),   u8(name),
                                size32(name), u8(title),   size32(title), in.time(),
                                in.time(),    in.time(),   in.time()};
  const std::int32_t result = SetContentAtrr(to.get(), &content);
  to.keep(result, "file name", name);
  to.keep(result, "file type", row_of(content.fileType));
  to.keep(result, "secrecy", row_of(content.secrecy));
  to.keep(result, "file size", row_of(content.fileSize));
  to.keep(result, "modified", row_of(content.modifyTime));
  to.keep(result, "expires", row_of(content.expiryTime));
  to.keep(result, "abolished", row_of(content.abolishTime));
  to.keep(result, "destroyed", row_of(content.destroyTime));
  return to.keep(result, "file title", title);
}

bool set_creator(Source& in, Subject& to) {
  Bytes first = in.text() + "1";
  Bytes second = in.text() + "2";
  const FileCreatorInfo creator{u8(first), size32(first), u8(second), size32(second), in.number()};
  const std::int32_t result = SetBodyFileCreator(to.get(), &creator);
  if (in.flip() && GLSetFileNo(to.get(), first.c_str()) == 0) first.push_back('\0');
  return to.keep(result, "creator", row_of(first, second, creator.time));
}

bool set_water_mark(Source& in, Subject& to) {
  Bytes data = in.text();
  Bytes words = in.text(60);
  const WaterMark mark{u8(data),    size32(data), u8(words),         size32(words), in.number(),
                       in.number(), words.data(), size32(words) + 1, in.time()};
  return to.keep(SetWaterMarkInfo(to.get(), &mark), "water mark", describe(mark));
}

bool set_stamp(Source& in, Subject& to) {
  Bytes words = in.text(60);
  Bytes text = in.text() + words + "longer";  // of which the second text is stored
  Bytes element = in.sequence();
  const std::uint32_t size = size32(text);
  const std::uint32_t counted = size32(words) + 1;
  const Meta meta{u8(element), static_cast<std::uint8_t>(element.size()),
                  in.time(),   u8(text),
                  size,        in.time(),
                  in.time(),   u8(text),
                  size};
  const Seal seal{u8(text),        size,     meta, in.byte(), u8(text), size, u8(element),
                  size32(element), u8(text), size};
  const Stamp stamp{words.data(), counted, {in.number(), 1, 2, 3}, words.data(), counted, in.time(),
                    u8(text),     size};
  StampRecord record{u8(text), size, seal, stamp, u8(text), size};
  const std::int32_t result = SetStampInfo(to.get(), &record);
  record.stamp.text2 = text.data();
  return to.keep(result, "stamp", describe(record));
}

bool set_finger(Source& in, Subject& to) {
  Bytes text = in.text();
  Bytes element = in.sequence();
  std::vector<FingerEntry> entries(1 + in.below(3), {u8(element), size32(element), {}});
  for (FingerEntry& entry : entries) entry.action[in.below(9)] = 1;
  const auto count = static_cast<std::uint32_t>(entries.size());
  const Finger finger{u8(text), size32(text), u8(text),    size32(text),
                      u8(text), size32(text), in.number(), {count, entries.data()}};
  const std::int32_t result = SetFingerPrintInfo(to.get(), &finger);
  std::reverse(entries.begin(), entries.end());
  return to.keep(result, "finger", describe(finger));
}

bool set_signer(Source& in, Subject& to) {
  const bool multi = to.model.multi();
  Bytes algorithm = in.one_of({"RSA", "sm3WithSM2Encryption", "sha1WithIBCCS-1Encryption"});
  Bytes value = in.flip() ? Bytes(64, 's') : in.text();
  Bytes cert = in.sequence();
  if (multi && algorithm[0] == 's' && algorithm[1] == 'h')
    cert = Bytes("\1\0\0\0i\1\0\0\0s", 10) + "2";
  const bool append = in.below(4) != 0;
  const SignAttribute attribute{algorithm.data(), u8(value), size32(value), u8(cert), size32(cert)};
  const std::int32_t result = SetBodySignAttr(to.get(), append ? 1 : 0, &attribute);
  Rows& signers = to.model.signers;
  if (!multi) {
    if (value.size() % 32 == 0) to.keep(result, "body signature", value);
    return to.keep(result, "body cert", cert);
  }
  // The record that is there from the start is empty: appending leaves it so.
  if (append && signers.empty()) signers = {{{"0 0 ", ""}, {}, {}}};
  if (!append) signers.clear();
  signers.push_back({{row_of(value, cert), algorithm}, {}, {}});
  return true;
}

bool add_log(Source& in, Subject& to) {
  Bytes text = in.text();
  Bytes more = in.text(600);
  PJCertIssuer& name = in.one_of(names);
  const LogInfo log{in.number(), u8(text),     size32(text), &name,       u8(text), size32(text),
                    u8(text),    size32(text), in.time(),    in.number(), u8(more), size32(more)};
  if (AddLog(to.get(), &log) != 0) return false;
  to.model.logs.insert(to.model.logs.begin(), {{describe(log), describe(&name)}, {}, {}});
  return true;
}

bool delete_log(Source& in, Subject& to) {
  Rows& logs = to.model.logs;
  const std::int32_t position = static_cast<std::int32_t>(in.below(6)) - 1;
  const bool there = position > 0 && position < static_cast<std::int32_t>(logs.size());
  const std::int32_t result = DelLog(to.get(), position);
  require(position == 0 || result == -1, "deleting one log gives -1");
  if (position == 0) logs.clear();
  if (there) logs.erase(logs.begin() + position);
  return position == 0 || there;
}

bool add_extension(Source& in, Subject& to) {
  const Bytes value = in.text(600);
  const std::uint32_t type = in.one_of({0U, 1U, 2U, 3U, 0x10000U, 0x10001U});
  if (AddExtendValue(to.get(), type, u8(value), size32(value)) != 0) return false;
  Rows& list = to.model.extensions;
  list.insert(list.begin(), {{row_of(type), row_of(value)}, {}, {}});
  return true;
}

bool delete_extension(Source& in, Subject& to) {
  Rows& list = to.model.extensions;
  const std::uint32_t type = in.below(4);
  const auto found = std::find_if(list.begin(), list.end(),
                                  [&](const Row& each) { return each.parts[0] == row_of(type); });
  const bool there = found != list.end();
  require(DelExtendAttr(to.get(), type | 0x50000) == (there ? 0 : -1), "the low bits count");
  if (there) list.erase(found);
  return there;
}

// A wrapped key, which the one algorithm keeps as a blob of lengths and bytes.
Bytes key_for(const Bytes& algorithm, Bytes key) {
  if (algorithm.find("IBCCS-1") == Bytes::npos) return key;
  return Bytes("e1..\2\0\0\0id\1\0\0\0e\1f\2xyXY", 22);
}

bool add_envelope(Source& in, Subject& to) {
  Person person(in);
  Bytes algorithm = in.one_of({"SM2", "RSA", "IBCCS-1", "unknown"});
  Bytes key = key_for(algorithm, in.text());
  Row row{{}, person, in.sequence()};
  std::vector<PrivilegeEntry> pairs(in.below(4), PrivilegeEntry{});
  for (PrivilegeEntry& pair : pairs) pair.value = pair.type = in.byte();
  const EnvelopeInfo info{u8(algorithm),
                          static_cast<std::uint8_t>(algorithm.size()),
                          u8(person.serial),
                          static_cast<std::uint8_t>(person.serial.size()),
                          u8(key),
                          size32(key),
                          &names[person.name]};
  const PrivilegeInfo rights{u8(row.subject),
                             size32(row.subject),
                             1,
                             in.number(),
                             in.number(),
                             0,
                             1,
                             1,
                             in.number(),
                             7,
                             static_cast<std::uint32_t>(pairs.size()),
                             pairs.data()};
  const bool in_body = in.flip();
  const std::int32_t result =
      in_body ? ADDigitEnvlopeToBody(to.get(), &info, &rights) : AddEnvelopeToHead(to.get(), &info);
  if (to.model.v60()) return false;
  Rows& list = in_body ? to.model.body : to.model.head;
  (void)removed(list, person);  // by a call that fails, too
  std::reverse(pairs.begin(), pairs.end());
  row.parts = describe(info, rights);
  if (result == 0) list.insert(list.begin(), row);
  return true;
}

bool delete_envelopes(Source& in, Subject& to) {
  const Person who(in);
  const bool head = removed(to.model.head, who);
  const bool both = head && removed(to.model.body, who);
  const std::int32_t result =
      DelPrivilegeFromLabel(to.get(), u8(who.serial), size32(who.serial), who.issuer());
  require(result == (both ? 0 : -1), "a recipient is removed");
  return head;
}

bool set_read_count(Source& in, Subject& to) {
  const Person who(in);
  const std::uint32_t count = in.number();
  if (SetAlreadyReadCountsToLabel(to.get(), u8(who.serial), size32(who.serial), who.issuer(),
                                  count) != 0) {
    return false;
  }
  found_in(to.model.body, who)->parts[kReadCount] = row_of(count);
  return true;
}

bool rekey(Source& in, Subject& to) {
  auto& [fields, head, body, logs, extensions, signers] = to.model;
  DigitEnvolopEnum* envelopes = nullptr;
  if (CreatEmurateDigitEnvolop(&envelopes, to.get()) != 0) return false;
  std::reverse(body.begin(), body.end());
  head.clear();
  for (std::size_t i = 0, count = in.below(body.size() + 1); i < count; ++i) {
    Row& current = body[i];
    const auto subject = fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
      return GetCurrentDigitEnvolop(envelopes, buffer, length);
    });
    require(subject == current.subject, "the certificate to wrap for");
    require(HaveNextDigitEnvolop(envelopes) == (i + 1 < body.size() ? 0 : 1), "there is a next");
    const Bytes key = key_for(current.parts[kAlgorithm], in.text());
    require(SetCurrentEmuEnvolop(envelopes, u8(key), size32(key), u8(key), size32(key)) == 0,
            "a new key");
    current.parts[kKey] = row_of(key);
    (void)removed(head, *current.person);
    head.insert(head.begin(), current);
  }
  DestroyEmura(envelopes);
  return true;
}

std::optional<Bytes> seed(std::optional<Bytes> bytes) {
  if (bytes && seed_sink != nullptr) seed_sink(*bytes);
  return bytes;
}

// Writes one label and reads it as the other.
bool copy_label(Source& in, Subject& from, Subject& to) {
  require(SetLabelPadSize(from.get(), in.byte()) == 0, "padding is set");
  const auto der = seed(get(from.get(), in.flip() ? EncodeLabelPad : EncodeLabel));
  require(der.has_value() == (from.model.head_encodes() && from.model.body_encodes()), "encodes");
  if (!der) return false;
  to.label = decode(*der);
  to.model = from.model.written();
  return true;
}

bool copy_head(Source& in, Subject& from, Subject& to) {
  const auto encode = in.flip() ? EncodeLabelPadEncrypted : EncodeLabelEncrypted;
  Bytes body(200, 'x');
  const auto der = seed(fetch([&](std::uint8_t* buffer, std::uint32_t* length) {
    return encode(from.get(), u8(body), size32(body), buffer, length);
  }));
  require(der.has_value() == from.model.head_encodes(), "a head encodes");
  if (!der) return false;
  TqLabel slot = nullptr;
  std::uint32_t length = size32(body);
  require(DecodeLabelEncrypted(u8(*der), size32(*der), u8(body), &length, &slot) == 0, "opens");
  to.label.reset(slot);
  to.model = from.model.written().around(Model(from.model.at("version")));
  return true;
}

bool copy_body(Source& in, Subject& from, Subject& to) {
  auto body = seed(get(from.get(), EncodeBodyPlaint));
  require(body.has_value() == from.model.body_encodes(), "a body encodes");
  if (!body) return false;
  const bool half = in.below(8) == 0;
  if (half) body->pop_back();
  const std::int32_t result = DecodeLabelDecrypted(to.get(), u8(*body), size32(*body));
  require(result == (half ? -1 : 0), "a body decodes");
  if (!half) to.model = to.model.around(from.model.written());
  return !half;
}

constexpr bool (*kCalls[])(Source&, Subject&) = {
    set_bytes,          set_bytes,    set_number,     set_time,
    set_sign_algorithm, set_cipher,   set_issuer,     set_content,
    set_creator,        set_stamp,    set_water_mark, set_finger,
    set_signer,         add_log,      delete_log,     add_extension,
    delete_extension,   add_envelope, add_envelope,   add_envelope,
    add_envelope,       rekey,        rekey,          set_read_count,
    delete_envelopes};
constexpr bool (*kCopies[])(Source&, Subject&, Subject&) = {copy_label, copy_head, copy_body};

void check_recipient(Subject& subject, const Person& who) {
  Seen seen;
  find(subject.get(), who.serial, *who.issuer(), kRoom, seen);
  auto& [fields, head, body, logs, extensions, signers] = subject.model;
  const auto in_head = found_in(head, who);
  const auto in_body = found_in(body, who);
  const Bytes name = row_of(who.serial, describe(who.issuer()));
  Seen expected;
  if (in_head != head.end()) {
    expected["head of " + name] = in_head->parts[kAlgorithm] + in_head->parts[kKey];
  }
  if (in_body != body.end()) expected["body of " + name] = joined(in_body->parts);
  require_same(seen, expected, "a recipient has the envelopes of the model");
}

void check(Subject& subject, bool changed) {
  const Seen before = std::exchange(subject.seen, observe(subject.get(), kRoom));
  if (!changed) require_same(before, subject.seen, "a call that fails changes nothing");
  const Seen expected = subject.model.seen();
  Seen common = subject.seen;
  std::erase_if(common, [&](const auto& each) { return !expected.contains(each.first); });
  Seen counted = expected;
  counted.erase("signers");  // no getter counts them
  require_same(common, counted, "a label holds what its model does");
}

}  // namespace
}  // namespace tq::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tq::fuzz;
  Source in(data, size);
  const Bytes version = in.one_of(kVersions);
  Subject subjects[] = {{make_label(version), Model(version), {}},
                        {make_label(version), Model(version), {}}};
  for (Subject& subject : subjects) check(subject, true);
  while (!in.empty()) {
    const std::uint32_t call = in.below(std::size(kCalls) + std::size(kCopies));
    const std::uint32_t which = in.below(2);
    Subject& to = subjects[which];
    const bool changed = call < std::size(kCalls)
                             ? kCalls[call](in, to)
                             : kCopies[call - std::size(kCalls)](in, subjects[1 - which], to);
    check(to, changed);
    check_recipient(to, Person(in));
  }
  return 0;
}
