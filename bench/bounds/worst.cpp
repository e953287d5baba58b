#include "bounds/worst.h"

#include <algorithm>

namespace tq::bench {
namespace {

using test::concat;
using test::hex;
using test::sequence;
using test::text;
using test::tlv;

const Bytes kNull = hex("05 00");
const Bytes kText = hex("13 00");
const Bytes kOctets = hex("04 00");
const Bytes kBits = hex("03 01 00");
const Bytes kZero = hex("02 01 00");
const Bytes kFalse = hex("01 01 00");
const Bytes kEmpty = hex("30 00");
const Bytes kTime = tlv(0x18, text("19700101000000Z"));
const Bytes kRsa = hex("06 09 2A 86 48 86 F7 0D 01 01 01");
const Bytes kIdentityWrapping = hex("06 0A 60 86 48 01 86 FD 1E 01 05 01");
const Bytes kIdentitySignature = hex("06 0A 60 86 48 01 86 FD 1E 01 05 02");
const Bytes kFourGigabytes = hex("30 84 FF FF FF FF");
const Bytes kMalformed = hex("00 00");

// Entries, each the smallest of its kind that is read.
const Bytes kAttribute = hex("31 06 30 04 06 00 13 00");
const Bytes kName = sequence(kAttribute);
const Bytes kEnvelope = sequence(kName, hex("02 00 06 00"), kOctets);
const Bytes kIdentityKey = sequence(hex("02 00"), kText, kOctets, hex("04 03 04 01 01"), kOctets);
const Bytes kIdentityEnvelope = sequence(kName, hex("02 00"), kIdentityWrapping, kIdentityKey);
const Bytes kSign = sequence(kEmpty, hex("06 01 00"), kBits);
const Bytes kIdentitySign = sequence(sequence(kText, kOctets, kOctets), kIdentitySignature, kBits);
const Bytes kFlagsAndNumbers = concat(kFalse, kZero, kZero, kFalse, kFalse, kFalse, kZero, kZero);
const Bytes kBodyEnvelope = sequence(kEnvelope, sequence(kEmpty, kFlagsAndNumbers));
const Bytes kPair = sequence(kZero, kZero);
const Bytes kExtension = sequence(kZero, kOctets);
const Bytes kLog = sequence(kZero, kText, kName, hex("02 00 02 00"), kTime, kZero, kText);
const Bytes kLog60 = sequence(kZero, kText, hex("02 00 02 00"), kTime, kZero, kText);
const Bytes kSystem = sequence(kOctets, kOctets, kOctets, kZero);
const Bytes kFingerPrint = sequence(kSystem, kNull);

Bytes repeated(const Bytes& entry, std::size_t size) {
  Bytes all;
  for (all.reserve(size); all.size() + entry.size() <= size;) {
    all.insert(all.end(), entry.begin(), entry.end());
  }
  return all;
}

// With a subject, of which getters make a copy.
const Bytes kAction = sequence(kEmpty, repeated(kFalse, 11 * kFalse.size()));

Bytes list(const Bytes& entries) { return sequence(tlv(0x31, entries)); }

Bytes common_name(char value) {
  return tlv(0x31, sequence(hex("06 03 55 04 03"), tlv(0x13, {static_cast<std::uint8_t>(value)})));
}

Bytes recipient(const Bytes& attributes) {
  return sequence(tlv(0x30, attributes), tlv(0x02, {kSerial}), kRsa, kOctets);
}

// The recipient who is looked for: all others stand before.
Bytes last_recipient() {
  return recipient(concat(common_name(kFirstName), common_name(kLastName)));
}

// SEQUENCEs within each other, as deep as that many octets allow; made from the inside out.
Bytes nested(std::size_t size) {
  Bytes backwards;
  while (backwards.size() + 6 < size) {
    const Bytes header = test::header(0x30, backwards.size());
    backwards.insert(backwards.end(), header.rbegin(), header.rend());
  }
  std::ranges::reverse(backwards);
  return backwards;
}

// A label of which nearly everything is empty; the parts are those that can grow.
struct Parts {
  Bytes issuer = sequence(common_name(kFirstName));
  Bytes custom = kOctets;
  Bytes head_envelopes = list(last_recipient());
  Bytes head_sign = sequence(kEmpty, kRsa, kBits);
  Bytes signs = sequence(kSign);
  Bytes body_envelopes = kNull;
  Bytes markings;
  Bytes tail;
  Bytes behind;  // the body
};

Bytes head(const Parts& parts) {
  return sequence(kText, tlv(0x13, text("1.1.2")), parts.issuer, kZero, kTime, kTime, parts.custom,
                  sequence(kRsa, kZero, kZero, parts.head_envelopes), parts.head_sign);
}

const Bytes kCreator = sequence(kText, kText, kTime);
const Bytes kFile = sequence(kZero, kZero, kZero, kText, kText, kTime, kTime, kTime, kTime);

Bytes body(const Parts& parts) {
  return sequence(parts.signs, parts.body_envelopes, parts.markings, kCreator, kFile,
                  sequence(kZero, kZero, kZero), parts.tail);
}

Bytes label_60(const Bytes& logs) {
  const Bytes meta = sequence(kTime, kText, kTime, kTime, kText);
  const Bytes stamp =
      sequence(kText, sequence(kText, meta, kZero, kOctets, kBits),
               sequence(kText, kZero, kZero, kZero, kZero, kText, kTime, kText), kBits);
  const Bytes mark = sequence(kOctets, kOctets, kPair, kText, kTime);
  const Bytes algorithm = tlv(0x13, text("RSA"));
  return sequence(
      sequence(kText, tlv(0x13, text("6.0")), kOctets, sequence(kEmpty, algorithm, kBits),
               sequence(algorithm, kZero, kNull), kZero, kTime, kTime),
      sequence(kBits, kEmpty, kNull, stamp, mark, kFingerPrint, kCreator, kFile, kNull, logs));
}

// A list: its smallest entry, the part that it grows in, and what stands around its entries there.
struct Kind {
  const char* name;
  Bytes entry;
  Bytes Parts::*part;
  Bytes (*around)(const Bytes& entries);
  Gets gets;
};

Bytes elements(const Bytes& entries) { return tlv(0x30, entries); }
Bytes as_they_are(const Bytes& entries) { return entries; }
Bytes before_last(const Bytes& entries) { return list(concat(entries, last_recipient())); }
Bytes in_name_before_last(const Bytes& entries) {
  return before_last(recipient(concat(entries, common_name(kFirstName))));
}
Bytes in_privilege(const Bytes& entries) {
  const Bytes privilege = sequence(kEmpty, kFlagsAndNumbers, list(entries));
  return list(sequence(last_recipient(), privilege));
}
Bytes in_fingerprint(const Bytes& entries) { return tlv(0xA2, sequence(kSystem, list(entries))); }
Bytes in_0(const Bytes& entries) { return tlv(0xA0, list(entries)); }
Bytes in_1(const Bytes& entries) { return tlv(0xA1, list(entries)); }

const Kind kHeadKinds[] = {
    {"name attributes", kAttribute, &Parts::issuer, elements, Gets::kRead},
    {"head envelopes", kEnvelope, &Parts::head_envelopes, before_last, Gets::kRead},
    {"identity-based keys", kIdentityEnvelope, &Parts::head_envelopes, before_last, Gets::kRead},
    {"attributes of a recipient", kAttribute, &Parts::head_envelopes, in_name_before_last,
     Gets::kRead},
    {"ignored elements", kNull, &Parts::behind, as_they_are, Gets::kReadWrite},
};
const Kind kBodyKinds[] = {
    {"signers", kSign, &Parts::signs, elements, Gets::kReadWrite},
    {"identity-based signers", kIdentitySign, &Parts::signs, elements, Gets::kReadWrite},
    {"body envelopes", kBodyEnvelope, &Parts::body_envelopes, list, Gets::kRead},
    {"extended privileges", kPair, &Parts::body_envelopes, in_privilege, Gets::kReadWrite},
    {"fingerprint actions", kAction, &Parts::markings, in_fingerprint, Gets::kReadWrite},
    {"fingerprints again", tlv(0xA2, kFingerPrint), &Parts::markings, as_they_are,
     Gets::kReadWrite},
    {"extensions", kExtension, &Parts::tail, in_0, Gets::kReadWrite},
    {"logs", kLog, &Parts::tail, in_1, Gets::kRead},
};

class Inputs {
 public:
  explicit Inputs(std::size_t size) : size_(size) {}

  void add_heads() {
    for (const Kind& kind : kHeadKinds) add_list(kind, &Inputs::add_head);
    Parts parts;
    parts.custom = tlv(0x04, Bytes(size_));
    add_head("one field", Gets::kReadWrite, parts);
    parts.custom.front() = 0x05;
    add_head("one field of another type", Gets::kSplit, parts);
    parts.custom = concat(hex("04 84 FF FF FF FF"), Bytes(size_));
    add_head("a field said to be 4 GiB", Gets::kSplit, parts);
    parts.custom = kOctets;
    parts.head_sign = sequence(nested(size_), kRsa, kBits);
    add_head("deepest certificate", Gets::kReadWrite, parts);
    add_head("nothing", Gets::kReadWrite, {});
    add(kSealed, "encrypted body", Gets::kRead, sequence(head({}), tlv(0x04, Bytes(size_))));
  }

  void add_bodies() {
    for (const Kind& kind : kBodyKinds) add_list(kind, &Inputs::add_body);
    const Bytes logs = repeated(kLog60, size_);
    add(kLabel, "logs of 6.0", Gets::kReadWrite, label_60(list(logs)));
    add(kLabel, "logs of 6.0, the last malformed", Gets::kSplit,
        label_60(list(concat(logs, kMalformed))));
    add(kLabel, "nothing in 6.0", Gets::kReadWrite, label_60(kNull));
    Parts parts;
    parts.signs = tlv(0x30, repeated(kSign, size_));
    for (const Form form : {kLabel, kBody}) {
      Bytes bytes = form == kLabel ? sequence(head(parts), body(parts)) : body(parts);
      bytes.pop_back();
      add(form, "signers, cut at the last byte", Gets::kNowhere, bytes);
    }
  }

  void add_elements() {
    const Bytes children = repeated(kNull, size_);
    add(kConstructed, "empty children", Gets::kRead, tlv(0x30, children));
    add(kConstructed, "empty children, the last malformed", Gets::kSplit,
        tlv(0x30, concat(children, kMalformed)));
    add(kConstructed, "deepest element", Gets::kRead, nested(size_));
    Bytes field = tlv(0x04, Bytes(size_));
    add(kPrimitive, "one field", Gets::kRead, field);
    field.pop_back();
    add(kPrimitive, "one field, cut at the last byte", Gets::kNowhere, field);
    for (const Form form : {kLabel, kSealed, kBody, kConstructed, kPrimitive}) {
      add(form, "said to be 4 GiB", Gets::kNowhere, concat(kFourGigabytes, Bytes(size_)));
    }
    // Some setters take texts.
    add(kContent, "one field", Gets::kRead, concat(Bytes(size_ - 1, 'x'), Bytes(1)));
  }

  std::vector<WorstInput> all;

 private:
  void add(Form form, std::string name, Gets gets, Bytes bytes) {
    all.push_back({std::move(name), form, gets, std::move(bytes)});
  }
  void add_head(std::string name, Gets gets, const Parts& parts) {
    add(kSealed, name, gets, sequence(head(parts), tlv(0x04, Bytes(128)), parts.behind));
    add(kLabel, std::move(name), gets, sequence(head(parts), body(parts), parts.behind));
  }
  void add_body(std::string name, Gets gets, const Parts& parts) {
    add(kBody, name, gets, body(parts));
    add(kLabel, std::move(name), gets, sequence(head(parts), body(parts)));
  }

  // The list as it is, and one that fails at its last entry: all that was built must go.
  void add_list(const Kind& kind, void (Inputs::*put)(std::string, Gets, const Parts&)) {
    Parts parts;
    const Bytes entries = repeated(kind.entry, size_);
    parts.*kind.part = kind.around(entries);
    (this->*put)(kind.name, kind.gets, parts);
    parts.*kind.part = kind.around(concat(entries, kMalformed));
    const bool outermost = kind.part == &Parts::behind;
    (this->*put)(std::string(kind.name) + ", the last malformed",
                 outermost ? Gets::kNowhere : Gets::kSplit, parts);
  }

  std::size_t size_;
};

}  // namespace

std::vector<WorstInput> worst_inputs(std::size_t size) {
  Inputs inputs(size);
  inputs.add_heads();
  inputs.add_bodies();
  inputs.add_elements();
  return std::move(inputs.all);
}

}  // namespace tq::bench
