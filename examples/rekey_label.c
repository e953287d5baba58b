/*
 * Gives a file a new key: every recipient's envelopes get it, whoever and how many they are.
 *
 * That is how to proceed when the old key has leaked, or when a recipient was removed who knows it.
 */
#include "people.h"

/* Placeholder for your cryptography: wrap the file's new key with the public key of a certificate.
 * It fills the room with something that tells one recipient's key from another's. */
static void wrap_for_certificate(Bytes certificate, uint8_t wrapped[256]) {
  memset(wrapped, certificate.data[certificate.length - 1] + 0x40, 256);
}

/* The privilege data of an envelope in the body is the recipient's certificate. */
static Bytes certificate_of(DigitEnvolopEnum* envelopes) {
  uint32_t length = 0;
  need(GetCurrentDigitEnvolop(envelopes, NULL, &length) == 0, "length of a certificate");
  Bytes certificate = allocate(length);
  /* This call, with a buffer, also finds the envelope that comes next. */
  need(GetCurrentDigitEnvolop(envelopes, certificate.data, &certificate.length) == 0,
       "certificate");
  return certificate;
}

/* Creating the enumerator empties the list of the head: until the last envelope has its key, the
 * label is not fit to be encoded. */
static unsigned rekey(TqLabel label) {
  DigitEnvolopEnum* envelopes = NULL;
  unsigned count = 0;
  need(CreatEmurateDigitEnvolop(&envelopes, label) == 0, "nobody to give a key to");
  do {
    uint8_t wrapped[256];
    const Bytes certificate = certificate_of(envelopes);
    wrap_for_certificate(certificate, wrapped);
    need(SetCurrentEmuEnvolop(envelopes, wrapped, sizeof wrapped, wrapped, sizeof wrapped) == 0,
         "new key");
    free(certificate.data);
    ++count;
  } while (HaveNextDigitEnvolop(envelopes) == 0); /* 0 is yes */
  DestroyEmura(envelopes);
  return count;
}

/* Asks for the sizes first: the length of a name has room for a terminator then. */
static void check(TqLabel label, Person* person) {
  EnvelopeInfo envelope = envelope_for(person, (Bytes){NULL, 0});
  envelope.alg = NULL;
  need(GetEnvelopeFromHead(label, &envelope) == 0, person->name);
  const Bytes name = allocate(envelope.algLen);
  const Bytes key = allocate(envelope.keyLen);
  envelope.alg = name.data;
  envelope.key = key.data;
  need(GetEnvelopeFromHead(label, &envelope) == 0, person->name);
  uint8_t expected[256];
  wrap_for_certificate((Bytes){person->certificate, sizeof person->certificate}, expected);
  need(equal(key, (Bytes){expected, sizeof expected}), "somebody else's key, or the old one");
  printf("%s has a new key of %u bytes\n", person->name, (unsigned)envelope.keyLen);
  free(name.data);
  free(key.data);
}

int main(void) {
  Person people[kPeople];
  meet(people);
  const Bytes old = label_for(people);
  TqLabel label = NULL;
  need(DecodeLabel(old.data, old.length, &label) == 0, "no label");
  need(rekey(label) == kPeople, "not everybody has a new key");
  /* What was encoded and decoded again has the new keys, and nothing else has changed. */
  const Bytes der = get(EncodeLabel, label);
  FreeHandleLabel(label);
  need(DecodeLabel(der.data, der.length, &label) == 0, "the new label does not decode");
  for (int i = 0; i < kPeople; ++i) check(label, &people[i]);
  FreeHandleLabel(label);
  free(old.data);
  free(der.data);
  return EXIT_SUCCESS;
}
