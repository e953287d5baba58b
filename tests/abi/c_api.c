/* The interface as a C program uses it. Each check that fails ends the program with its line. */
#include <stdlib.h>
#include <string.h>
#include <tqlabel/label.h>

#define REQUIRE(condition)             \
  do {                                 \
    if (!(condition)) return __LINE__; \
  } while (0)

int c_program_works(void);

static int make_label(TqLabel label) {
  static const uint8_t serial[] = {0x01, 0xE2, 0x40};
  static const uint8_t cert[] = {0x30, 0x03, 0x02, 0x01, 0x05};
  static const uint8_t custom[] = {1, 2, 3};
  PJCertIssuerEntry entry = {{0x55, 0x04, 0x03}, 3, "Root", 4, 19};
  const PJCertIssuer issuer = {&entry, 1, 1};
  uint8_t value[32] = {9};
  uint8_t cert_copy[sizeof cert];
  char algorithm[] = "sm3WithSM2Encryption";
  const SignAttribute signer = {algorithm, value, sizeof value, cert_copy, sizeof cert_copy};
  memcpy(cert_copy, cert, sizeof cert);

  REQUIRE(GLSetVersion(label, (const uint8_t*)"1.1.2", 5) == 0);
  REQUIRE(SetLabel(label, (const uint8_t*)"Secret", 6) == 0);
  REQUIRE(SetCustom(label, custom, sizeof custom) == 0);
  REQUIRE(SetCertSerialAndIssuerToHead(label, serial, sizeof serial, &issuer) == 0);
  REQUIRE(SetHeadCreateTime(label) == 0);
  REQUIRE(SetHeadSignAlg(label, (const uint8_t*)"sha256WithRSAEncryption", 23) == 0);
  REQUIRE(SetHeadSignCert(label, cert, sizeof cert) == 0);
  REQUIRE(SetEncryptHead(label, (const uint8_t*)"SM4", 3, 8) == 0);
  REQUIRE(SetBodySignAttr(label, 0, &signer) == 0);
  REQUIRE(GLSetFileNo(label, "No. 1") == 0);
  REQUIRE(SetFileAlignSize(label, 4096) == 0);
  return 0;
}

static int round_trip(TqLabel label, uint8_t* der, uint8_t* again, uint32_t size) {
  TqLabel decoded = NULL;
  uint32_t length = size;
  uint32_t align = 0;
  uint8_t text[8] = {0};
  uint8_t text_length = sizeof text;
  int same;

  REQUIRE(EncodeLabel(label, der, &length) == 0 && length == size);
  REQUIRE(DecodeLabel(der, length, &decoded) == 0 && decoded != NULL);
  same = EncodeLabel(decoded, again, &length) == 0 && length == size &&
         memcmp(der, again, size) == 0 && GetLabel(decoded, text, &text_length) == 0 &&
         text_length == 6 && memcmp(text, "Secret", 6) == 0 &&
         GetFileAlignSize(decoded, &align) == 0 && align == 4096 && LabelBodyNeedEnc(decoded) == 1;
  FreeHandleLabel(decoded);
  REQUIRE(same);
  return 0;
}

int c_program_works(void) {
  TqLabel label = GetHandleLabel();
  uint32_t size = 0;
  int line;
  REQUIRE(label != NULL);
  line = make_label(label);
  if (line == 0 && EncodeLabel(label, NULL, &size) != 0) line = __LINE__;
  if (line == 0) {
    uint8_t* buffers = malloc(2 * (size_t)size);
    line = buffers == NULL ? __LINE__ : round_trip(label, buffers, buffers + size, size);
    free(buffers);
  }
  FreeHandleLabel(label);
  return line;
}
