#ifndef TQ_DER_SCHEMA_SCHEMA_H
#define TQ_DER_SCHEMA_SCHEMA_H

// One declaration per record. A record's wire order is stated once, as a constexpr list of fields;
// its writer, its reader, the release of what it owns and the sum of its buffers come from that
// list.
//
// A field is a type with five static functions: plan (adds up the size and says whether the value
// can be written), write, read, release and buffers. Everything that can fail in writing fails in
// plan.

#include <algorithm>
#include <string_view>

#include "asn1/node.h"
#include "der/schema/codec.h"

namespace tq {

template <std::size_t N>
struct FieldName {
  char text[N] = {};
  consteval FieldName(const char (&name)[N]) {  // NOLINT(google-explicit-constructor): a literal
    for (std::size_t i = 0; i < N; ++i) text[i] = name[i];
  }
};

// The name of a member, as the compiler spells the pointer to it: "... &tq::Record::name]".
template <auto Member>
consteval std::string_view member_name() {
  std::string_view text = __PRETTY_FUNCTION__;
  text = text.substr(0, text.find_first_of(";]", text.find("Member = ")));
  return text.substr(text.rfind(':') + 1);
}

template <class>
struct MemberOf;
template <class R, class V>
struct MemberOf<V R::*> {
  using Record = R;
  using Value = V;
};

// One value, one element; an array member is one element per item.
template <auto Member, class CodecType, FieldName Name>
struct Field {
  using Record = typename MemberOf<decltype(Member)>::Record;
  using Value = typename MemberOf<decltype(Member)>::Value;
  using Codec = CodecType;
  static constexpr bool kBuffer = std::is_same_v<Value, ANYBUF>;
  static constexpr std::size_t kElements = std::is_array_v<Value> ? std::extent_v<Value> : 1;
  static constexpr std::string_view kName = sizeof Name.text > 1
                                                ? std::string_view(Name.text, sizeof Name.text - 1)
                                                : member_name<Member>();

  // Calls one function per item and stops at the first that fails.
  template <class R, class Function>
  [[nodiscard]] static bool each(R& record, Function function) {
    if constexpr (std::is_array_v<Value>) {
      return std::ranges::all_of(record.*Member, function);
    } else {
      return function(record.*Member);
    }
  }

  [[nodiscard]] static bool plan(const Record& record, const Scope& /*scope*/, der::Plan& plan) {
    return each(record, [&](const auto& item) { return Codec::plan(item, plan); });
  }
  static der::Writer write(const Record& record, const Scope& /*scope*/, der::Writer out) {
    static_cast<void>(each(record, [&](const auto& item) {
      out = Codec::write(item, out);
      return true;
    }));
    return out;
  }
  [[nodiscard]] static bool read(Record& record, const Scope& scope, der::Cursor& in) {
    return each(record, [&](auto& item) {
      der::Element element;
      return in.take(Codec::kTag, element) && Codec::read(element, item, scope);
    });
  }
  static void release(Record& record) {
    if constexpr (kBuffer) clear(record.*Member);
  }
  [[nodiscard]] static std::uint64_t buffers(const Record& record) {
    if constexpr (kBuffer) return (record.*Member).length;
    return 0;
  }
};

template <auto M, FieldName Name = "">
inline constexpr Field<M, Integer32, Name> integer{};
template <auto M, FieldName Name = "">
inline constexpr Field<M, Boolean, Name> boolean{};
template <auto M, FieldName Name = "">
inline constexpr Field<M, Time, Name> timestamp{};
template <auto M, FieldName Name = "">
inline constexpr Field<M, Octets<der::kPrintableString>, Name> printable{};
template <auto M, FieldName Name = "">
inline constexpr Field<M, Octets<der::kOctetString>, Name> octets{};
template <auto M, FieldName Name = "">
inline constexpr Field<M, Octets<der::kInteger>, Name> integer_octets{};
template <auto M, FieldName Name = "">
inline constexpr Field<M, Octets<der::kObjectId>, Name> object_id{};
template <auto M, FieldName Name = "">
inline constexpr Field<M, Bits, Name> bits{};

// Raw elements: one whole element, kept with its header. What may stand there is a predicate on the
// tag octet, asked in both directions, so that nothing is written that would not be read back.

constexpr bool is_sequence(der::Octet tag) { return tag == der::kSequence; }
constexpr bool is_sequence_or_object_id(der::Octet tag) {
  return tag == der::kSequence || tag == der::kObjectId;
}
constexpr bool is_not_bit_string(der::Octet tag) { return tag != der::kBitString; }

enum class RawRule {
  kOptional,  // read when the tag fits; nothing is written for an empty field
  kRequired,  // must be there and fit
  kLenient,   // must be there; another kind of element is passed over and leaves the field empty
};

template <auto Member, RawRule Rule, bool (*Accepts)(der::Octet)>
struct Raw {
  using Record = typename MemberOf<decltype(Member)>::Record;
  static constexpr std::size_t kElements = 1;
  static constexpr std::string_view kName = member_name<Member>();

  [[nodiscard]] static bool plan(const Record& record, const Scope& /*scope*/, der::Plan& plan) {
    const ANYBUF& field = record.*Member;
    if (!has_its_bytes(field)) return false;
    if (field.length == 0) return Rule == RawRule::kOptional;
    plan.add_whole(field.length);
    return der::is_one_element(field.data, field.length) && Accepts(field.data[0]);
  }
  static der::Writer write(const Record& record, const Scope& /*scope*/, der::Writer out) {
    out.octets((record.*Member).data, (record.*Member).length);
    return out;
  }
  [[nodiscard]] static bool read(Record& record, const Scope& scope, der::Cursor& in) {
    const bool fits = !in.at_end() && Accepts(in.peek());
    if (!fits && Rule == RawRule::kOptional) return true;
    der::Element element;
    if (!in.next(element)) return false;
    if (!fits) return Rule == RawRule::kLenient;
    return store(record.*Member, element.start, element.size(), der::type_word(element.tag()),
                 scope);
  }
  static void release(Record& record) { clear(record.*Member); }
  [[nodiscard]] static std::uint64_t buffers(const Record& record) {
    return (record.*Member).length;
  }
};

template <auto M, bool (*Accepts)(der::Octet)>
inline constexpr Raw<M, RawRule::kOptional, Accepts> raw_optional{};
template <auto M, bool (*Accepts)(der::Octet)>
inline constexpr Raw<M, RawRule::kRequired, Accepts> raw_required{};
template <auto M, bool (*Accepts)(der::Octet)>
inline constexpr Raw<M, RawRule::kLenient, Accepts> raw_lenient{};

// Fields in wire order, up to the first failure.
template <class R, class... Fields>
struct Run {
  using Record = R;
  static constexpr std::size_t kElements = (Fields::kElements + ... + 0);

  [[nodiscard]] static bool plan(const R& record, const Scope& scope, der::Plan& plan) {
    return (... && Fields::plan(record, scope, plan));
  }
  static der::Writer write(const R& record, const Scope& scope, der::Writer out) {
    ((out = Fields::write(record, scope, out)), ...);
    return out;
  }
  [[nodiscard]] static bool read(R& record, const Scope& scope, der::Cursor& in) {
    return (... && Fields::read(record, scope, in));
  }
  static void release(R& record) { (Fields::release(record), ...); }
  [[nodiscard]] static std::uint64_t buffers(const R& record) {
    return (Fields::buffers(record) + ... + 0);
  }
};

// The same, as one SEQUENCE. Elements after the last field are ignored.
template <class R, class... Fields>
struct Schema : Run<R, Fields...> {
  using Inside = Run<R, Fields...>;

  [[nodiscard]] static bool plan_element(const R& record, const Scope& scope, der::Plan& plan) {
    der::Plan::Open open;
    if (!plan.open(open) || !Inside::plan(record, scope, plan)) return false;
    plan.close(open);
    return true;
  }
  static der::Writer write_element(const R& record, const Scope& scope, der::Writer out) {
    out.open(der::kSequence);
    return Inside::write(record, scope, out);
  }
  [[nodiscard]] static bool read_element(R& record, const Scope& scope, der::Cursor& in) {
    der::Element element;
    if (!in.take(der::kSequence, element)) return false;
    der::Cursor inside(element);
    return Inside::read(record, scope, inside) && inside.finish();
  }
};

template <class First, class... Rest>
consteval auto run(First /*first*/, Rest... /*rest*/) {
  using Record = typename First::Record;
  static_assert((std::is_same_v<Record, typename Rest::Record> && ...), "one record per run");
  return Run<Record, First, Rest...>{};
}

template <class First, class... Rest>
consteval auto record(First /*first*/, Rest... /*rest*/) {
  using Record = typename First::Record;
  static_assert((std::is_same_v<Record, typename Rest::Record> && ...), "one record per schema");
  return Schema<Record, First, Rest...>{};
}

// A record within a record.
template <auto Member, class Inner>
struct Nested {
  using Record = typename MemberOf<decltype(Member)>::Record;
  static constexpr std::size_t kElements = 1;
  static constexpr std::string_view kName = member_name<Member>();
  static_assert(std::is_same_v<typename MemberOf<decltype(Member)>::Value, typename Inner::Record>);

  [[nodiscard]] static bool plan(const Record& record, const Scope& scope, der::Plan& plan) {
    return Inner::plan_element(record.*Member, scope, plan);
  }
  static der::Writer write(const Record& record, const Scope& scope, der::Writer out) {
    return Inner::write_element(record.*Member, scope, out);
  }
  [[nodiscard]] static bool read(Record& record, const Scope& scope, der::Cursor& in) {
    return Inner::read_element(record.*Member, scope, in);
  }
  static void release(Record& record) { Inner::release(record.*Member); }
  [[nodiscard]] static std::uint64_t buffers(const Record& record) {
    return Inner::buffers(record.*Member);
  }
};

template <auto M, const auto& Inner>
inline constexpr Nested<M, std::remove_cvref_t<decltype(Inner)>> nested{};

// Version tests within a record.

using Condition = bool (*)(const Scope&);

constexpr bool in_11(const Scope& scope) { return scope.layout.v11; }
constexpr bool in_multi_sign(const Scope& scope) { return scope.layout.multi_sign; }
constexpr bool is_aligned(const Scope& scope) { return scope.layout.aligned; }

template <Condition Holds, class Inner, class Otherwise>
struct Either {
  using Record = typename Inner::Record;
  static constexpr std::size_t kElements = Inner::kElements;

  [[nodiscard]] static bool plan(const Record& record, const Scope& scope, der::Plan& plan) {
    return Holds(scope) ? Inner::plan(record, scope, plan) : Otherwise::plan(record, scope, plan);
  }
  static der::Writer write(const Record& record, const Scope& scope, der::Writer out) {
    return Holds(scope) ? Inner::write(record, scope, out) : Otherwise::write(record, scope, out);
  }
  [[nodiscard]] static bool read(Record& record, const Scope& scope, der::Cursor& in) {
    return Holds(scope) ? Inner::read(record, scope, in) : Otherwise::read(record, scope, in);
  }
  // Both alternatives own what they own whatever the version; a second release finds nothing.
  static void release(Record& record) {
    Inner::release(record);
    Otherwise::release(record);
  }
  [[nodiscard]] static std::uint64_t buffers(const Record& record) {
    return Inner::buffers(record);
  }
};

template <Condition Holds, class First, class Second>
consteval auto either(First /*holds*/, Second /*otherwise*/) {
  static_assert(std::is_same_v<typename First::Record, typename Second::Record>);
  return Either<Holds, First, Second>{};
}

template <Condition Holds, class First>
consteval auto when(First /*field*/) {
  return Either<Holds, First, Run<typename First::Record>>{};
}

// Whole elements as nodes.

// Writes a record to a node; one that adds nothing to its label leaves the slot alone.
template <class S>
[[nodiscard]] std::int32_t encode(S /*schema*/, const typename S::Record* record, ANYBUF** slot,
                                  const Scope& scope = {}) {
  if (record == nullptr || slot == nullptr) return -1;
  der::Plan plan(der::Plan::Keep::kLengths);
  if (!S::plan_element(*record, scope, plan) || !plan.fits()) return -1;
  if (plan.total() == 0) return 0;
  Node node(asn1::new_inline(plan.total(), 0));
  if (!node) return -1;
  S::write_element(*record, scope, der::Writer(node->data, plan));
  node->type = der::type_word(node->data[0]);
  *slot = node.release();
  return 0;
}

template <class S>
[[nodiscard]] std::int32_t decode(S /*schema*/, const ANYBUF* element, typename S::Record* record,
                                  const Scope& scope = {}) {
  if (element == nullptr || element->data == nullptr || record == nullptr) return -1;
  der::Cursor in(element->data, element->length);
  return S::read_element(*record, scope, in) ? 0 : -1;
}

// Writes a record to the caller's buffer under the output-buffer protocol.
template <class S>
[[nodiscard]] std::int32_t encode_out(S /*schema*/, const typename S::Record& record,
                                      const Scope& scope, std::uint8_t* buffer,
                                      std::uint32_t* length) {
  der::Plan plan(buffer == nullptr ? der::Plan::Keep::kTotalOnly : der::Plan::Keep::kLengths);
  if (!S::plan_element(record, scope, plan) || !plan.fits()) return -1;
  if (buffer != nullptr) {
    if (*length < plan.total()) return -1;
    S::write_element(record, scope, der::Writer(buffer, plan));
  }
  *length = plan.total();
  return 0;
}

// The same as encode() for records that every label version writes in its own way.
template <class S>
[[nodiscard]] std::int32_t encode_versioned(S schema, const TqLabelHandle* label,
                                            const typename S::Record* record, ANYBUF** slot) {
  if (label == nullptr) return -1;
  const Scope scope = scope_of(*label);
  return scope.layout.known() ? encode(schema, record, slot, scope) : -1;
}

template <class S>
[[nodiscard]] std::int32_t decode_versioned(S schema, const ANYBUF* element,
                                            typename S::Record* record,
                                            const TqLabelHandle* label) {
  if (label == nullptr) return -1;
  const Scope scope = scope_of(*label);
  return scope.layout.known() ? decode(schema, element, record, scope) : -1;
}

template <class S>
void release(S /*schema*/, typename S::Record* record) {
  if (record != nullptr) S::release(*record);
}

}  // namespace tq

#endif
