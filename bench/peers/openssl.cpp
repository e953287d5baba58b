// Labels as ASN.1 templates of OpenSSL: docs/label.asn1 as records, with the tables that OpenSSL
// reads and writes them by.

#include <openssl/asn1t.h>

#include "codec.h"

namespace tq::bench {
namespace {

// A part: its type in the record, its name, flags and tag of its table entry, its type in ASN.1.
// What is always there lies within the record, where OpenSSL allows it, and costs no block.
#define PART(Type, name) (Type, name, ASN1_TFLG_EMBED, 0, Type)
#define LINK(Type, name) (Type*, name, 0, 0, Type)
#define OID(name) LINK(ASN1_OBJECT, name)
#define FLAG(name) (ASN1_BOOLEAN, name, 0, 0, ASN1_BOOLEAN)
#define NUMBER(name) PART(ASN1_INTEGER, name)
#define BITS(name) PART(ASN1_BIT_STRING, name)
#define OCTETS(name) PART(ASN1_OCTET_STRING, name)
#define TEXT(name) PART(ASN1_PRINTABLESTRING, name)
#define TIME(name) PART(ASN1_GENERALIZEDTIME, name)
#define RAW(name) (ASN1_STRING, name, ASN1_TFLG_EMBED, 0, ASN1_SEQUENCE)
#define OPTIONAL_RAW(name) (ASN1_STRING*, name, ASN1_TFLG_OPTIONAL, 0, ASN1_SEQUENCE)
#define OPTIONAL(Type, name) (Type*, name, ASN1_TFLG_OPTIONAL, 0, Type)
#define TAGGED(tag, Type, name) (Type*, name, ASN1_TFLG_EXPLICIT | ASN1_TFLG_OPTIONAL, tag, Type)
#define SEQUENCE_OF(Type, name) (STACK_OF(Type)*, name, ASN1_TFLG_SEQUENCE_OF, 0, Type)
#define NAME(name) SEQUENCE_OF(RelativeName, name)

// OpenSSL sorts a SET OF when it writes one, but a label keeps the order of its entries.
constexpr unsigned long kKeptSet = ASN1_TFLG_SEQUENCE_OF | ASN1_TFLG_IMPTAG | ASN1_TFLG_UNIVERSAL;
#define SET_OF(Type) (STACK_OF(Type)*, set, kKeptSet, V_ASN1_SET, Type)

// Applies a macro to each of up to 16 parts: a macro cannot call itself, but each further scan of
// what it left behind can call it once more.
#define SCAN(...) __VA_ARGS__
#define SCAN_4(...) SCAN(SCAN(SCAN(SCAN(__VA_ARGS__))))
#define SCAN_16(...) SCAN_4(SCAN_4(SCAN_4(SCAN_4(__VA_ARGS__))))
#define EACH(macro, Record, ...) SCAN_16(NEXT(macro, Record, __VA_ARGS__))
#define NEXT(macro, Record, part, ...) \
  macro(Record, UNPACK part) __VA_OPT__(NEXT_LATER NO_ARGUMENTS(macro, Record, __VA_ARGS__))
#define NEXT_LATER() NEXT
#define NO_ARGUMENTS ()
#define UNPACK(...) __VA_ARGS__
#define MEMBER(...) MEMBER_OF(__VA_ARGS__)
#define MEMBER_OF(Record, Type, name, flags, tag, Item) Type name;
#define ENTRY(...) ENTRY_OF(__VA_ARGS__)
#define ENTRY_OF(Record, Type, name, flags, tag, Item) ASN1_EX_TYPE(flags, tag, Record, name, Item),

#define RECORD(Record, ...)           \
  struct Record {                     \
    EACH(MEMBER, Record, __VA_ARGS__) \
  };                                  \
  ASN1_SEQUENCE(Record) = {EACH(ENTRY, Record, __VA_ARGS__)} static_ASN1_SEQUENCE_END(Record)

// CHOICE { none NULL, some Type }
#define MAYBE(Type)                              \
  struct Maybe##Type {                           \
    int type;                                    \
    union {                                      \
      ASN1_NULL* none;                           \
      Type* some;                                \
    };                                           \
  };                                             \
  ASN1_CHOICE(Maybe##Type) = {                   \
      ASN1_SIMPLE(Maybe##Type, none, ASN1_NULL), \
      ASN1_SIMPLE(Maybe##Type, some, Type)} static_ASN1_CHOICE_END(Maybe##Type)

// Recipients. X509_NAME would take longer: it also makes a form of the name to compare by.

RECORD(Attribute, OID(type), (ASN1_STRING, value, ASN1_TFLG_EMBED, 0, ASN1_PRINTABLE));
ASN1_ITEM_TEMPLATE(RelativeName) = ASN1_EX_TEMPLATE_TYPE(kKeptSet, V_ASN1_SET, RelativeName,
                                                         Attribute)
    static_ASN1_ITEM_TEMPLATE_END(RelativeName);

RECORD(Envelope, NAME(issuer), NUMBER(serial), OID(algorithm), OCTETS(key));
RECORD(Envelopes, SET_OF(Envelope));
MAYBE(Envelopes);

RECORD(TypeValue, NUMBER(type), NUMBER(value));
RECORD(TypeValues, SET_OF(TypeValue));
RECORD(Privilege, RAW(subject), FLAG(flag1), NUMBER(value1), NUMBER(value2), FLAG(flag2),
       FLAG(flag3), FLAG(flag4), NUMBER(value3), NUMBER(value4), OPTIONAL(TypeValues, more));
RECORD(BodyEnvelope, PART(Envelope, envelope), PART(Privilege, privilege));
RECORD(BodyEnvelopes, SET_OF(BodyEnvelope));
MAYBE(BodyEnvelopes);

// Heads.

RECORD(Sign60, RAW(cert), TEXT(algorithm), BITS(value));
RECORD(Sign11, RAW(cert), OID(algorithm), BITS(value));
RECORD(EncryptHead60, TEXT(algorithm), NUMBER(mode), LINK(ASN1_NULL, envelopes));
RECORD(EncryptHead11, OID(algorithm), NUMBER(mode), NUMBER(feed_back_bits),
       PART(MaybeEnvelopes, envelopes));
RECORD(Head60, TEXT(label), TEXT(version), OCTETS(custom), PART(Sign60, sign),
       PART(EncryptHead60, encrypt), NUMBER(serial), TIME(create_time), TIME(modify_time));
RECORD(Head11, TEXT(label), TEXT(version), NAME(issuer), NUMBER(serial), TIME(create_time),
       TIME(modify_time), OCTETS(custom), PART(EncryptHead11, encrypt), PART(Sign11, sign));

// Markings.

RECORD(Meta, OPTIONAL_RAW(element), TIME(time1), TEXT(text1), TIME(time2), TIME(time3),
       TEXT(text2));
RECORD(Seal, TEXT(name), PART(Meta, meta), NUMBER(type), OCTETS(data), OPTIONAL_RAW(element),
       BITS(bits));
RECORD(Stamp, TEXT(text1), NUMBER(value0), NUMBER(value1), NUMBER(value2), NUMBER(value3),
       TEXT(text2), TIME(time), TEXT(text3));
RECORD(StampAttr, TEXT(name), PART(Seal, seal), PART(Stamp, stamp), BITS(bits));
RECORD(WaterMark, OCTETS(data1), OCTETS(data2), PART(TypeValue, alg), TEXT(text), TIME(time));
RECORD(Sys, OCTETS(info1), OCTETS(info2), OCTETS(info3), NUMBER(value));
RECORD(Action, OPTIONAL_RAW(subject), FLAG(flag0), FLAG(flag1), FLAG(flag2), FLAG(flag3),
       FLAG(flag4), FLAG(flag5), FLAG(flag6), FLAG(flag7), FLAG(flag8), FLAG(flag9), FLAG(flag10));
RECORD(Actions, SET_OF(Action));
MAYBE(Actions);
RECORD(FingerPrint, PART(Sys, sys), PART(MaybeActions, list));

// The file.

RECORD(Creator, TEXT(file_no), TEXT(text), TIME(time));
RECORD(Content, NUMBER(file_type), NUMBER(secrecy), NUMBER(file_size), TEXT(file_name),
       TEXT(file_title), TIME(modify_time), TIME(expiry_time), TIME(abolish_time),
       TIME(destroy_time));
RECORD(FileAlign, NUMBER(label_align), NUMBER(file_align), NUMBER(un_effect));
RECORD(Extend, NUMBER(type), OCTETS(value));
RECORD(Extends, SET_OF(Extend));
MAYBE(Extends);
RECORD(Log60, NUMBER(type), TEXT(text1), NUMBER(array1), NUMBER(array2), TIME(time), NUMBER(value),
       TEXT(text2));
RECORD(Logs60, SET_OF(Log60));
MAYBE(Logs60);
RECORD(Log11, NUMBER(type), TEXT(text1), NAME(name), NUMBER(array1), NUMBER(array2), TIME(time),
       NUMBER(value), TEXT(text2));
RECORD(Logs11, SET_OF(Log11));

// Whole labels.

RECORD(Body60, BITS(sign_value), RAW(sign_cert), LINK(ASN1_NULL, envelopes), PART(StampAttr, stamp),
       PART(WaterMark, water_mark), PART(FingerPrint, finger_print), PART(Creator, creator),
       PART(Content, content), PART(MaybeExtends, extends), PART(MaybeLogs60, logs));
RECORD(Body111, BITS(sign_value), RAW(sign_cert), PART(MaybeBodyEnvelopes, envelopes),
       PART(StampAttr, stamp), PART(WaterMark, water_mark), PART(FingerPrint, finger_print),
       PART(Creator, creator), PART(Content, content), PART(FileAlign, file_align),
       TAGGED(0, Extends, extends), TAGGED(1, Logs11, logs));
RECORD(Body112, SEQUENCE_OF(Sign11, signs), PART(MaybeBodyEnvelopes, envelopes),
       TAGGED(0, StampAttr, stamp), TAGGED(1, WaterMark, water_mark),
       TAGGED(2, FingerPrint, finger_print), PART(Creator, creator), PART(Content, content),
       PART(FileAlign, file_align), TAGGED(0, Extends, extends), TAGGED(1, Logs11, logs));
RECORD(Label60, PART(Head60, head), PART(Body60, body), OPTIONAL(ASN1_OCTET_STRING, padding));
RECORD(Label111, PART(Head11, head), PART(Body111, body), OPTIONAL(ASN1_OCTET_STRING, padding));
RECORD(Label112, PART(Head11, head), PART(Body112, body), OPTIONAL(ASN1_OCTET_STRING, padding));

const ASN1_ITEM* type_of(Version version) {
  static constexpr ASN1_ITEM_EXP* kTypes[] = {Label60_it, Label111_it, Label112_it};
  return kTypes[static_cast<std::size_t>(version)]();
}

void* decode(Version version, std::span<const std::uint8_t> label) {
  const std::uint8_t* at = label.data();
  return ASN1_item_d2i(nullptr, &at, static_cast<long>(label.size()), type_of(version));
}

void release(Version version, void* decoded) {
  ASN1_item_free(static_cast<ASN1_VALUE*>(decoded), type_of(version));
}

// OpenSSL does not look where a buffer ends, so the length comes first.
std::size_t encode(Version version, const void* decoded, std::span<std::uint8_t> buffer) {
  const auto* const value = static_cast<const ASN1_VALUE*>(decoded);
  const int size = ASN1_item_i2d(value, nullptr, type_of(version));
  if (size <= 0 || static_cast<std::size_t>(size) > buffer.size()) return 0;
  std::uint8_t* at = buffer.data();
  ASN1_item_i2d(value, &at, type_of(version));
  return static_cast<std::size_t>(size);
}

}  // namespace

const Codec kOpenssl = {"openssl", decode, release, encode};

}  // namespace tq::bench
