/* The two people of the examples: recipients of a file, named as labels name them. */
#ifndef TQLABEL_EXAMPLES_PEOPLE_H
#define TQLABEL_EXAMPLES_PEOPLE_H

#include "example.h"

/* What a label has to know of a recipient's certificate. */
typedef struct {
  const char* name;
  uint8_t certificate[5];         /* stands for the real one: any DER SEQUENCE passes */
  uint8_t serial[1];              /* content octets of its serial number */
  PJCertIssuerEntry attribute[1]; /* who issued it: CN=Example Root */
  PJCertIssuer issuer;
} Person;

enum { kPeople = 2, kAlice = 0, kBob = 1 };

static inline void meet(Person people[kPeople]) {
  static const char* const names[kPeople] = {"Alice", "Bob"};
  static const char authority[] = "Example Root";
  memset(people, 0, kPeople * sizeof *people);
  for (uint8_t i = 0; i < kPeople; ++i) {
    Person* person = &people[i];
    const uint8_t certificate[] = {0x30, 3, 2, 1, (uint8_t)(i + 1)};
    PJCertIssuerEntry* attribute = person->attribute;
    person->name = names[i];
    memcpy(person->certificate, certificate, sizeof certificate);
    person->serial[0] = (uint8_t)(i + 1);
    attribute->typeLen = sizeof attribute->type; /* the room, then the length */
    need(SflAlg2OID(text("CN"), 2, 0, 0, attribute->type, &attribute->typeLen) == 0, "CN");
    attribute->valueTag = 19; /* PrintableString */
    attribute->valueLen = sizeof authority - 1;
    memcpy(attribute->value, authority, attribute->valueLen);
    person->issuer = (PJCertIssuer){attribute, 1, 1};
  }
}

/* The envelope of a person: the file's key, wrapped so that only this person can unwrap it. */
static inline EnvelopeInfo envelope_for(Person* person, Bytes wrapped_key) {
  static uint8_t algorithm[] = {'R', 'S', 'A'};
  return (EnvelopeInfo){.alg = algorithm,
                        .algLen = sizeof algorithm,
                        .serial = person->serial,
                        .serialLen = sizeof person->serial,
                        .key = wrapped_key.data,
                        .keyLen = wrapped_key.length,
                        .issuer = &person->issuer};
}

/* How these examples use the numbers and flags of a privilege record, which are a caller's own. */
static inline PrivilegeInfo may_read(Person* person, uint32_t times) {
  return (PrivilegeInfo){.data = person->certificate,
                         .dataLen = sizeof person->certificate,
                         .flag1 = 1,       /* may read */
                         .number1 = times, /* so often */
                         .flag2 = 0};      /* may print */
}

/* A label for both, to open or to re-key: create_label.c makes one step by step. */
static inline Bytes label_for(Person people[kPeople]) {
  uint8_t key[] = {0xA, 0xB, 0xC};
  TqLabel label = GetHandleLabel();
  need(label != NULL && GLSetVersion(label, text("1.1"), 3) == 0, "version");
  Person* author = &people[kAlice];
  need(SetCertSerialAndIssuerToHead(label, author->serial, sizeof author->serial,
                                    &author->issuer) == 0,
       "author");
  need(SetBodySignCert(label, author->certificate, sizeof author->certificate) == 0, "signer");
  for (int i = 0; i < kPeople; ++i) {
    const EnvelopeInfo envelope = envelope_for(&people[i], (Bytes){key, sizeof key});
    const PrivilegeInfo privilege = may_read(&people[i], 3);
    need(AddEnvelopeToHead(label, &envelope) == 0, people[i].name);
    need(ADDigitEnvlopeToBody(label, &envelope, &privilege) == 0, people[i].name);
  }
  const Bytes der = get(EncodeLabel, label);
  FreeHandleLabel(label);
  return der;
}

#endif
