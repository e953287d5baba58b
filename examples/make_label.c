/*
 * Makes a label, complete but for the value of its head signature.
 *
 *   make_label VERSION CIPHER ALGORITHM CERT SERIAL FILE-SIGNATURE OUT ATTRIBUTE=TEXT...
 *
 * writes the label to OUT, what its maker has to sign to OUT.message and what is to be encrypted to
 * OUT.body. The library does no cryptography: scripts/demo.sh signs and encrypts with openssl, and
 * finish_label takes the results. VERSION is 6.0, 1.1, 1.1.1 or 1.1.2; CIPHER is such as
 * AES.256.CBC, or - for a label that stays plain; SERIAL is the certificate's serial number in
 * hexadecimal, and the attributes are its issuer's: C=XX O=Example CN=Root. Without arguments it
 * writes nothing and shows how large labels with made-up values are.
 */
#include "example.h"

enum { kMaxIssuer = 10, kMaxSerial = 64 };

typedef struct {
  const char* version;
  const char* cipher;
  char* algorithm;
  Bytes certificate;
  Bytes file_signature;
} Choices;

/* The version comes first, since it decides how the other values are stored. */
static void set_head(TqLabel label, const Choices* choices) {
  const char* version = choices->version;
  const char* algorithm = choices->algorithm;
  const char* cipher = choices->cipher;
  need(GLSetVersion(label, text(version), length_of(version)) == 0, version);
  need(SetLabel(label, text("internal"), 8) == 0, "label text");
  need(SetCustom(label, text("any bytes"), 9) == 0, "custom bytes");
  need(SetHeadCreateTime(label) == 0 && SetHeadModifyTime(label, 1700000000) == 0, "times");
  need(SetHeadSignAlg(label, text(algorithm), length_of(algorithm)) == 0, algorithm);
  need(SetHeadSignCert(label, choices->certificate.data, choices->certificate.length) == 0,
       "signer certificate");
  if (strcmp(cipher, "-") == 0) return;
  need(SetEncryptHead(label, text(cipher), length_of(cipher), 0) == 0, cipher);
}

/* The signer is named by the serial number of the certificate and by who issued it. */
static void set_signer(TqLabel label, const char* hex, int count, char* const* attributes) {
  uint8_t serial[kMaxSerial] = {0};
  uint32_t length = 0;
  for (unsigned octet = 0; sscanf(hex, "%2x", &octet) == 1; hex += 2) {
    need(hex[1] != '\0' && length + 1 < kMaxSerial, "SERIAL is not pairs of digits");
    if (length == 0 && octet >= 0x80) length = 1; /* an INTEGER above zero begins with a zero bit */
    serial[length++] = (uint8_t)octet;
  }
  PJCertIssuerEntry entries[kMaxIssuer] = {0};
  need(count <= kMaxIssuer, "an issuer has at most 10 attributes");
  for (int i = 0; i < count; ++i) {
    PJCertIssuerEntry* entry = &entries[i];
    const char* type = attributes[i];
    const char* value = strchr(type, '=');
    need(value != NULL && strlen(value + 1) <= sizeof entry->value, type);
    const uint32_t type_length = (uint32_t)(value - type);
    entry->typeLen = sizeof entry->type; /* the room, then the length */
    need(SflAlg2OID(text(type), type_length, 0, 0, entry->type, &entry->typeLen) == 0, type);
    entry->valueTag = 12; /* UTF8String */
    entry->valueLen = length_of(value + 1);
    memcpy(entry->value, value + 1, entry->valueLen);
  }
  const PJCertIssuer issuer = {entries, (uint32_t)count, kMaxIssuer};
  need(SetCertSerialAndIssuerToHead(label, serial, length, &issuer) == 0, "serial and issuer");
}

/* What the label says of the file, and whose signature the file has. */
static void set_body(TqLabel label, const Choices* choices) {
  uint8_t name[] = "report.odt";
  uint8_t title[] = "Quarterly report";
  const ContentAttrInfo content = {.fileType = 1,
                                   .secrecy = 2,
                                   .fileSize = 48213,
                                   .fileName = name,
                                   .fileNameLen = sizeof name - 1,
                                   .fileTitle = title,
                                   .fileTitleLen = sizeof title - 1,
                                   .modifyTime = 1700000000,
                                   .expiryTime = 1900000000};
  const SignAttribute signature = {choices->algorithm, choices->file_signature.data,
                                   choices->file_signature.length, choices->certificate.data,
                                   choices->certificate.length};
  need(SetContentAtrr(label, &content) == 0, "content attributes");
  need(GLSetFileNo(label, "2023-114") == 0, "file number");
  need(SetBodySignAttr(label, 0, &signature) == 0, "file signature");
}

static TqLabel make_label(const Choices* choices, const char* serial, int count,
                          char* const* issuer) {
  TqLabel label = GetHandleLabel();
  need(label != NULL, "out of memory");
  set_head(label, choices);
  set_signer(label, serial, count, issuer);
  set_body(label, choices);
  return label;
}

static void save(TqLabel label, int32_t (*part)(TqLabel, uint8_t*, uint32_t*), const char* path,
                 const char* suffix) {
  char name[4096];
  need(snprintf(name, sizeof name, "%s%s", path, suffix) < (int)sizeof name, path);
  const Bytes bytes = get(part, label);
  write_file(name, bytes);
  free(bytes.data);
}

static void show_made_up_labels(void) {
  static const char* const versions[] = {"6.0", "1.1", "1.1.1", "1.1.2"};
  static char algorithm[] = "sha256WithRSAEncryption";
  static char* issuer[] = {"C=XX", "O=Example", "CN=Example root"};
  uint8_t certificate[] = {0x30, 3, 2, 1, 1}; /* any SEQUENCE passes for one */
  uint8_t signature[32] = {1};
  for (size_t i = 0; i < sizeof versions / sizeof *versions; ++i) {
    const Choices choices = {versions[i],
                             "-",
                             algorithm,
                             {certificate, sizeof certificate},
                             {signature, sizeof signature}};
    TqLabel label = make_label(&choices, "C0FFEE", 3, issuer);
    const Bytes der = get(EncodeLabel, label);
    printf("a label of version %s has %u bytes\n", versions[i], (unsigned)der.length);
    free(der.data);
    FreeHandleLabel(label);
  }
}

int main(int count, char** arguments) {
  if (count == 1) {
    show_made_up_labels();
    return EXIT_SUCCESS;
  }
  need(count > 8, "usage: VERSION CIPHER ALGORITHM CERT SERIAL FILE-SIGNATURE OUT ATTRIBUTE=TEXT");
  const Choices choices = {arguments[1], arguments[2], arguments[3], read_file(arguments[4]),
                           read_file(arguments[6])};
  TqLabel label = make_label(&choices, arguments[5], count - 8, arguments + 8);
  save(label, EncodeLabel, arguments[7], "");
  save(label, GetSignatureMessage, arguments[7], ".message");
  save(label, EncodeBodyPlaint, arguments[7], ".body");
  FreeHandleLabel(label);
  free(choices.certificate.data);
  free(choices.file_signature.data);
  return EXIT_SUCCESS;
}
