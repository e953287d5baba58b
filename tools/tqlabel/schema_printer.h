#ifndef TQLABEL_TOOL_SCHEMA_PRINTER_H
#define TQLABEL_TOOL_SCHEMA_PRINTER_H

// Prints a record by its schema: which fields there are, in which order, under which names and in
// which versions is known from the declarations that also read and write them. What a schema wraps
// it derives from, so that an overload for the kind within serves its wrappers, too; a kind that
// nobody has taught the printer does not compile.

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <type_traits>

#include "core/entry/label.h"
#include "text_tree.h"
#include "values.h"

namespace tq::tool {

class SchemaPrinter {
 public:
  SchemaPrinter(Tree& tree, const Scope& scope) : tree_(tree), scope_(scope) {}

  // Fields of a record.

  template <auto Member, class Codec, FieldName Name>
  void field(Field<Member, Codec, Name> kind,
             const typename MemberOf<decltype(Member)>::Record& record) {
    std::string values;
    static_cast<void>(kind.each(record, [&](const auto& item) {
      if (!values.empty()) values += ", ";
      values += show(Codec{}, item);
      return true;
    }));
    tree_.line(kind.kName, values);
  }

  template <auto Member, RawRule Rule, bool (*Accepts)(der::Octet)>
  void field(Raw<Member, Rule, Accepts> kind,
             const typename MemberOf<decltype(Member)>::Record& record) {
    tree_.line(kind.kName, show_element(bytes_of(record.*Member)));
  }

  template <auto Member, class Inner>
  void field(Nested<Member, Inner> kind,
             const typename MemberOf<decltype(Member)>::Record& record) {
    element(Inner{}, kind.kName, record.*Member);
  }

  template <Condition Holds, class Inner, class Otherwise>
  void field(Either<Holds, Inner, Otherwise> /*kind*/, const typename Inner::Record& record) {
    Holds(scope_) ? field(Inner{}, record) : field(Otherwise{}, record);
  }

  template <class R, class... Fields>
  void field(Run<R, Fields...> /*kind*/, const std::type_identity_t<R>& record) {
    if constexpr (sizeof...(Fields) == 0) {
      static_cast<void>(record);
    } else {
      (field(Fields{}, record), ...);
    }
  }

  void field(SignerCertificate kind, const Sign& sign) {
    tree_.line(kind.kName, show_digest(bytes_of(sign.certificate)));
  }
  void field(WrappedKey kind, const ENVELOPE& envelope) {
    tree_.line(kind.kName, show_bytes(bytes_of(envelope.encryptedKey)));
  }

  // Whole elements.

  template <class R, class... Fields>
  void element(Schema<R, Fields...> kind, std::string_view name,
               const std::type_identity_t<R>& record) {
    const Tree::Branch inside = tree_.branch(name);
    field(kind, record);
  }

  template <der::Tag Tag, class Inner>
  void element(Marking<Tag, Inner> kind, std::string_view name,
               const typename Inner::Record& record) {
    kind.absent(record, scope_) ? tree_.line(name, "absent") : element(Inner{}, name, record);
  }

  template <class Entry, class Rule>
  void element(List<Entry, Rule> /*kind*/, std::string_view name,
               const typename Entry::Record* first) {
    entries<Entry>(name, first);
  }

  template <class Entry>
  void element(Chained<Entry> /*kind*/, std::string_view name,
               const typename Entry::Record& first) {
    entries<Entry>(name, &first);
  }

  void element(Chained<AttributeSchema> /*kind*/, std::string_view name, const X509Name& first) {
    tree_.line(name, show_name(first));
  }

 private:
  static std::string show(Integer32 /*codec*/, std::uint32_t value) {
    return fmt::to_string(value);
  }
  static std::string show(Boolean /*codec*/, std::uint8_t value) {
    return value != 0 ? "yes" : "no";
  }
  static std::string show(Time /*codec*/, std::uint64_t seconds) { return show_time(seconds); }
  static std::string show(Octets<der::kPrintableString> /*codec*/, const ANYBUF& text) {
    return quoted(bytes_of(text));
  }
  static std::string show(Octets<der::kOctetString> /*codec*/, const ANYBUF& octets) {
    return show_bytes(bytes_of(octets));
  }
  static std::string show(Octets<der::kInteger> /*codec*/, const ANYBUF& number) {
    return show_bytes(bytes_of(number));
  }
  static std::string show(Octets<der::kObjectId> /*codec*/, const ANYBUF& octets) {
    return show_object_id(bytes_of(octets));
  }
  static std::string show(Bits /*codec*/, const ANYBUF& bits) {
    return show_digest(bytes_of(bits));
  }

  template <class Entry>
  void entries(std::string_view name, const typename Entry::Record* first) {
    std::size_t count = 0;
    for (const auto* entry = first; entry != nullptr; entry = entry->next) ++count;
    if (count == 0) return tree_.line(name, "none");
    const Tree::Branch inside =
        tree_.branch(name, fmt::format("{} {}", count, count == 1 ? "entry" : "entries"));
    std::size_t number = 0;
    for (const auto* entry = first; entry != nullptr; entry = entry->next) {
      element(Entry{}, fmt::format("[{}]", ++number), *entry);
    }
  }

  Tree& tree_;
  const Scope& scope_;
};

}  // namespace tq::tool

#endif
