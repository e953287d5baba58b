// What the reading floors have allocated, given back.

#include <cstdlib>

#include "floors/floors.h"

namespace tq::bench::floors {
namespace {

template <bool Fields>
class Release {
 public:
  static void label(Label& label) {
    fields(label.label, label.version, label.custom, label.algorithm, label.serial, label.mark_text,
           label.file_number, label.creator);
    for (Bytes* one : {label.mark_data, label.names}) fields(one[0], one[1]);
    for (const Bytes& one : label.system_info) fields(one);
    for (const Sign* one : {&label.head_sign, &label.body_sign}) {
      fields(one->certificate, one->algorithm, one->value);
    }
    stamp(label.stamp);
    name(label.issuer);
    each(label.head_envelopes, envelope);
    each(label.body_envelopes, envelope);
    each(label.extensions, [](Extension& one) { fields(one.value); });
    each(label.logs, [](Log& one) {
      fields(one.text1, one.array1, one.array2, one.text2);
      name(one.name);
    });
  }

 private:
  template <class... Field>
  static void fields(const Field&... field) {
    if constexpr (Fields) (std::free(const_cast<std::uint8_t*>(field.data)), ...);
  }

  template <class Record, class Content>
  static void each(Record* record, Content content) {
    while (record != nullptr) {
      Record* const next = record->next;
      content(*record);
      std::free(record);
      record = next;
    }
  }

  static void name(Attribute& first) {
    fields(first.type, first.value);
    each(first.next, [](Attribute& one) { fields(one.type, one.value); });
  }

  static void envelope(Envelope& one) {
    fields(one.serial, one.algorithm, one.key, one.subject);
    name(one.issuer);
    each(one.pairs, [](Pair&) {});
  }

  static void stamp(Stamp& one) {
    fields(one.name, one.seal_name, one.meta_element, one.meta_text[0], one.meta_text[1],
           one.seal_data, one.seal_element, one.seal_bits, one.text[0], one.text[1], one.text[2],
           one.bits);
  }
};

template <bool Fields>
void release(void* decoded) {
  Release<Fields>::label(*static_cast<Label*>(decoded));
  std::free(decoded);
}

}  // namespace

void release_nothing(Version /*version*/, void* /*decoded*/) {}
void release_blocks(Version /*version*/, void* decoded) { release<false>(decoded); }
void release_fields(Version /*version*/, void* decoded) { release<true>(decoded); }

}  // namespace tq::bench::floors

namespace tq::bench {

const Codec kWalk = {"walk", floors::walk, floors::release_nothing, nullptr};
const Codec kBlock = {"block", floors::block, floors::release_blocks, floors::write};
const Codec kOwn = {"own", floors::own, floors::release_fields, floors::write};

}  // namespace tq::bench
