// Writes a label by its schemas from JSON: the counterpart of the reader. Elements are put together
// from the inside out, so that whatever the JSON says can be said, to the byte.

#include <fmt/format.h>

#include <set>

#include "base/path_step.h"
#include "core/entry/label.h"
#include "format/json.h"
#include "format/parse.h"

namespace tq::tool {
namespace {

using Output = std::vector<std::uint8_t>;

class Builder {
 public:
  Builder(std::string file, const Scope& scope) : file_(std::move(file)), scope_(scope) {}

  void set_layout(const Layout& layout) { scope_.layout = layout; }

  [[noreturn]] void fail(std::string why) const {
    throw Failure{.status = Status::kUsage,
                  .why = std::move(why),
                  .file = file_,
                  .field = pointer_.empty() ? "/" : pointer_,
                  .advice = "tqlabel inspect --json shows the form of a label"};
  }

  template <class Key>
  [[noreturn]] void fail_at(const Key& key, std::string why) {
    pointer_ += fmt::format("/{}", key);
    fail(std::move(why));
  }

  // What is built while the step lives comes from the member of that key or number.
  template <class Key>
  [[nodiscard]] PathStep at(const Key& key) {
    return {pointer_, fmt::format("/{}", key)};
  }

  // The members of an object, each of which must be asked for.
  class Members {
   public:
    Members(const Builder& builder, const Json& object) : object_(object) {
      if (!object.is_object()) builder.fail("not an object");
    }
    [[nodiscard]] const Json* find(std::string_view key) {
      asked_.insert(std::string(key));
      const auto member = object_.find(std::string(key));
      return member == object_.end() ? nullptr : &*member;
    }
    void finish(Builder& builder) const {
      for (const auto& [key, value] : object_.items()) {
        if (!asked_.contains(key)) builder.fail_at(key, "unknown key");
      }
    }
    [[nodiscard]] const Json& json() const { return object_; }

   private:
    const Json& object_;
    std::set<std::string> asked_;
  };

  // Puts down the member of that name.
  template <class Write>
  void member(Members& members, std::string_view name, Write write) {
    const PathStep step = at(name);
    const Json* json = members.find(name);
    if (json == nullptr) fail("missing key");
    write(*json);
  }

  // Fields of a record.

  template <auto Member, class Codec, FieldName Name>
  void field(Field<Member, Codec, Name> kind, Members& members, Output& out) {
    member(members, kind.kName, [&](const Json& json) {
      if constexpr (kind.kElements == 1) {
        value<Codec>(json, out);
      } else {
        if (!json.is_array() || json.size() != kind.kElements) {
          fail(fmt::format("not a list of {} values", kind.kElements));
        }
        each(json, [&](const Json& item) { value<Codec>(item, out); });
      }
    });
  }

  template <auto Member, RawRule Rule, bool (*Accepts)(der::Octet)>
  void field(Raw<Member, Rule, Accepts> kind, Members& members, Output& out) {
    member(members, kind.kName, [&](const Json& json) {
      if (Rule != RawRule::kOptional || !json.is_null()) exactly(json, out);
    });
  }
  void field(SignerCertificate kind, Members& members, Output& out) {
    member(members, kind.kName, [&](const Json& json) { exactly(json, out); });
  }
  void field(WrappedKey kind, Members& members, Output& out) {
    member(members, kind.kName, [&](const Json& json) { exactly(json, out); });
  }

  template <auto Member, class Inner>
  void field(Nested<Member, Inner> kind, Members& members, Output& out) {
    member(members, kind.kName, [&](const Json& json) { element(Inner{}, json, out); });
  }

  template <Condition Holds, class Inner, class Otherwise>
  void field(Either<Holds, Inner, Otherwise> /*kind*/, Members& members, Output& out) {
    Holds(scope_) ? field(Inner{}, members, out) : field(Otherwise{}, members, out);
  }

  template <class R, class... Fields>
  void field(Run<R, Fields...> /*kind*/, Members& members, Output& out) {
    (field(Fields{}, members, out), ...);
  }

  // In "1.1.2" they stand in the order of the keys.
  void field(Markings kind, Members& members, Output& out) {
    if (!scope_.layout.multi_sign) return plain(kind, members, out);
    for (const auto& [key, json] : members.json().items()) {
      marking(kind, key, members, out);
    }
    plain(kind, members, nullptr);
  }

  void field(Tail kind, Members& members, Output& out) { tagged(kind, members, out); }

  // Whole elements.

  template <class R, class... Fields>
  void element(Schema<R, Fields...> kind, const Json& json, Output& out) {
    if (raw(json, out)) return;
    Members members(*this, json);
    Output inside;
    field(static_cast<Run<R, Fields...>>(kind), members, inside);
    ignored(members, inside);
    members.finish(*this);
    put(der::kSequence, inside, out);
  }

  template <class Entry, class Rule>
  void element(List<Entry, Rule> /*kind*/, const Json& json, Output& out) {
    if (json.is_null() || raw(json, out)) return;
    if (!json.is_array()) fail("not a list, nor null");
    if (json.empty()) return put(der::kNull, {}, out);
    Output entries;
    each(json, [&](const Json& entry) { element(Entry{}, entry, entries); });
    Output set;
    put(der::kSet, entries, set);
    put(der::kSequence, set, out);
  }

  template <class Entry>
  void element(Chained<Entry> /*kind*/, const Json& json, Output& out) {
    if (raw(json, out)) return;
    if (!json.is_array() || json.empty()) fail("not a list with an entry at least");
    Output entries;
    each(json, [&](const Json& entry) { element(Entry{}, entry, entries); });
    put(der::kSequence, entries, out);
  }

  void element(AttributeSchema /*kind*/, const Json& json, Output& out) {
    if (raw(json, out)) return;
    Members members(*this, json);
    Output pair;
    der::Octet tag = 0;
    member(members, "type", [&](const Json& type) { put(der::kObjectId, object_id(type), pair); });
    member(members, "tag", [&](const Json& name) { tag = string_tag(name); });
    member(members, "value", [&](const Json& value) { put(tag, text(value), pair); });
    members.finish(*this);
    Output set;
    put(der::kSequence, pair, set);
    put(der::kSet, set, out);
  }

  // The padding: a number of zeros, or what it is.
  void padding(const Json& json, Output& out) {
    if (json.is_null() || raw(json, out)) return;
    if (!json.is_number_unsigned()) return put(der::kOctetString, digits(json), out);
    const auto size = json.get<std::uint64_t>();
    if (size > UINT32_MAX) fail("more than a label can be long");
    put(der::kOctetString, Output(size), out);
  }

  void sealed(const Json& json, Output& out) { put(der::kOctetString, digits(json), out); }

  void ignored(Members& members, Output& out) {
    const Json* elements = members.find("ignored");
    if (elements == nullptr) return;
    const PathStep step = at("ignored");
    if (!elements->is_array()) fail("not a list");
    each(*elements, [&](const Json& element) { whole(digits(element), out); });
  }

  void put(der::Octet tag, const Output& content, Output& out) const {
    if (content.size() > UINT32_MAX - der::header_size(UINT32_MAX)) fail("too long for a label");
    const auto length = static_cast<std::uint32_t>(content.size());
    const std::size_t at = out.size();
    out.resize(at + der::element_size(length));
    der::Writer(out.data() + at).element(tag, content.data(), length);
  }

 private:
  template <class Function>
  void each(const Json& list, Function function) {
    std::size_t number = 0;
    for (const Json& item : list) {
      const PathStep step = at(number++);
      function(item);
    }
  }

  // {"der": "..."}: whatever stands there, as it is.
  bool raw(const Json& json, Output& out) {
    if (!json.is_object() || json.size() != 1 || !json.contains("der")) return false;
    const PathStep step = at("der");
    whole(digits(json["der"]), out);
    return true;
  }
  void exactly(const Json& json, Output& out) {
    if (!raw(json, out)) fail(R"(not {"der": "..."})");
  }
  void whole(const Output& bytes, Output& out) const {
    if (!der::is_one_element(bytes.data(), bytes.size())) fail("not one DER element");
    out.insert(out.end(), bytes.begin(), bytes.end());
  }

  std::string string(const Json& json) const {
    if (!json.is_string()) fail("not a string");
    return json.get<std::string>();
  }

  Output digits(const Json& json) const {
    const std::string text = string(json);
    Output bytes;
    if (!from_hexadecimal(text, bytes)) fail("not pairs of hexadecimal digits");
    return bytes;
  }

  Output text(const Json& json) const {
    if (json.is_object() && json.size() == 1 && json.contains("hex")) return digits(json["hex"]);
    if (!json.is_string()) fail(R"(neither a string nor {"hex": "..."})");
    const std::string value = string(json);
    return {value.begin(), value.end()};
  }

  Output object_id(const Json& json) const {
    const std::string name = string(json);
    Output octets;
    if (!name.empty() && !from_object_id(name, octets)) {
      fail("neither a dotted number nor a name that is known");
    }
    return octets;
  }

  der::Octet string_tag(const Json& json) const {
    const std::string name = string(json);
    for (const der::Octet tag :
         {der::kUtf8String, der::kPrintableString, der::kIa5String, der::kBmpString}) {
      if (name == type_name(tag)) return tag;
    }
    fail("not UTF8String, PrintableString, IA5String or BMPString");
  }

  std::uint64_t seconds(const Json& json) const {
    std::uint64_t time = 0;
    if (!json.is_null() && !parse_time(string(json), time)) {
      fail(R"(neither null nor a time such as "2026-11-22T22:58:25Z")");
    }
    return time;
  }

  // A value is written by its codec, into room for itself alone.
  template <class Codec>
  void value(const Json& json, Output& out) {
    if (raw(json, out)) return;
    Output bytes;
    const auto held = [&]() -> typename Codec::Value {
      if constexpr (std::is_same_v<Codec, Integer32>) {
        return integer(json);
      } else if constexpr (std::is_same_v<Codec, Boolean>) {
        if (!json.is_boolean()) fail("neither true nor false");
        return json.get<bool>() ? 1 : 0;
      } else if constexpr (std::is_same_v<Codec, Time>) {
        return seconds(json);
      } else {
        bytes = octets<Codec>(json);
        return view_of(bytes.data(), static_cast<std::uint32_t>(bytes.size()), 0);
      }
    }();
    der::Plan plan(der::Plan::Keep::kLengths);
    if (!Codec::plan(held, plan) || !plan.fits()) fail("not a value that a label can hold");
    const std::size_t at = out.size();
    out.resize(at + plan.total());
    Codec::write(held, der::Writer(out.data() + at, plan));
  }

  template <class Codec>
  Output octets(const Json& json) const {
    if constexpr (Codec::kTag == der::kPrintableString) return text(json);
    if constexpr (Codec::kTag == der::kObjectId) return object_id(json);
    return digits(json);
  }

  std::uint32_t integer(const Json& json) const {
    if (!json.is_number_unsigned() || json.get<std::uint64_t>() > UINT32_MAX) {
      fail("not a number from 0 to 4294967295");
    }
    return json.get<std::uint32_t>();
  }

  template <class R, class... Fields>
  void plain(Run<R, Fields...> kind, Members& members, Output& out) {
    field(kind, members, out);
  }
  // Asks for each key without putting anything down.
  template <class R, class... Fields>
  void plain(Run<R, Fields...> /*kind*/, Members& members, std::nullptr_t /*nothing*/) {
    (member(members, Fields::kName, [](const Json&) {}), ...);
  }

  template <class R, class... Fields>
  void marking(Run<R, Fields...> /*kind*/, std::string_view key, Members& members, Output& out) {
    (within(Fields{}, key, members, out), ...);
  }
  template <auto Member, class Inner>
  void within(Nested<Member, Inner> kind, std::string_view key, Members& members, Output& out) {
    if (key == kind.kName) tag(kind, true, members, out);
  }

  template <class R, class... Fields>
  void tagged(Run<R, Fields...> /*kind*/, Members& members, Output& out) {
    (tag(Fields{}, scope_.layout.v11, members, out), ...);
  }
  // An element within an EXPLICIT tag, where the version has one.
  template <auto Member, class Inner>
  void tag(Nested<Member, Inner> kind, bool has_tag, Members& members, Output& out) {
    member(members, kind.kName, [&](const Json& json) {
      if (json.is_null() || raw(json, out)) return;
      Output inside;
      element(Inner{}, json, inside);
      has_tag ? put(Inner::kTag, inside, out) : append(inside, out);
    });
  }
  static void append(const Output& bytes, Output& out) {
    out.insert(out.end(), bytes.begin(), bytes.end());
  }

  std::string file_;
  std::string pointer_;
  Scope scope_;
};

// How the rest is to be written is said by a text within it.
Layout layout_of_json(Builder& builder, const Json& head) {
  const PathStep step = builder.at("head");
  if (!head.is_object() || !head.contains("versionText")) builder.fail("no versionText");
  const PathStep text = builder.at("versionText");
  const Json& version = head["versionText"];
  if (!version.is_string()) builder.fail("not a string");
  const auto& bytes = version.get_ref<const std::string&>();
  TqLabelHandle handle{};
  if (!read_version_text(view_of(bytes.data(), static_cast<std::uint32_t>(bytes.size()), 0),
                         handle)) {
    builder.fail("not 6.0, 1.1, 1.1.1 or 1.1.2");
  }
  return layout_of(handle);
}

}  // namespace

std::vector<std::uint8_t> from_json(const Json& json, const std::string& file) {
  Builder builder(file, {});
  Builder::Members members(builder, json);
  static_cast<void>(members.find("notes"));
  const Json* form = members.find("form");
  if (form != nullptr && *form != kLabelForm) {
    builder.fail_at("form", fmt::format("not {}", kLabelForm));
  }
  Output inside;
  builder.member(members, "head", [&](const Json& head) {
    Builder around(file, {});
    builder.set_layout(layout_of_json(around, head));
    builder.element(kHead, head, inside);
  });
  builder.member(members, "body", [&](const Json& body) {
    body.is_string() ? builder.sealed(body, inside) : builder.element(kBody, body, inside);
  });
  builder.member(members, "padding",
                 [&](const Json& padding) { builder.padding(padding, inside); });
  builder.ignored(members, inside);
  members.finish(builder);
  Output label;
  builder.put(der::kSequence, inside, label);
  return label;
}

}  // namespace tq::tool
