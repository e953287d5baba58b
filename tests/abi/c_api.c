/* The interface as a C program uses it. A check that fails ends it with the
 * line. */
#include <tqlabel/label.h>

#define REQUIRE(condition)             \
  do {                                 \
    if (!(condition)) return __LINE__; \
  } while (0)

int c_program_works(void);

int c_program_works(void) {
  static const uint8_t serial[] = {0x01, 0xE2, 0x40};
  PJCertIssuerEntry entry = {{0x55, 0x04, 0x03}, 3, "Root", 4, 19};
  const PJCertIssuer issuer = {&entry, 1, 1};
  uint8_t cert[] = {0x30, 0x03, 0x02, 0x01, 0x05};
  char algorithm[] = "sm3WithSM2Encryption";
  const SignAttribute signer = {algorithm, cert, sizeof cert, cert, sizeof cert};
  TqLabel label = GetHandleLabel();
  uint8_t der[1024];
  uint32_t size = sizeof der;

  REQUIRE(GLSetVersion(label, (const uint8_t*)"1.1.2", 5) == 0);
  REQUIRE(SetLabel(label, (const uint8_t*)"Secret", 6) == 0);
  REQUIRE(SetCertSerialAndIssuerToHead(label, serial, sizeof serial, &issuer) == 0);
  REQUIRE(SetBodySignAttr(label, 0, &signer) == 0);
  REQUIRE(SetFileAlignSize(label, 4096) == 0);
  REQUIRE(EncodeLabel(label, der, &size) == 0);
  FreeHandleLabel(label);
  REQUIRE(DecodeLabel(der, size, &label) == 0);
  REQUIRE(GetFileAlignSize(label, &size) == 0 && size == 4096);
  FreeHandleLabel(label);
  return 0;
}
