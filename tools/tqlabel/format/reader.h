#ifndef TQLABEL_TOOL_FORMAT_READER_H
#define TQLABEL_TOOL_FORMAT_READER_H

// Reads a label by its schemas: which elements there are, in which order, under which names and in
// which versions is known from the declarations that also decode them. What a schema wraps it
// derives from, so that a function for the kind within serves its wrappers, too; a kind that nobody
// has taught the reader does not compile.

#include <fmt/format.h>

#include <type_traits>

#include "base/path_step.h"
#include "core/entry/label.h"
#include "format/item.h"

namespace tq::tool {

template <class Codec>
inline constexpr Kind kKindOf = Kind::kOctets;
template <>
inline constexpr Kind kKindOf<Integer32> = Kind::kInteger;
template <>
inline constexpr Kind kKindOf<Boolean> = Kind::kBoolean;
template <>
inline constexpr Kind kKindOf<Time> = Kind::kTime;
template <>
inline constexpr Kind kKindOf<Bits> = Kind::kBits;
template <>
inline constexpr Kind kKindOf<Octets<der::kPrintableString>> = Kind::kText;
template <>
inline constexpr Kind kKindOf<Octets<der::kInteger>> = Kind::kNumber;
template <>
inline constexpr Kind kKindOf<Octets<der::kObjectId>> = Kind::kObjectId;

class Reader {
 public:
  using What = Fault::What;

  Reader(const der::Octet* start, const Scope& scope) : start_(start), at_(start), scope_(scope) {
    scope_.views = true;
  }

  void set_layout(const Layout& layout) { scope_.layout = layout; }

  // The next element, of this kind or of any.

  der::Element take(der::Octet tag, der::Cursor& in) {
    der::Element element = look(in, type_name(tag));
    if (element.tag() != tag) {
      fail(What::kWrongType,
           fmt::format("{} in place of {}", type_name(element.tag()), type_name(tag)));
    }
    pass(in, element);
    return element;
  }

  der::Element next(der::Cursor& in, std::string_view what) {
    const der::Element element = look(in, what);
    pass(in, element);
    return element;
  }

  // Fields of a record.

  template <auto Member, class Codec, FieldName Name>
  void field(Field<Member, Codec, Name> kind, typename MemberOf<decltype(Member)>::Record& record,
             Item& parent, der::Cursor& in) {
    const PathStep step = at(kind.kName);
    if constexpr (kind.kElements == 1) {
      parent.children.push_back(value<Codec>(kind.kName, record.*Member, in));
    } else {
      Item values{.name = kind.kName, .kind = Kind::kValues};
      for (auto& item : record.*Member) values.children.push_back(value<Codec>({}, item, in));
      parent.children.push_back(std::move(values));
    }
  }

  template <auto Member, RawRule Rule, bool (*Accepts)(der::Octet)>
  void field(Raw<Member, Rule, Accepts> kind, typename MemberOf<decltype(Member)>::Record& record,
             Item& parent, der::Cursor& in) {
    const PathStep step = at(kind.kName);
    if (Rule == RawRule::kOptional && (in.at_end() || !Accepts(in.peek()))) {
      parent.children.push_back({.name = kind.kName});
    } else {
      opaque(kind, record, parent, in);
    }
  }

  void field(SignerCertificate kind, Sign& sign, Item& parent, der::Cursor& in) {
    const PathStep step = at(kind.kName);
    opaque(kind, sign, parent, in);
  }
  void field(WrappedKey kind, ENVELOPE& envelope, Item& parent, der::Cursor& in) {
    const PathStep step = at(kind.kName);
    opaque(kind, envelope, parent, in);
  }

  template <auto Member, class Inner>
  void field(Nested<Member, Inner> kind, typename MemberOf<decltype(Member)>::Record& /*record*/,
             Item& parent, der::Cursor& in) {
    const PathStep step = at(kind.kName);
    parent.children.push_back(element(Inner{}, kind.kName, in));
  }

  template <Condition Holds, class Inner, class Otherwise>
  void field(Either<Holds, Inner, Otherwise> /*kind*/, typename Inner::Record& record, Item& parent,
             der::Cursor& in) {
    Holds(scope_) ? field(Inner{}, record, parent, in) : field(Otherwise{}, record, parent, in);
  }

  template <class R, class... Fields>
  void field(Run<R, Fields...> /*kind*/, std::type_identity_t<R>& record, Item& parent,
             der::Cursor& in) {
    (field(Fields{}, record, parent, in), ...);
  }

  // Each has its tag in "1.1.2", may be missing there, and comes in any order.
  void field(Markings kind, Body& body, Item& parent, der::Cursor& in) {
    if (!scope_.layout.multi_sign) return plain(kind, body, parent, in);
    const std::size_t first = parent.children.size();
    while (any_of(kind, [&](auto marking) { return tagged(marking, parent, in); })) {
    }
    for_each(kind, [&](auto marking) { settle(marking.kName, parent, first); });
  }

  // In "1.1" what stands behind extension values is logs, whatever its number.
  void field(Tail kind, Body& body, Item& parent, der::Cursor& in) {
    if (!scope_.layout.v11) return plain(kind, body, parent, in);
    tail(kind, parent, in);
  }

  // Whole elements.

  template <class R, class... Fields>
  Item element(Schema<R, Fields...> kind, std::string_view name, der::Cursor& in) {
    Item item{.name = name, .kind = Kind::kRecord, .element = take(der::kSequence, in)};
    R record{};
    const OnExit release([&] { kind.release(record); });
    der::Cursor inside = enter(item.element);
    item.children.reserve(sizeof...(Fields));
    field(static_cast<Run<R, Fields...>>(kind), record, item, inside);
    ignored(item, inside);
    leave(item.element);
    return item;
  }

  template <class Entry, class Rule>
  Item element(List<Entry, Rule> /*kind*/, std::string_view name, der::Cursor& in) {
    if (in.at_end() && Rule::may_be_absent(scope_)) return {.name = name};
    Item item{.name = name, .kind = Kind::kList};
    if (Rule::reads_null(scope_) && in.peek() == der::kNull) {
      item.element = take(der::kNull, in);
      if (item.element.length != 0) fail(What::kBadValue, "a NULL with content", item.element);
      return item;
    }
    item.element = take(der::kSequence, in);
    der::Cursor inside = enter(item.element);
    const der::Element set = take(der::kSet, inside);
    if (set.length == 0) fail(What::kBadValue, "a list of no entries is not a SET", set);
    item.exact = inside.at_end();
    skip(inside);
    entries(Entry{}, item, set);
    leave(item.element);
    return item;
  }

  template <class Entry>
  Item element(Chained<Entry> /*kind*/, std::string_view name, der::Cursor& in) {
    const Kind kind = std::is_same_v<Entry, AttributeSchema> ? Kind::kName : Kind::kList;
    Item item{.name = name, .kind = kind, .element = take(der::kSequence, in)};
    entries(Entry{}, item, item.element);
    leave(item.element);
    return item;
  }

  Item element(AttributeSchema /*kind*/, std::string_view /*name*/, der::Cursor& in) {
    Item item{.kind = Kind::kAttribute, .element = take(der::kSet, in)};
    der::Cursor inside = enter(item.element);
    const der::Element pair = take(der::kSequence, inside);
    item.exact = inside.at_end();
    der::Cursor parts = enter(pair);
    take(der::kObjectId, parts);
    const der::Element value = next(parts, "a string");
    item.exact = item.exact && parts.at_end();
    skip(parts);
    at_ = pair.content() + pair.length;
    skip(inside);
    X509Name record{};
    ANYBUF whole = view_of(item.element.start, item.element.size(), 0);
    if (DecodeX509NameDer(&whole, &record) != 0) {
      fail(What::kWrongType, type_name(value.tag()) + " is no string of a name", value);
    }
    FreeX509Name(&record);
    leave(item.element);
    return item;
  }

  // The elements behind the last one that is known.
  void ignored(Item& item, der::Cursor& in) {
    while (!in.at_end()) {
      item.children.push_back(
          {.name = "ignored", .kind = Kind::kIgnored, .element = next(in, "an element")});
    }
  }

  [[noreturn]] void fail(What what, std::string why) { fail_at(what, std::move(why), at_); }
  [[noreturn]] void fail(What what, std::string why, const der::Element& element) {
    fail_at(what, std::move(why), element.start);
  }

  // What is read while the step lives belongs to the child of that name, or to that entry.
  [[nodiscard]] PathStep at(std::string_view name) {
    return {path_, path_.empty() ? std::string(name) : fmt::format(".{}", name)};
  }
  [[nodiscard]] PathStep at(std::size_t number) { return {path_, fmt::format("[{}]", number + 1)}; }

  der::Cursor enter(const der::Element& element) {
    at_ = element.content();
    return der::Cursor(element);
  }
  void leave(const der::Element& element) { at_ = element.content() + element.length; }

 private:
  [[noreturn]] void fail_at(What what, std::string why, const der::Octet* at) {
    throw Fault{what, path_, static_cast<std::size_t>(at - start_), std::move(why)};
  }

  der::Element look(der::Cursor in, std::string_view what) {
    der::Element element;
    if (in.at_end()) fail(What::kMissing, fmt::format("missing: {} is expected", what));
    if (!in.next(element)) {
      fail(What::kNotDer, "not DER: no valid tag, or no length that fits into what is around it");
    }
    return element;
  }
  void pass(der::Cursor& in, der::Element& element) {
    static_cast<void>(in.next(element));
    leave(element);
  }
  void pass(der::Cursor& in, const der::Element& element) {
    der::Element again = element;
    pass(in, again);
  }
  void skip(der::Cursor& in) {
    while (!in.at_end()) next(in, "an element");
  }

  template <class Codec, class Value>
  Item value(std::string_view name, Value& value, der::Cursor& in) {
    Item item{.name = name, .kind = kKindOf<Codec>, .element = take(Codec::kTag, in)};
    if (!Codec::read(item.element, value, scope_)) {
      fail(What::kBadValue, fmt::format("no {} that a label can hold", type_name(Codec::kTag)),
           item.element);
    }
    return item;
  }

  // An element whose inside is read by the library alone.
  template <class K, class Record>
  void opaque(K kind, Record& record, Item& parent, der::Cursor& in) {
    der::Cursor reading = in;
    const der::Element element = look(in, "an element");
    if (!kind.read(record, scope_, reading)) {
      fail(What::kWrongType,
           fmt::format("{} of a form that is not expected here", type_name(element.tag())));
    }
    pass(in, element);
    parent.children.push_back({.name = kind.kName, .kind = Kind::kElement, .element = element});
  }

  template <class Entry>
  void entries(Entry entry, Item& item, const der::Element& around) {
    der::Cursor in = enter(around);
    do {
      const PathStep step = at(item.children.size());
      item.children.push_back(element(entry, {}, in));
    } while (!in.at_end());
  }

  template <class R, class... Fields>
  void plain(Run<R, Fields...> kind, R& record, Item& parent, der::Cursor& in) {
    field(kind, record, parent, in);
  }

  template <class R, class... Fields, class Function>
  static bool any_of(Run<R, Fields...> /*kind*/, Function function) {
    return (function(Fields{}) || ...);
  }
  template <class R, class... Fields, class Function>
  static void for_each(Run<R, Fields...> /*kind*/, Function function) {
    (function(Fields{}), ...);
  }

  // Reads the one element within an EXPLICIT tag.
  template <auto Member, class Inner>
  void explicitly(Nested<Member, Inner> kind, Item& parent, der::Cursor& in) {
    const PathStep step = at(kind.kName);
    const der::Element tag = next(in, "a tag");
    der::Cursor inside = enter(tag);
    if (inside.at_end()) fail(What::kMissing, "nothing within " + type_name(tag.tag()));
    Item item = element(Inner{}, kind.kName, inside);
    if (!inside.at_end()) fail(What::kBadValue, "a second element within " + type_name(tag.tag()));
    item.exact = item.exact && tag.tag() == Inner::kTag;
    item.element = tag;
    parent.children.push_back(std::move(item));
  }

  template <auto Member, class Inner>
  bool tagged(Nested<Member, Inner> kind, Item& parent, der::Cursor& in) {
    if (in.peek() != Inner::kTag) return false;
    explicitly(kind, parent, in);
    return true;
  }

  // A marking that did not come is absent; of one that came twice the last counts.
  static void settle(std::string_view name, Item& parent, std::size_t first) {
    const auto begin = parent.children.begin() + static_cast<std::ptrdiff_t>(first);
    const auto count = std::count_if(begin, parent.children.end(),
                                     [&](const Item& item) { return item.name == name; });
    if (count == 0) parent.children.push_back({.name = name});
    if (count > 1) parent.exact = false;
  }

  template <auto Extends, class ExtendsList, auto Logs, class LogsList>
  void both(Nested<Extends, ExtendsList> extends, Nested<Logs, LogsList> logs, Item& parent,
            der::Cursor& in) {
    const bool extended = tagged(extends, parent, in);
    if (!extended) parent.children.push_back({.name = extends.kName});
    const bool logged = extended ? !in.at_end() : in.peek() == LogsList::kTag;
    if (!logged) {
      parent.children.push_back({.name = logs.kName});
      return;
    }
    if ((in.peek() & ~der::kNumberBits) != (der::kContext0 & ~der::kNumberBits)) {
      const PathStep step = at(logs.kName);
      const der::Element element = look(in, "[1]");
      fail(What::kWrongType, type_name(element.tag()) + " in place of [1]");
    }
    explicitly(logs, parent, in);
  }
  template <class R, class First, class Second>
  void tail(Run<R, First, Second> /*kind*/, Item& parent, der::Cursor& in) {
    both(First{}, Second{}, parent, in);
  }

  const der::Octet* start_;
  const der::Octet* at_;  // where reading stands, for what goes wrong
  Scope scope_;
  std::string path_;
};

}  // namespace tq::tool

#endif
