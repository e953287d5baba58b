/*
 * Creates a label for two recipients: who may read the file, how often, and who says so.
 *
 * The library stores keys, certificates and signatures, and computes none: the first two
 * functions stand where your own cryptography goes.
 */
#include "people.h"

/* Placeholder for your cryptography: sign the message with the author's private key. */
static void sign_with_my_key(Bytes message, uint8_t signature[256]) {
  memset(signature, message.length == 0 ? 0 : 0x51, 256);
}

/* Placeholder for your cryptography: wrap the key of the file with the recipient's public key. */
static void wrap_the_file_key(const Person* recipient, uint8_t wrapped[256]) {
  memset(wrapped, recipient->serial[0], 256);
}

/* The version comes first: it decides how algorithms and names are stored. */
static void describe(TqLabel label, const Person* author) {
  need(GLSetVersion(label, text("1.1"), 3) == 0, "version");
  need(SetLabel(label, text("internal"), 8) == 0, "label text");
  need(SetHeadCreateTime(label) == 0, "creation time");
  /* The head names the author's certificate by serial number and issuer. */
  need(SetCertSerialAndIssuerToHead(label, author->serial, sizeof author->serial,
                                    &author->issuer) == 0,
       "author");
  /* What the label says of the file. */
  need(SetFileName(label, text("report.odt"), 10) == 0, "file name");
  need(GLSetFileSize(label, 48213) == 0, "file size");
  need(SetExpired(label, 4102444800) == 0, "expiry time"); /* 2100-01-01 */
}

/* A recipient gets two envelopes: the one in the head tells quickly who may open the file, the one
 * in the body carries the privileges as well. Both name him by serial number and issuer. */
static void invite(TqLabel label, Person* recipient) {
  uint8_t wrapped[256];
  wrap_the_file_key(recipient, wrapped);
  const EnvelopeInfo envelope = envelope_for(recipient, (Bytes){wrapped, sizeof wrapped});
  need(AddEnvelopeToHead(label, &envelope) == 0, recipient->name);
  /* Zero pairs first: the padding within them is stored. */
  PrivilegeEntry pairs[2];
  memset(pairs, 0, sizeof pairs);
  pairs[0].type = 1; /* what types and values mean is up to you */
  pairs[0].value = 600;
  pairs[1].type = 2;
  pairs[1].value = 1;
  PrivilegeInfo privilege = may_read(recipient, 3);
  privilege.entries = pairs;
  privilege.entryCount = 2;
  need(ADDigitEnvlopeToBody(label, &envelope, &privilege) == 0, recipient->name);
}

/* Signing comes last, since the message is the whole label without the signature's value. Algorithm
 * and certificate are part of it, so they are set before it is asked for. */
static void sign(TqLabel label, const Person* author) {
  need(SetHeadSignAlg(label, text("sha256WithRSAEncryption"), 23) == 0, "signature algorithm");
  need(SetHeadSignCert(label, author->certificate, sizeof author->certificate) == 0,
       "author's certificate");
  need(SetBodySignCert(label, author->certificate, sizeof author->certificate) == 0,
       "body signer's certificate");
  const Bytes message = get(GetSignatureMessage, label);
  uint8_t signature[256];
  sign_with_my_key(message, signature);
  need(SetHeadSignValue(label, signature, sizeof signature) == 0, "signature");
  free(message.data);
}

/* The same call twice: without a buffer it stores the length, with one it fills it. */
static Bytes encode(TqLabel label) {
  Bytes der = {NULL, 0};
  need(EncodeLabel(label, NULL, &der.length) == 0, "the label lacks something");
  der.data = malloc(der.length);
  need(der.data != NULL, "out of memory");
  need(EncodeLabel(label, der.data, &der.length) == 0, "the label does not encode");
  return der;
}

int main(void) {
  Person people[kPeople];
  meet(people);
  TqLabel label = GetHandleLabel();
  need(label != NULL, "out of memory");
  describe(label, &people[kAlice]);
  for (int i = 0; i < kPeople; ++i) invite(label, &people[i]);
  sign(label, &people[kAlice]);
  const Bytes der = encode(label);
  FreeHandleLabel(label); /* releases all that was stored; what was handed in stays yours */
  printf("a label of %u bytes for %s and %s\n", (unsigned)der.length, people[kAlice].name,
         people[kBob].name);
  free(der.data);
  return EXIT_SUCCESS;
}
