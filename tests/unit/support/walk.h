#ifndef TQ_TESTS_SUPPORT_WALK_H
#define TQ_TESTS_SUPPORT_WALK_H

// Goes through a record the way its schema declares it, so that one visitor serves every record.

#include <tqasn1/asn1.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "crypto/algorithms.h"
#include "crypto/envelopes.h"
#include "crypto/names.h"
#include "crypto/signatures.h"
#include "der/schema/list.h"
#include "der/schema/tagged.h"
#include "unit/support/bytes.h"

namespace tq::test {

// A schema as a parameter of typed tests, and its name.
template <const auto& S>
struct Of {
  using Schema = std::remove_cvref_t<decltype(S)>;
  // "... [with const auto& S = tq::kName; ...]" or "... [S = kName]"
  static std::string name() {
    std::string_view text = __PRETTY_FUNCTION__;
    text.remove_prefix(text.find("S = ") + 4);
    text = text.substr(0, text.find_first_of(";]"));
    return std::string(text.substr(text.find_last_of(":&") + 1));
  }
};

struct SchemaNames {
  template <class T>
  static std::string GetName(int /*index*/) {
    return T::name();
  }
};

// What a visitor may care for; it hides what it handles.
struct Visitor {
  template <class Number>
  void value(const Number& /*number*/) {}
  void raw(const ANYBUF& /*field*/, RawRule /*rule*/, bool (* /*accepts*/)(der::Octet)) {}
  template <class Record>
  void list(const Record* /*first*/) {}  // before its entries
  template <class Record>
  void chain(const Record& /*first*/) {}  // the same, of one whose first entry is embedded
  template <class Record>
  void marking(const Record& /*record*/) {}
  void attribute(const X509Name& /*attribute*/) {}
  void certificate(const Sign& /*sign*/) {}
  void key(const ENVELOPE& /*envelope*/) {}
};

template <class V>
class Walk {
 public:
  Walk(V& visitor, const Scope& scope) : visitor_(visitor), scope_(scope) {}

  template <auto M, class Codec, FieldName Name, class R>
  void operator()(Field<M, Codec, Name> /*field*/, R& record) {
    static_cast<void>(Field<M, Codec, Name>::each(record, [&](auto& item) {
      visitor_.value(item);
      return true;
    }));
  }
  template <auto M, RawRule Rule, bool (*Accepts)(der::Octet), class R>
  void operator()(Raw<M, Rule, Accepts> /*field*/, R& record) {
    visitor_.raw(record.*M, Rule, Accepts);
  }
  template <class R, class... Fields>
  void operator()(Run<R, Fields...> /*run*/, R& record) {
    ((*this)(Fields{}, record), ...);
  }
  template <auto M, class Inner, class R>
  void operator()(Nested<M, Inner> /*field*/, R& record) {
    (*this)(Inner{}, record.*M);
  }
  template <Condition Holds, class First, class Second, class R>
  void operator()(Either<Holds, First, Second> /*field*/, R& record) {
    if (Holds(scope_)) {
      (*this)(First{}, record);
    } else {
      (*this)(Second{}, record);
    }
  }
  template <der::Tag Tag, class Inner, class R>
  void operator()(Marking<Tag, Inner> /*marking*/, R& record) {
    visitor_.marking(record);
    (*this)(Inner{}, record);
  }
  template <class Entry, class Rule>
  void operator()(List<Entry, Rule> /*list*/, typename Entry::Record*& first) {
    visitor_.list(first);
    for (auto* entry = first; entry != nullptr; entry = entry->next) (*this)(Entry{}, *entry);
  }
  template <class Entry>
  void operator()(Chained<Entry> /*chain*/, typename Entry::Record& first) {
    visitor_.chain(first);
    for (auto* entry = &first; entry != nullptr; entry = entry->next) (*this)(Entry{}, *entry);
  }
  void operator()(AttributeSchema /*schema*/, X509Name& attribute) {
    visitor_.attribute(attribute);
  }
  void operator()(SignerCertificate /*field*/, Sign& sign) { visitor_.certificate(sign); }
  void operator()(WrappedKey /*field*/, ENVELOPE& envelope) { visitor_.key(envelope); }

 private:
  V& visitor_;
  const Scope& scope_;
};

template <class S, class V>
V walk(S schema, typename S::Record& record, const Scope& scope, V visitor) {
  Walk<V>{visitor, scope}(schema, record);
  return visitor;
}

// What a record holds: the fields that own bytes, those that borrow them, the blobs that are made
// for identity-based values, and the entries that have a block of their own.
struct Census : Visitor {
  std::size_t owned = 0;
  std::size_t borrowed = 0;
  std::size_t blobs = 0;
  std::size_t entries = 0;

  using Visitor::value;
  void value(const ANYBUF& field) {
    if (field.data == nullptr) return;
    ++(field.form == ASN1_FORM_OWNED ? owned : borrowed);
  }
  void raw(const ANYBUF& field, RawRule /*rule*/, bool (* /*accepts*/)(der::Octet)) {
    value(field);
  }
  template <class Record>
  void list(const Record* first) {
    for (; first != nullptr; first = first->next) ++entries;
  }
  template <class Record>
  void chain(const Record& first) {
    list(first.next);
  }
  void attribute(const X509Name& attribute) {
    value(attribute.type);
    value(attribute.value);
  }
  void certificate(const Sign& sign) {
    value(sign.certificate);
    if (is_identity_signature(sign.algorithm)) ++blobs;
  }
  void key(const ENVELOPE& envelope) {
    value(envelope.encryptedKey);
    // In "6.0" a name that reads like the identifier is no reason for a blob.
    if (is_identity_wrapping(envelope.algorithm) && envelope.encryptedKey.type == 0 &&
        envelope.encryptedKey.data != nullptr) {
      ++blobs;
    }
  }
};

// Everything that a record says, in the order of its fields.
struct Digest : Visitor {
  Bytes bytes;

  template <class Number>
  void value(const Number& number) {
    add(&number, sizeof number);
  }
  void value(const ANYBUF& field) {
    value(field.length);
    if (field.length != 0) add(field.data, field.length);
  }
  void raw(const ANYBUF& field, RawRule /*rule*/, bool (* /*accepts*/)(der::Octet)) {
    value(field);
  }
  template <class Record>
  void list(const Record* first) {
    std::size_t count = 0;
    for (; first != nullptr; first = first->next) ++count;
    value(count);
  }
  template <class Record>
  void chain(const Record& first) {
    list(&first);
  }
  void attribute(const X509Name& attribute) {  // the type of a value is not always kept
    value(attribute.type);
    value(attribute.value);
  }
  void certificate(const Sign& sign) { value(sign.certificate); }
  void key(const ENVELOPE& envelope) { value(envelope.encryptedKey); }

 private:
  void add(const void* from, std::size_t length) {
    const auto* first = static_cast<const std::uint8_t*>(from);
    bytes.insert(bytes.end(), first, first + length);
  }
};

// Whether a record holds what its reader takes and its writer refuses.
struct Refusals : Visitor {
  bool found = false;

  void raw(const ANYBUF& field, RawRule rule, bool (* /*accepts*/)(der::Octet)) {
    if (rule == RawRule::kLenient && field.length == 0)
      found = true;  // another element stood there
  }
  void attribute(const X509Name& attribute) {
    static const Bytes kEmail = hex("2A 86 48 86 F7 0D 01 09 01");
    const ANYBUF& type = attribute.type;
    const bool email = type.length == kEmail.size() && bytes_of(&type) == kEmail;
    constexpr std::uint8_t kLastOctets[] = {3, 6, 7, 8, 10, 11};
    if (!email && (type.length != 3 ||
                   std::ranges::find(kLastOctets, type.data[2]) == std::end(kLastOctets))) {
      found = true;
    }
  }
  void certificate(const Sign& sign) {
    if (sign.algorithm.length != 0 && sign.certificate.length == 0) found = true;
  }
  void key(const ENVELOPE& envelope) {  // blobs are tested for themselves
    if (is_identity_wrapping(envelope.algorithm)) found = true;
  }
};

}  // namespace tq::test

#endif
