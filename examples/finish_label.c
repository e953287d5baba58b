/*
 * Signs a label and brings it into its final shape.
 *
 *   finish_label LABEL SIGNATURE PADDING OUT [SEALED]
 *
 * reads the LABEL that make_label wrote and the SIGNATURE of its message, and writes the signed
 * label to OUT: followed by PADDING zero bytes, if there are to be any, and with the encrypted body
 * of the file SEALED in place of the plain one. Without arguments it does so with a made-up label.
 */
#include "example.h"

static Bytes encode_sealed(TqLabel label, uint32_t padding, Bytes sealed) {
  int32_t (*const encode)(TqLabel, const uint8_t*, uint32_t, uint8_t*, uint32_t*) =
      padding == 0 ? EncodeLabelEncrypted : EncodeLabelPadEncrypted;
  uint32_t length = 0;
  need(encode(label, sealed.data, sealed.length, NULL, &length) == 0, "the label's length");
  Bytes bytes = allocate(length);
  need(encode(label, sealed.data, sealed.length, bytes.data, &bytes.length) == 0, "the label");
  return bytes;
}

static Bytes finish(Bytes unsigned_label, Bytes signature, uint32_t padding, const Bytes* sealed) {
  TqLabel label = NULL;
  need(DecodeLabel(unsigned_label.data, unsigned_label.length, &label) == 0, "no label");
  need(SetHeadSignValue(label, signature.data, signature.length) == 0, "signature");
  need(padding == 0 || SetLabelPadSize(label, padding) == 0, "padding");
  const Bytes finished = sealed != NULL ? encode_sealed(label, padding, *sealed)
                                        : get(padding == 0 ? EncodeLabel : EncodeLabelPad, label);
  FreeHandleLabel(label);
  return finished;
}

/* Decodes a label whose body is encrypted; the body is what its receiver decrypts and passes to
 * DecodeLabelDecrypted. */
static TqLabel open_sealed(Bytes der, Bytes expected) {
  TqLabel label = NULL;
  uint32_t length = 0;
  need(DecodeLabelEncrypted(der.data, der.length, NULL, &length, NULL) == 0, "no encrypted body");
  Bytes body = allocate(length);
  need(DecodeLabelEncrypted(der.data, der.length, body.data, &body.length, &label) == 0, "head");
  need(equal(body, expected), "the encrypted body has changed");
  free(body.data);
  return label;
}

/* Whoever receives the label finds in it what was put into it. */
static void check(Bytes der, Bytes signature, uint32_t padding, const Bytes* sealed) {
  TqLabel label = NULL;
  if (sealed != NULL) {
    label = open_sealed(der, *sealed);
  } else {
    need(DecodeLabel(der.data, der.length, &label) == 0, "the finished label does not decode");
  }
  const Bytes value = get(GetHeadSignValue, label);
  need(equal(value, signature), "the signature has changed");
  uint32_t padded = 0;
  need(HavePadded(der.data, der.length, &padded) == 0 && padded == (padding != 0), "padding");
  free(value.data);
  FreeHandleLabel(label);
}

static Bytes made_up_label(void) {
  uint8_t certificate[] = {0x30, 3, 2, 1, 1}; /* any SEQUENCE passes for one */
  TqLabel label = GetHandleLabel();
  need(label != NULL && GLSetVersion(label, text("6.0"), 3) == 0, "version");
  need(SetLabel(label, text("internal"), 8) == 0, "label text");
  need(SetHeadSerialNum(label, text("\x01"), 1) == 0, "serial number");
  need(SetBodySignCert(label, certificate, sizeof certificate) == 0, "certificate");
  const Bytes der = get(EncodeLabel, label);
  FreeHandleLabel(label);
  return der;
}

int main(int count, char** arguments) {
  need(count == 1 || count == 5 || count == 6, "usage: LABEL SIGNATURE PADDING OUT [SEALED]");
  const Bytes made = count == 1 ? made_up_label() : read_file(arguments[1]);
  const Bytes signature = count == 1 ? made_up_label() : read_file(arguments[2]);
  const uint32_t padding = count == 1 ? 64 : (uint32_t)strtoul(arguments[3], NULL, 10);
  Bytes sealed = {NULL, 0};
  if (count == 6) sealed = read_file(arguments[5]);
  const Bytes finished = finish(made, signature, padding, count == 6 ? &sealed : NULL);
  check(finished, signature, padding, count == 6 ? &sealed : NULL);
  if (count != 1) write_file(arguments[4], finished);
  printf("a label of %u bytes, %u of them padding\n", (unsigned)finished.length, (unsigned)padding);
  free(made.data);
  free(signature.data);
  free(sealed.data);
  free(finished.data);
  return EXIT_SUCCESS;
}
