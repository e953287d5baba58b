#ifndef TQ_TESTS_SUPPORT_WALK_H
#define TQ_TESTS_SUPPORT_WALK_H

// Goes through a record the way its schema declares it, so that one visitor serves every record.

#include "crypto/algorithms.h"
#include "crypto/envelopes.h"
#include "crypto/names.h"
#include "crypto/signatures.h"
#include "der/schema/list.h"
#include "der/schema/tagged.h"
#include "unit/support/bytes.h"

namespace tq::test {

inline const Bytes kEmail = hex("2A 86 48 86 F7 0D 01 09 01");

// A schema as a parameter of typed tests.
template <const auto& S>
struct Of {
  using Schema = std::remove_cvref_t<decltype(S)>;
};

// A visitor has an overload of value() for each kind of value, and members of its own for what it
// treats otherwise: raw(), list(), marking(), attribute(), certificate() and key().
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
    if constexpr (requires { visitor_.raw(record.*M, Rule, Accepts); }) {
      visitor_.raw(record.*M, Rule, Accepts);
    } else {
      visitor_.value(record.*M);
    }
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
    Holds(scope_) ? (*this)(First{}, record) : (*this)(Second{}, record);
  }
  template <der::Tag Tag, class Inner, class R>
  void operator()(Marking<Tag, Inner> /*marking*/, R& record) {
    if constexpr (requires { visitor_.marking(record); }) visitor_.marking(record);
    (*this)(Inner{}, record);
  }
  template <class Entry, class Rule>
  void operator()(List<Entry, Rule> /*list*/, typename Entry::Record*& first) {
    list(first);
    for (auto* entry = first; entry != nullptr; entry = entry->next) (*this)(Entry{}, *entry);
  }
  template <class Entry>
  void operator()(Chained<Entry> /*chain*/, typename Entry::Record& first) {
    list(first.next);
    for (auto* entry = &first; entry != nullptr; entry = entry->next) (*this)(Entry{}, *entry);
  }
  void operator()(AttributeSchema /*schema*/, X509Name& attribute) {
    if constexpr (requires { visitor_.attribute(attribute); }) {
      visitor_.attribute(attribute);
    } else {
      visitor_.value(attribute.type);  // the type of a value is not always kept
      visitor_.value(attribute.value);
    }
  }
  void operator()(SignerCertificate /*field*/, Sign& sign) {
    if constexpr (requires { visitor_.certificate(sign); }) {
      visitor_.certificate(sign);
    } else {
      visitor_.value(sign.certificate);
    }
  }
  void operator()(WrappedKey /*field*/, ENVELOPE& envelope) {
    if constexpr (requires { visitor_.key(envelope); }) {
      visitor_.key(envelope);
    } else {
      visitor_.value(envelope.encryptedKey);
    }
  }

 private:
  template <class Record>
  void list(Record*& first) {  // before its entries
    if constexpr (requires { visitor_.list(first); }) visitor_.list(first);
  }

  V& visitor_;
  const Scope& scope_;
};

template <class S, class V>
V walk(S schema, typename S::Record& record, const Scope& scope, V visitor) {
  Walk<V>{visitor, scope}(schema, record);
  return visitor;
}

// Everything that a record says, in the order of its fields.
struct Digest {
  Bytes bytes;

  template <class Number>
  void value(const Number& number) {
    add(&number, sizeof number);
  }
  void value(const ANYBUF& field) {
    value(field.length);
    if (field.length != 0) add(field.data, field.length);
  }
  template <class Record>
  void list(const Record* first) {
    std::size_t count = 0;
    for (; first != nullptr; first = first->next) ++count;
    value(count);
  }

 private:
  void add(const void* from, std::size_t length) {
    const auto* first = static_cast<const std::uint8_t*>(from);
    bytes.insert(bytes.end(), first, first + length);
  }
};

}  // namespace tq::test

#endif
