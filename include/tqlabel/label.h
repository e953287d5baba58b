/**
 * @file
 * Security labels of protected files: building, reading and editing them.
 *
 * A label is one DER value (X.690) that travels with a file. It is a SEQUENCE of a head and a body.
 * The head says who may open the file: names, times, the cipher and one wrapped key per recipient.
 * The body describes the file: content fields, markings, privileges, logs and signatures. The body
 * may be encrypted, and zeros may follow it, so that the label fills the room that a file keeps for
 * it. Nothing is encrypted, signed or verified here: keys, certificates and signatures are stored.
 *
 * Handles and ownership
 * - A #TqLabel handle owns all that hangs off it, until FreeHandleLabel(). Setters copy the
 *   caller's bytes and release the ones that they replace. Nothing that was handed in is kept or
 *   released.
 * - What a function allocates for a caller is the caller's; the function says what releases it.
 *   Each byte buffer of such a record has a zero behind it that its length does not count.
 * - An enumerator points into its label: it must not outlive the handle or a change of the list.
 *
 * Results
 * - 0 is success and -1 is failure, unless a function says otherwise; a few have further answers.
 * - A failed call leaves outputs and label as they were, unless the function says what it left.
 *   Every function may fail for want of memory. There is no error text.
 * - A setter that runs out of memory leaves its field as it was, unless it says otherwise.
 *
 * Output buffers. A function that hands out bytes takes a buffer and a pointer to a length.
 * - A null buffer is a size query: the length is stored and the result is 0.
 * - A buffer that is too short fails: -1, and neither the buffer nor the length is changed.
 * - Otherwise the bytes are copied, without a terminating zero, and their length is stored.
 * - Lengths are 32-bit, or 8-bit where the setter of the field takes an 8-bit length. Where a
 *   decoded label holds a field of more than 255 bytes, its 8-bit getter gives -1. Arguments that
 *   are passed by value are 32 bits wide; where the low 8 bits alone count, the parameter says so.
 *
 * Versions. A label is of version "6.0", or "1.1", "1.1.1" or "1.1.2" (the "1.1" family). Set it
 * first, once, with GLSetVersion(): it decides how algorithms and names are stored, which fields
 * are written, and what many functions do. Functions that depend on it fail without one.
 * - "6.0" stores algorithms as text, and no issuer names.
 * - The "1.1" family stores algorithms as object identifiers: callers hand in the names that
 *   SflAlg2OID() knows and read back base names, without key length and mode.
 * - "1.1.1" and "1.1.2" add alignment sizes. "1.1.2" has a chain of signatures in the body in place
 *   of one, and leaves out markings that were not set.
 *
 * Threads. There is no global state: distinct handles may be used from distinct threads. One
 * handle, with its enumerators, must not be used from two threads at once.
 *
 * Memory. All of it comes from Asn1Malloc() and goes back through Asn1Free().
 *
 * Hostile input. Functions that take encoded bytes accept any bytes: what is not a label gives -1,
 * nothing is read outside the bytes given, and they need not outlive the call. Bytes behind the
 * outermost element are ignored. What a decoded label contains is as its writer chose: lengths may
 * be larger than a setter would allow, and texts may lack the terminating zero or hold several.
 *
 * Times are seconds since the Unix epoch; 0 is "not set". A label with a time behind
 * 9999-12-31T23:59:59Z does not encode.
 */
#ifndef TQLABEL_LABEL_H
#define TQLABEL_LABEL_H

#include <stdint.h>
#include <tqasn1/asn1.h>

/** Marks a function that libtqlabel exports. */
#define TQ_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup handles Handles and versions
 *
 * @{
 */

/** A label: from GetHandleLabel() or a decoder, released with FreeHandleLabel(). */
typedef struct TqLabelHandle* TqLabel;

/**
 * Creates an empty label without a version.
 * @return the handle, or null when there is no memory
 */
TQ_API TqLabel GetHandleLabel(void);

/**
 * Releases a label with all that it owns. Linear in the number of list entries.
 * @param[in] label  label handle, or null
 */
TQ_API void FreeHandleLabel(TqLabel label);

/**
 * Sets the format version of a label.
 *
 * An unknown text is stored too, and gives 0: such a label fails to encode. So does one whose
 * version was changed to a text that the handle does not follow, as from "1.1.2" to "1.1", or whose
 * text holds a zero byte.
 * @param[in] label   label handle, not null
 * @param[in] text    "6.0", "1.1", "1.1.1" or "1.1.2", not null
 * @param[in] length  length of @p text in bytes, 1 to 128; only the low 8 bits count
 * @retval 0   stored
 * @retval -1  a null argument, a length out of range, or no memory
 */
TQ_API int32_t GLSetVersion(TqLabel label, const uint8_t* text, uint32_t length);

/**
 * Hands out the version text as it was set or decoded.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the text, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, or a text of more than 255 bytes
 */
TQ_API int32_t GLGetVersion(TqLabel label, uint8_t* buffer, uint8_t* length);

/** @} */

/**
 * @defgroup coding Encoding and decoding
 *
 * To encode, a label needs a version; in the "1.1" family an issuer in its head
 * (SetCertSerialAndIssuerToHead()), except in EncodeBodyPlaint(); outside "1.1.2" the certificate
 * of the body's signer (SetBodySignCert()); and the certificate of each signature that has an
 * algorithm. Names encode only with the attributes CN, C, L, ST, O, OU and E, and with the string
 * types that #PJCertIssuerEntry lists. What decodes from the four versions and keeps to these rules
 * encodes to the bytes that it came from.
 *
 * Encoding is linear in the size of the label; a size query costs no copy.
 *
 * @{
 */

/**
 * Encodes a label with its body in the clear: SEQUENCE { head, body }.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the DER, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, a label that does not encode, or no memory
 */
TQ_API int32_t EncodeLabel(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Encodes a label with its body in the clear and its padding:
 * SEQUENCE { head, body, OCTET STRING }.
 *
 * The padding is what SetLabelPadSize() has set; without one it is an empty OCTET STRING.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the DER, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, a label that does not encode, padding whose bytes
 *             could not be allocated, or no memory
 */
TQ_API int32_t EncodeLabelPad(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Encodes a label around an encrypted body: SEQUENCE { head, OCTET STRING }.
 *
 * The body of the handle takes no part. Bodies of at least 128 bytes are read back by
 * DecodeLabelEncrypted(); it reports shorter ones as empty.
 * @param[in]     label    label handle, not null
 * @param[in]     body     the encrypted result of EncodeBodyPlaint(), not null
 * @param[in]     bodyLen  length of @p body in bytes
 * @param[out]    buffer   room for the DER, or null to ask for its length
 * @param[in,out] length   capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, a head that does not encode, or no memory
 */
TQ_API int32_t EncodeLabelEncrypted(TqLabel label, const uint8_t* body, uint32_t bodyLen,
                                    uint8_t* buffer, uint32_t* length);

/**
 * Encodes a label around an encrypted body, with its padding:
 * SEQUENCE { head, OCTET STRING, OCTET STRING }.
 *
 * Body and padding are as of EncodeLabelEncrypted() and EncodeLabelPad().
 * @param[in]     label    label handle, not null
 * @param[in]     body     the encrypted result of EncodeBodyPlaint(), not null
 * @param[in]     bodyLen  length of @p body in bytes
 * @param[out]    buffer   room for the DER, or null to ask for its length
 * @param[in,out] length   capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, a head that does not encode, padding whose bytes
 *             could not be allocated, or no memory
 */
TQ_API int32_t EncodeLabelPadEncrypted(TqLabel label, const uint8_t* body, uint32_t bodyLen,
                                       uint8_t* buffer, uint32_t* length);

/**
 * Encodes the body alone: the plaintext that a caller encrypts for EncodeLabelEncrypted().
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the DER, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, a body that does not encode, or no memory
 */
TQ_API int32_t EncodeBodyPlaint(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Encodes the message that the head signature signs: the label as of EncodeLabel(), but with a head
 * signature that lacks its value.
 *
 * The certificate and the algorithm of the head signature are part of the message: set them first,
 * and store the result of signing with SetHeadSignValue().
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the message, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, a label that does not encode, or no memory
 */
TQ_API int32_t GetSignatureMessage(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Decodes a label whose body is in the clear; padding and what follows it are ignored.
 * @param[in]  der     the encoded label, not null
 * @param[in]  derLen  number of bytes at @p der
 * @param[out] label   receives a new handle, released with FreeHandleLabel(); not null
 * @retval 0   decoded
 * @retval -1  a null argument, no such label (one with an encrypted body included), or no memory
 */
TQ_API int32_t DecodeLabel(const uint8_t* der, uint32_t derLen, TqLabel* label);

/**
 * Decodes the head of a label and hands out its encrypted body.
 *
 * With a null buffer the length of the body is stored and no handle is made. An encrypted body of
 * less than 128 bytes has length 0 here, and none of it is copied.
 *
 * Decrypt the bytes and hand them to DecodeLabelDecrypted() to fill the body of the new handle.
 * @param[in]     der     the encoded label, not null
 * @param[in]     derLen  number of bytes at @p der
 * @param[out]    buffer  room for the encrypted body, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @param[out]    label   receives a new handle with an empty body, released with FreeHandleLabel();
 *                        not null, unless @p buffer is
 * @retval 0   decoded, or the length stored
 * @retval -1  a null argument, a short buffer, no such label, or no memory; buffer, length and
 *             handle are unchanged
 */
TQ_API int32_t DecodeLabelEncrypted(const uint8_t* der, uint32_t derLen, uint8_t* buffer,
                                    uint32_t* length, TqLabel* label);

/**
 * Decodes a decrypted body into a label, in place of the body that it held.
 * @param[in] label   label handle with the version of the body, not null
 * @param[in] der     the body as EncodeBodyPlaint() made it, not null
 * @param[in] derLen  number of bytes at @p der
 * @retval 0   decoded
 * @retval -1  a null argument, a label without a version, no such body, or no memory; a body that
 *             fails to decode once it has taken the place of the earlier one leaves none at all
 */
TQ_API int32_t DecodeLabelDecrypted(TqLabel label, const uint8_t* der, uint32_t derLen);

/**
 * Tells whether the body of a label is to be encrypted: whether SetEncryptHead() or the decoded
 * head names a cipher.
 * @param[in] label  label handle, not null
 * @retval 1   the head names a cipher
 * @retval 0   it names none
 * @retval -1  a null handle
 */
TQ_API int32_t LabelBodyNeedEnc(TqLabel label);

/**
 * Tells from encoded bytes whether the body of a label is encrypted; reads the head only.
 * @param[in] der     the encoded label, not null
 * @param[in] derLen  number of bytes at @p der
 * @retval 1   the head names a cipher
 * @retval 0   it names none
 * @retval -1  a null argument, a negative length, no label, or no memory
 */
TQ_API int32_t LabelBodyWeatherEnc(const uint8_t* der, int32_t derLen);

/** @} */

/**
 * @defgroup algorithms Algorithms
 *
 * A cipher name is a base name, or base name, key length and mode with dots between them, as in
 * "AES.256.CBC". Names are compared without regard to case.
 *
 * @{
 */

/**
 * Converts an algorithm name to an object identifier.
 *
 * Key length and mode are appended to the name before it is looked up, and no known name is longer
 * than 31 bytes with them. A name that has them already is looked up with 0 and 0; that is the only
 * way to a key length of 128. Linear in the number of known algorithms.
 * @param[in]     name     the name, not null; needs no terminating zero
 * @param[in]     nameLen  length of @p name in bytes, 1 to 31
 * @param[in]     mode     0 none, 1 ECB, 2 CBC, 3 OFB, 4 CFB; only the low 8 bits count
 * @param[in]     keyLen   0 none, or 64, 112, 192, 224 or 256 bits
 * @param[out]    oid      room for the content octets (X.690 8.19), or null to ask for their
 *                         number; 16 bytes hold any
 * @param[in,out] oidLen   capacity of @p oid in bytes; receives the number of octets; not null
 * @retval 0   converted, or the number stored
 * @retval -1  a null argument, a length, mode or key length out of range, an unknown name, or a
 *             short buffer
 */
TQ_API int32_t SflAlg2OID(const uint8_t* name, uint32_t nameLen, uint32_t mode, int32_t keyLen,
                          uint8_t* oid, uint32_t* oidLen);

/**
 * Converts an object identifier to the base name of its algorithm.
 *
 * The base name ends at the first dot: both "AES" and "AES.256.CBC" give "AES". Key length and mode
 * are outputs of their own, which stay as they were where the name does not have that part; of the
 * mode only that there is one is reported. Logarithmic in the number of known algorithms.
 * @param[in]  oid     content octets of the identifier (X.690 8.19), not null
 * @param[in]  oidLen  their number, not 0
 * @param[out] name    32 bytes that the caller has zeroed, not null; no terminating zero is written
 * @param[out] mode    receives 1 when the name has a mode; may be null
 * @param[out] keyLen  receives the key length of a name that has one: 64, 112, 192 or 256 bits; may
 *                     be null
 * @retval 0    converted
 * @retval 257  converted, but the key length is another one (128 among them); neither @p keyLen nor
 *              @p mode is written. Never without @p keyLen.
 * @retval -1   a null argument, no octets, or an unknown identifier
 */
TQ_API int32_t SflOID2Alg(const uint8_t* oid, uint32_t oidLen, char* name, uint8_t* mode,
                          uint32_t* keyLen);

/**
 * Sets the algorithm of the head signature.
 *
 * "6.0" stores the name as it is, known or not; the "1.1" family stores its object identifier.
 * @param[in] label    label handle with a version, not null
 * @param[in] name     the name, not null; needs no terminating zero
 * @param[in] nameLen  length of @p name in bytes; at most 31 in the "1.1" family
 * @retval 0   stored
 * @retval -1  a null argument, no version, an unknown name in the "1.1" family, or no memory;
 *             unless an argument was null, the head has no signature algorithm then
 */
TQ_API int32_t SetHeadSignAlg(TqLabel label, const uint8_t* name, uint32_t nameLen);

/**
 * Hands out the name of the head signature's algorithm: the stored text in "6.0", the base name of
 * the stored identifier in the "1.1" family.
 * @param[in]     label   label handle with a version, not null
 * @param[out]    buffer  room for the name, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, no version, or, in the "1.1" family, no algorithm or
 *             an unknown one
 */
TQ_API int32_t GetHeadSignAlg(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Hands out the name of the head signature's algorithm from an encoded label whose head names a
 * cipher; reads the head only.
 * @param[in]     der     the encoded label, not null
 * @param[in]     derLen  number of bytes at @p der, not 0
 * @param[out]    buffer  room for the name, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a length of 0 or below, no label, a head that names no cipher, or as
 *             of GetHeadSignAlg()
 */
TQ_API int32_t GetSignAlgName(const uint8_t* der, int32_t derLen, uint8_t* buffer,
                              uint32_t* length);

/**
 * Does nothing; kept for programs that call it. SetEncryptHead() sets the cipher.
 * @retval 0  always
 */
TQ_API int32_t SetCipherAndMode(void);

/** @} */

/**
 * @defgroup names Names
 *
 * The distinguished name of a certificate's issuer (X.501, RFC 5280 4.1.2.4), flat for callers and
 * as a chain of attributes. Each relative name has one attribute.
 *
 * @{
 */

/** One attribute of an issuer name. An entry that breaks a limit equals no attribute. */
typedef struct PJCertIssuerEntry {
  uint8_t type[16];   /**< content octets of the attribute type's identifier, from the left */
  uint32_t typeLen;   /**< number of octets in `type`, to 16 */
  uint8_t value[128]; /**< bytes of the string, from the left */
  uint32_t valueLen;  /**< number of bytes in `value`, to 128 */
  uint32_t valueTag;  /**< its type: 12 UTF8String (written as 19), 19 PrintableString,
                           22 IA5String or 30 BMPString; an e-mail address is written as 22 */
} PJCertIssuerEntry;

/** An issuer name: what FreeIssuerName() releases when the library has made it. */
typedef struct PJCertIssuer {
  PJCertIssuerEntry* entries; /**< the attributes in the order of the name */
  uint32_t count;             /**< number of entries in use, to 10 */
  uint32_t capacity;          /**< number of entries that there is room for: 10 in records that the
                                   library makes; looked at where it fills a caller's record */
} PJCertIssuer;

/**
 * One attribute of a name chain. The first node is its owner's; the further ones and all bytes are
 * blocks of Asn1Malloc(). A zeroed node is an empty name.
 */
typedef struct X509Name {
  ANYBUF type;           /**< content octets of the attribute type's identifier */
  ANYBUF value;          /**< bytes of the string, with its type as ANYBUF::type */
  struct X509Name* next; /**< the next attribute, or null */
} X509Name;

/**
 * Tells whether every attribute of an issuer occurs in a name, in any order.
 *
 * Types and values are compared byte by byte; string types are not. The name may have further
 * attributes. Compares each entry with each attribute.
 * @param[in] name    first node of the name, not null
 * @param[in] issuer  the issuer; null or without entries, it matches every name
 * @retval 0   all of them occur
 * @retval -1  one does not, or @p name is null
 */
TQ_API int32_t X509NameCmp(const X509Name* name, const PJCertIssuer* issuer);

/**
 * Converts a flat issuer to a name chain, in place of what the chain holds.
 * @param[in]     issuer  the issuer, with 1 to 10 entries; not null
 * @param[in,out] name    first node: zeroed, or filled by an earlier call; not null. The nodes
 *                        behind it and all bytes are released with Asn1Free(), each by itself.
 * @retval 0   converted
 * @retval -1  a null argument, no entry or too many, an entry that breaks a limit: the chain is
 *             unchanged; or no memory: it holds the part that was built
 */
TQ_API int32_t ConvertIssuerName2PJCertIssuer(const PJCertIssuer* issuer, X509Name* name);

/**
 * Converts a name chain to a new flat issuer; an empty name gives one with a count of 0.
 * @param[in]  name    first node of the name, not null
 * @param[out] issuer  receives the issuer, released with FreeIssuerName(); not null
 * @retval 0   converted
 * @retval -1  a null argument, more than 10 attributes, a type of more than 16 octets, a value of
 *             more than 128 bytes, or no memory
 */
TQ_API int32_t ConvertPJCertIssuer2IssuerName(const X509Name* name, PJCertIssuer** issuer);

/**
 * Releases an issuer that the library has made, with its entries.
 *
 * A record without entries is left alone: release it with Asn1Free().
 * @param[in] issuer  the issuer, or null
 * @retval 0  always
 */
TQ_API int32_t FreeIssuerName(PJCertIssuer* issuer);

/** @} */

/**
 * @defgroup signatures Signatures
 *
 * The head has one signature. The body has one of a value and a certificate or, in "1.1.2", a chain
 * of them in which each signer signs the signatures before its own. A certificate is a DER
 * SEQUENCE, kept as it is; that it is one is checked when the label is encoded.
 *
 * Where the algorithm is "sha1WithIBCCS-1Encryption" in the "1.1" family, the certificate is a flat
 * blob instead: the length of the identity as 4 bytes, least significant first, the identity, the
 * length of s1 likewise, s1, and s2 to the end. A blob that breaks this fails to encode.
 *
 * @{
 */

/** One signature of a body: what a setter stores, or the buffers that a getter fills. */
typedef struct SignAttribute {
  char* algName;     /**< name of the algorithm, zero-terminated */
  uint8_t* value;    /**< the signature value */
  uint32_t valueLen; /**< its length in bytes; capacity of `value` on entry of GetNextSign() */
  uint8_t* cert;     /**< the signer's certificate */
  uint32_t certLen;  /**< its length in bytes; capacity of `cert` on entry of GetNextSign() */
} SignAttribute;

/** What GetMultiSignData() is asked, and its output buffer. */
typedef struct MultiSignData {
  uint8_t* cert;    /**< certificate of the signer whose message is asked for; null for the whole */
  uint32_t certLen; /**< its length in bytes */
  uint8_t* data;    /**< room for the message, or null to ask for its length */
  uint32_t dataLen; /**< capacity of `data` in bytes on entry; receives the length */
} MultiSignData;

/** Walks the signatures of a body: from CreateEmurateSign() to DestroySignEmura(). */
typedef struct SignEnum SignEnum;

/**
 * Sets the certificate of the head's signer.
 * @param[in] label    label handle, not null
 * @param[in] cert     the certificate, not null
 * @param[in] certLen  its length in bytes; 0 leaves an empty field
 * @retval 0   stored
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t SetHeadSignCert(TqLabel label, const uint8_t* cert, uint32_t certLen);

/**
 * Hands out the certificate of the head's signer.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the certificate, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, or a short buffer
 */
TQ_API int32_t GetHeadSignCert(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Sets the value of the head signature: what signing GetSignatureMessage() gave.
 * @param[in] label     label handle, not null
 * @param[in] value     the signature value, not null
 * @param[in] valueLen  its length in bytes; 0 leaves an empty field
 * @retval 0   stored
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t SetHeadSignValue(TqLabel label, const uint8_t* value, uint32_t valueLen);

/**
 * Hands out the value of the head signature.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the value, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, or a short buffer
 */
TQ_API int32_t GetHeadSignValue(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Sets the certificate of the body's signer. Every version but "1.1.2" needs one to encode; "1.1.2"
 * does not write it.
 * @param[in] label    label handle, not null
 * @param[in] cert     the certificate, not null
 * @param[in] certLen  its length in bytes, not 0
 * @retval 0   stored
 * @retval -1  a null argument, a length of 0, or no memory
 */
TQ_API int32_t SetBodySignCert(TqLabel label, const uint8_t* cert, uint32_t certLen);

/**
 * Hands out the certificate of the body's signer.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the certificate, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, or a short buffer
 */
TQ_API int32_t GetBodySignCert(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Sets the value of the body signature; "1.1.2" does not write it.
 * @param[in] label     label handle, not null
 * @param[in] value     the signature value, not null
 * @param[in] valueLen  its length in bytes: a multiple of 32, 0 included
 * @retval 0   stored
 * @retval -1  a null argument, another length, or no memory
 */
TQ_API int32_t SetBodySigVal(TqLabel label, const uint8_t* value, uint32_t valueLen);

/**
 * Hands out the value of the body signature.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the value, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, or a short buffer
 */
TQ_API int32_t GetBodySigVal(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Sets or adds a body signature.
 *
 * In "1.1.2" it replaces the whole chain or becomes its last one. Members that are missing do not
 * fail the call: unless name, value and certificate are all there, the record in the chain stays
 * empty. A name that SflAlg2OID() does not know is stored as 64 zero octets, which have no name.
 *
 * In the other versions certificate and value are stored as by SetBodySignCert() and
 * SetBodySigVal(); what these refuse is passed over, and without a value nothing happens. The
 * algorithm is that of the head signature: @p attribute has no say in it.
 * @param[in] label      label handle, not null
 * @param[in] append     "1.1.2": 0 replaces the chain, any other value adds to its end; not looked
 *                       at in other versions
 * @param[in] attribute  the signature, not null
 * @retval 0   done as described
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t SetBodySignAttr(TqLabel label, int32_t append, const SignAttribute* attribute);

/**
 * Hands out the body signature; in "1.1.2" the first one of the chain.
 *
 * In "1.1.2" capacities are not looked at: the buffers must be large enough. Their sizes can be
 * asked for with GetNextSign() on a new enumerator, with null buffers. In other versions value and
 * certificate follow the rules of output buffers, each by itself: what is too short is left as it
 * was, and the result is 0 nevertheless.
 * @param[in]     label      label handle, not null
 * @param[in,out] attribute  the caller's three buffers, not null: 64 zeroed bytes for the name,
 *                           which receive an empty text where the algorithm has none, and value and
 *                           certificate, whose lengths are stored
 * @retval 0   done as described
 * @retval -1  a null argument
 */
TQ_API int32_t GetBodySignAttr(TqLabel label, SignAttribute* attribute);

/**
 * Creates an enumerator of the body's signatures, before the first of them.
 * @param[in]  label       label handle, not null
 * @param[out] enumerator  receives the enumerator, released with DestroySignEmura(); not null
 * @retval 0   created
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t CreateEmurateSign(TqLabel label, SignEnum** enumerator);

/**
 * Hands out the next body signature; versions other than "1.1.2" have exactly one.
 *
 * With a null value or certificate buffer this is a size query: both lengths are stored and the
 * enumerator stays where it is. It advances on success only.
 *
 * The name is that of the head signature's algorithm, whatever the signature's own one.
 * @param[in,out] enumerator  enumerator of CreateEmurateSign(), not null
 * @param[in,out] attribute   value and certificate buffers with their capacities, not null;
 *                            receives the lengths and, unless this is a size query, a pointer to
 *                            the name of at most 63 characters. The name is the enumerator's and
 *                            lasts until the next call with it, a size query included.
 * @retval 0   handed out, or the lengths stored
 * @retval 1   there are no more
 * @retval -1  a null argument, a short buffer, no memory, or, with both buffers, a head of the
 * "1.1" family without a known signature algorithm
 */
TQ_API int32_t GetNextSign(SignEnum* enumerator, SignAttribute* attribute);

/**
 * Releases an enumerator of signatures with the name that it handed out last.
 * @param[in] enumerator  enumerator of CreateEmurateSign(), or null
 * @retval 0  always
 */
TQ_API int32_t DestroySignEmura(SignEnum* enumerator);

/**
 * Releases an enumerator of CreatEmurateDigitEnvolop().
 *
 * It releases that one block only: an enumerator of signatures would lose the name that it holds.
 * @param[in] enumerator  the enumerator, or null
 * @retval 0  always
 */
TQ_API int32_t DestroyEmura(void* enumerator);

/**
 * Hands out the bytes that one signer of a "1.1.2" body signs: the encoded chain of all signatures
 * before its own.
 *
 * The first signer has nothing to sign: length 0. A certificate that is not in the chain gives the
 * whole chain, since its signature comes last; so does a null one. In other versions the length is
 * 0.
 *
 * Linear in the length of the chain.
 * @param[in]     label    label handle, not null
 * @param[in,out] request  certificate and output buffer, not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, a signature that does not encode, or no memory
 */
TQ_API int32_t GetMultiSignData(TqLabel label, MultiSignData* request);

/**
 * Stores a signature SEQUENCE that is encoded already in a "1.1.2" label that has none.
 *
 * It becomes the certificate field of the chain's first record.
 * @param[in] label   label handle, not null
 * @param[in] bytes   the SEQUENCE; null only where the answer is 1
 * @param[in] length  its length in bytes, not 0 unless the answer is 1
 * @retval 0   stored
 * @retval 1   nothing to do: another version, or a label that is signed
 * @retval -1  a null argument, a length of 0, or no memory
 */
TQ_API int32_t FileHaveSigned(TqLabel label, const uint8_t* bytes, uint32_t length);

/**
 * Accepts every certificate; kept for programs that call it.
 * @retval 0  always
 */
TQ_API int32_t VerifySignCertConsistent(void);

/** @} */

/**
 * @defgroup head Head fields
 *
 * @{
 */

/**
 * Stores the label text in the head, replacing an earlier one.
 * @param[in] label   label handle, not null
 * @param[in] text    bytes of the text, not null
 * @param[in] length  length of @p text in bytes, 1 to 128; only the low 8 bits count
 * @retval 0   stored
 * @retval -1  a null argument, a length out of range, or no memory
 */
TQ_API int32_t SetLabel(TqLabel label, const uint8_t* text, uint32_t length);

/**
 * Hands out the label text.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the text, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, or a text of more than 255 bytes
 */
TQ_API int32_t GetLabel(TqLabel label, uint8_t* buffer, uint8_t* length);

/**
 * Copies the label text out of an encoded label whose head names a cipher; reads the head only.
 *
 * Neither a length nor a terminating zero is written: zero the room first. Where the head names no
 * cipher nothing is copied and the result is 0.
 * @param[in]  der     the encoded label, not null
 * @param[in]  derLen  number of bytes at @p der
 * @param[out] text    room for 128 bytes, not null
 * @retval 0   copied, or not encrypted
 * @retval -1  a null argument, no label, a text of more than 128 bytes, or no memory
 */
TQ_API int32_t GetLable(const uint8_t* der, uint32_t derLen, uint8_t* text);

/**
 * Stores the custom bytes of the head, free for any use.
 * @param[in] label   label handle, not null
 * @param[in] bytes   the bytes; may be null when @p length is 0
 * @param[in] length  their number; 0 clears the field
 * @retval 0   stored
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t SetCustom(TqLabel label, const uint8_t* bytes, uint32_t length);

/**
 * Hands out the custom bytes of the head.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the bytes, or null to ask for their number
 * @param[in,out] length  capacity of @p buffer in bytes; receives the number; not null
 * @retval 0   copied, or the number stored
 * @retval -1  a null argument, or a short buffer
 */
TQ_API int32_t GetCustom(TqLabel label, uint8_t* buffer, uint32_t* length);

/**
 * Hands out the custom bytes of an encoded label; reads the head only, but there must be a second
 * element.
 * @param[in]     der     the encoded label, not null
 * @param[in]     derLen  number of bytes at @p der, not 0
 * @param[out]    buffer  room for the bytes, or null to ask for their number
 * @param[in,out] length  capacity of @p buffer in bytes, with a sign; receives the number; not null
 * @retval 0   copied, or the number stored
 * @retval -1  a null argument, a length of 0 or below, no label, a short buffer, or no memory
 */
TQ_API int32_t GetCustomAttr(const uint8_t* der, int32_t derLen, uint8_t* buffer, int32_t* length);

/**
 * Stores the serial number of the certificate that the head is addressed to.
 * @param[in] label   label handle, not null
 * @param[in] serial  content octets of the INTEGER (RFC 5280 4.1.2.2), not null; written as they
 *                    are
 * @param[in] length  their number, 1 to 128; only the low 8 bits count
 * @retval 0   stored
 * @retval -1  a null argument, a length out of range, or no memory
 */
TQ_API int32_t SetHeadSerialNum(TqLabel label, const uint8_t* serial, uint32_t length);

/**
 * Hands out the serial number of the head.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the octets, or null to ask for their number
 * @param[in,out] length  capacity of @p buffer in bytes; receives the number; not null
 * @retval 0   copied, or the number stored
 * @retval -1  a null argument, a short buffer, or a number of more than 255 octets
 */
TQ_API int32_t GetHeadSerialNum(TqLabel label, uint8_t* buffer, uint8_t* length);

/**
 * Stores serial number and issuer of the certificate that the head is addressed to. "6.0" has no
 * issuer in its head and ignores it.
 * @param[in] label      label handle with a version, not null
 * @param[in] serial     as of SetHeadSerialNum(), not null
 * @param[in] serialLen  number of octets, 1 to 128; only the low 8 bits count
 * @param[in] issuer     the issuer, not null; with 1 to 10 entries in the "1.1" family
 * @retval 0   stored
 * @retval -1  a null argument, no version, a length out of range: nothing is changed; an issuer
 *             that ConvertIssuerName2PJCertIssuer() refuses: the serial number is stored, and the
 *             issuer is as it was; or no memory: what was stored before stays, an issuer in part
 */
TQ_API int32_t SetCertSerialAndIssuerToHead(TqLabel label, const uint8_t* serial,
                                            uint32_t serialLen, const PJCertIssuer* issuer);

/**
 * Hands out serial number and issuer of the head. "6.0" has no issuer: only the serial number is
 * written.
 * @param[in]     label      label handle with a version, not null
 * @param[out]    serial     room for the octets of the serial number, or null to ask for their
 *                           number (a new issuer is handed out all the same)
 * @param[in,out] serialLen  capacity of @p serial in bytes; receives the number; not null
 * @param[out]    issuer     receives a new issuer, released with FreeIssuerName(), its count 0
 *                           where none was set; not null
 * @retval 0   done as described
 * @retval -1  a null argument, a short buffer or no version: nothing is changed; or a name with no
 *             room in a #PJCertIssuer, or no memory: the serial number is written
 */
TQ_API int32_t GetCertSerialAndIssuerToHead(TqLabel label, uint8_t* serial, uint8_t* serialLen,
                                            PJCertIssuer** issuer);

/**
 * Sets the creation time of the label to the present.
 * @param[in] label  label handle, not null
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetHeadCreateTime(TqLabel label);

/**
 * Hands out the creation time of the label.
 * @param[in]  label  label handle, not null
 * @param[out] time   receives the seconds since the Unix epoch, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetHeadCreateTime(TqLabel label, uint64_t* time);

/**
 * Sets the modification time of the label.
 * @param[in] label  label handle, not null
 * @param[in] time   seconds since the Unix epoch
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetHeadModifyTime(TqLabel label, uint64_t time);

/**
 * Hands out the modification time of the label.
 * @param[in]  label  label handle, not null
 * @param[out] time   receives the seconds since the Unix epoch, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetHeadModifyTime(TqLabel label, uint64_t* time);

/**
 * Sets the cipher of the body and its feedback bits, and the mode to 0. A label whose head names a
 * cipher counts as encrypted.
 *
 * "6.0" stores the bytes as they are; the "1.1" family stores the object identifier of the name,
 * which may have key length and mode in it. There a length of 0 removes the cipher and leaves the
 * rest as it was.
 * @param[in] label         label handle with a version, not null
 * @param[in] alg           name of the cipher, not null; needs no terminating zero
 * @param[in] algLen        length of @p alg in bytes, at most 31 in the "1.1" family; only the low
 *                          8 bits count
 * @param[in] feedBackBits  feedback size in bits; only the low 8 bits count; "6.0" does not write
 *                          it
 * @retval 0   stored
 * @retval -1  a null argument, no version, an unknown name in the "1.1" family, or no memory
 */
TQ_API int32_t SetEncryptHead(TqLabel label, const uint8_t* alg, uint32_t algLen,
                              uint32_t feedBackBits);

/**
 * Hands out the cipher of the body and its feedback bits: the stored bytes in "6.0", the base name
 * of the stored identifier in the "1.1" family.
 *
 * The feedback bits are written with the name only: neither by a size query nor, in the "1.1"
 * family, where no cipher is set. The length is 0 there.
 * @param[in]     label         label handle with a version, not null
 * @param[out]    buffer        room for the name, or null to ask for its length
 * @param[in,out] length        capacity of @p buffer in bytes; receives the length; not null
 * @param[out]    feedBackBits  receives the low 8 bits of the feedback size; not null
 * @retval 0   copied, the length stored, or no cipher set
 * @retval -1  a null argument, a short buffer, no version, an unknown identifier, or bytes of more
 *             than 255
 */
TQ_API int32_t GetEncryptHead(TqLabel label, uint8_t* buffer, uint8_t* length,
                              uint8_t* feedBackBits);

/**
 * Sets the feedback size of the body's cipher; "6.0" does not write it.
 * @param[in] label  label handle, not null
 * @param[in] bits   feedback size in bits; only the low 8 bits count
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetHeadFeedBackBits(TqLabel label, uint32_t bits);

/**
 * Hands out the feedback size of the body's cipher.
 * @param[in]  label  label handle, not null
 * @param[out] bits   receives the low 8 bits of the feedback size; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetHeadFeedBackBits(TqLabel label, uint8_t* bits);

/** @} */

/**
 * @defgroup content Content and file fields
 *
 * Fields of the body that describe the file. Their values have no meaning to the library, except
 * for the deadlines (see @ref dates).
 * @{
 */

/** The content fields of a body as one record. */
typedef struct ContentAttrInfo {
  uint32_t fileType;     /**< file type, as of GLSetFileType() */
  uint32_t secrecy;      /**< secrecy level, as of SetFileSecc() */
  uint32_t fileSize;     /**< file size, as of GLSetFileSize() */
  uint8_t* fileName;     /**< file name, as of SetFileName() */
  uint32_t fileNameLen;  /**< its length in bytes */
  uint8_t* fileTitle;    /**< file title, as of GLSetFileTitle() */
  uint32_t fileTitleLen; /**< its length in bytes */
  uint64_t modifyTime;   /**< modification time in seconds, as of SetModifyTime() */
  uint64_t expiryTime;   /**< expiry time in seconds, as of SetExpired() */
  uint64_t abolishTime;  /**< abolition time in seconds, as of AbolishSF() */
  uint64_t destroyTime;  /**< destruction time in seconds, as of SetDestroyTime() */
} ContentAttrInfo;

/** The file creator record of a body. */
typedef struct FileCreatorInfo {
  uint8_t* str1;    /**< file number; GLSetFileNo() stores it with a terminating zero */
  uint32_t str1Len; /**< its length in bytes */
  uint8_t* str2;    /**< second text, the caller's own */
  uint32_t str2Len; /**< its length in bytes */
  uint32_t time;    /**< time in seconds; of a stored one the low 32 bits */
} FileCreatorInfo;

/**
 * Stores all content fields at once, which works once: it fails when the label has a file name or
 * a file title that is not empty, also one from SetFileName() or GLSetFileTitle().
 * @param[in] label    label handle, not null
 * @param[in] content  the fields, not null; a null text needs a length of 0
 * @retval 0   stored
 * @retval -1  a null argument, a null text with a length, fields that are set, or no memory;
 *             nothing is changed then, and it can be called again
 */
TQ_API int32_t SetContentAtrr(TqLabel label, const ContentAttrInfo* content);

/**
 * Hands out all content fields. Capacities are not looked at: ask LabCalSize() for
 * LabelSizeInfo::fileNameLen and LabelSizeInfo::fileTitleLen first.
 * @param[in]     label    label handle, not null
 * @param[in,out] content  room for the two texts, which must not be null; receives their lengths
 *                         and all values; not null
 * @retval 0   copied
 * @retval -1  a null argument, or a null text
 */
TQ_API int32_t GetContentAtrr(TqLabel label, ContentAttrInfo* content);

/**
 * Sets the file type.
 * @param[in] label  label handle, not null
 * @param[in] type   the caller's number for it
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t GLSetFileType(TqLabel label, uint32_t type);

/**
 * Hands out the file type.
 * @param[in]  label  label handle, not null
 * @param[out] type   receives the number, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GLGetFileType(TqLabel label, uint32_t* type);

/**
 * Sets the secrecy level of the file.
 * @param[in] label  label handle, not null
 * @param[in] level  the caller's number for it
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetFileSecc(TqLabel label, uint32_t level);

/**
 * Hands out the secrecy level of the file.
 * @param[in]  label  label handle, not null
 * @param[out] level  receives the number, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetFileSecc(TqLabel label, uint32_t* level);

/**
 * Sets the file size.
 * @param[in] label  label handle, not null
 * @param[in] size   size in the caller's unit
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t GLSetFileSize(TqLabel label, uint32_t size);

/**
 * Hands out the file size.
 * @param[in]  label  label handle, not null
 * @param[out] size   receives the size, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GLGetFileSize(TqLabel label, uint32_t* size);

/**
 * Stores the file name.
 * @param[in] label   label handle, not null
 * @param[in] name    bytes of the name, not null
 * @param[in] length  length of @p name in bytes, to 255; only the low 8 bits count
 * @retval 0   stored
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t SetFileName(TqLabel label, const uint8_t* name, uint32_t length);

/**
 * Hands out the file name.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the name, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, or a name of more than 255 bytes
 */
TQ_API int32_t GetFileName(TqLabel label, uint8_t* buffer, uint8_t* length);

/**
 * Stores the file title.
 * @param[in] label   label handle, not null
 * @param[in] title   bytes of the title, not null
 * @param[in] length  length of @p title in bytes, to 255; only the low 8 bits count
 * @retval 0   stored
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t GLSetFileTitle(TqLabel label, const uint8_t* title, uint32_t length);

/**
 * Hands out the file title.
 * @param[in]     label   label handle, not null
 * @param[out]    buffer  room for the title, or null to ask for its length
 * @param[in,out] length  capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, or a title of more than 255 bytes
 */
TQ_API int32_t GLGetFileTitle(TqLabel label, uint8_t* buffer, uint8_t* length);

/**
 * Sets the modification time of the file.
 * @param[in] label  label handle, not null
 * @param[in] time   seconds since the Unix epoch
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetModifyTime(TqLabel label, uint64_t time);

/**
 * Hands out the modification time of the file.
 * @param[in]  label  label handle, not null
 * @param[out] time   receives the seconds since the Unix epoch, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetModifyTime(TqLabel label, uint64_t* time);

/**
 * Stores the file creator record: its time, and each text whose length is not 0. A text of length 0
 * leaves the stored one as it is.
 * @param[in] label    label handle, not null
 * @param[in] creator  the record, not null
 * @retval 0   stored
 * @retval -1  a null argument, a null text with a length, or no memory; nothing is changed then
 */
TQ_API int32_t SetBodyFileCreator(TqLabel label, const FileCreatorInfo* creator);

/**
 * Hands out the file creator record. Capacities are not looked at: ask LabCalSize() for
 * LabelSizeInfo::fileNoLen and LabelSizeInfo::creatorStr2Len first.
 * @param[in]     label    label handle, not null
 * @param[in,out] creator  room for the two texts, which must not be null; receives their lengths
 *                         and the time; not null
 * @retval 0   copied
 * @retval -1  a null argument, or a null text
 */
TQ_API int32_t GetFileIdentify(TqLabel label, FileCreatorInfo* creator);

/**
 * Stores the file number, with its terminating zero, as the first text of the file creator record.
 * @param[in] label  label handle, not null
 * @param[in] text   the number, zero-terminated, not null
 * @retval 0   stored
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t GLSetFileNo(TqLabel label, const char* text);

/**
 * Copies the file number out, with the terminating zero that is stored with it; an empty text where
 * there is none.
 *
 * There is no capacity: ask LabCalSize() for LabelSizeInfo::fileNoLen, and provide one byte more,
 * zeroed, since a number from elsewhere may lack its terminating zero.
 * @param[in]  label   label handle, not null
 * @param[out] buffer  room for the number, not null
 * @retval 0   copied
 * @retval -1  a null argument
 */
TQ_API int32_t GLGetFileNo(TqLabel label, char* buffer);

/**
 * Sets the size to which the file is aligned. Only "1.1.1" and "1.1.2" have one: set the version
 * first.
 * @param[in] label  label handle with a version, not null
 * @param[in] size   size in bytes
 * @retval 0   stored
 * @retval -1  a null handle, no version, "6.0" or "1.1"
 */
TQ_API int32_t SetFileAlignSize(TqLabel label, uint32_t size);

/**
 * Hands out the size to which the file is aligned.
 * @param[in]  label  label handle, not null
 * @param[out] size   receives the size in bytes, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetFileAlignSize(TqLabel label, uint32_t* size);

/**
 * Sets the uneffective size of the file, the part of it that does not count. Every version keeps it
 * in the handle; only "1.1.1" and "1.1.2" write it.
 * @param[in] label  label handle, not null
 * @param[in] size   size in bytes
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetFileUnEffectSize(TqLabel label, uint32_t size);

/**
 * Hands out the uneffective size of the file.
 * @param[in]  label  label handle, not null
 * @param[out] size   receives the size in bytes, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetFileUnEffectSize(TqLabel label, uint32_t* size);

/**
 * Sets the size to which the label is aligned. Every version keeps it in the handle; only "1.1.1"
 * and "1.1.2" write it.
 * @param[in] label  label handle, not null
 * @param[in] size   size in bytes
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetLabelAlignSize(TqLabel label, uint32_t size);

/**
 * Hands out the size to which the label is aligned.
 * @param[in]  label  label handle, not null
 * @param[out] size   receives the size in bytes, 0 where not set; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetLabelAlignSize(TqLabel label, uint32_t* size);

/**
 * Tells how many bytes a text needs when it is stored with its terminating zero.
 * @param[in] text  zero-terminated text, or null
 * @return its length plus 1; 0 for null
 */
TQ_API uint32_t GetStringLength(const char* text);

/** @} */

/**
 * @defgroup envelopes Envelopes
 *
 * An envelope carries the key of the file, wrapped for one recipient. A recipient is named by
 * serial number and issuer of a certificate. The head has a list of envelopes, and the body has one
 * whose envelopes carry the recipient's privileges too; both are newest first. Adding for a
 * recipient who has an envelope replaces it.
 *
 * Only labels of the "1.1" family take and find envelopes by recipient: on "6.0" every such call
 * gives -1 and changes nothing. Lookups compare as X509NameCmp() does, so that an issuer of few
 * attributes matches many names and one with a count of 0 matches all of them; the first match in
 * list order is taken. They are linear in the length of the list.
 *
 * Where the algorithm is "IBCCS-1" in the "1.1" family, the wrapped key is a flat blob: 4 bytes of
 * e1; the length of the identity as 4 bytes, least significant first, and the identity; the length
 * of e3 likewise, and e3; the length of e5 as 1 byte, and e5; the length of half a point as 1 byte,
 * and the point without its leading byte. A blob that breaks this fails to encode.
 *
 * @{
 */

/** One envelope: what an add function stores, or the key and the buffers of a get function. */
typedef struct EnvelopeInfo {
  uint8_t* alg;         /**< name of the wrapping algorithm, without a terminating zero */
  uint8_t algLen;       /**< its length; capacity of `alg` on entry of a get */
  uint8_t* serial;      /**< content octets of the certificate's serial number */
  uint8_t serialLen;    /**< their number; capacity of `serial` on entry of a get that writes it */
  uint8_t* key;         /**< the wrapped key */
  uint32_t keyLen;      /**< its length; capacity of `key` on entry of a get */
  PJCertIssuer* issuer; /**< issuer of the certificate */
} EnvelopeInfo;

/** One pair of a privilege record. Zero the whole entry first: its first four bytes are stored. */
typedef struct PrivilegeEntry {
  uint16_t type;  /**< the caller's number for it, followed by two bytes of padding */
  uint32_t value; /**< its value */
} PrivilegeEntry;

/**
 * What a recipient may do with the file. Numbers and flags have no meaning to the library. A label
 * encodes only when `data` is a DER SEQUENCE or OBJECT IDENTIFIER.
 */
typedef struct PrivilegeInfo {
  uint8_t* data;           /**< the recipient's certificate or another DER element */
  uint32_t dataLen;        /**< its length in bytes; capacity of `data` on entry of a get */
  uint8_t flag1;           /**< first flag, 0 or 1 */
  uint32_t number1;        /**< first number */
  uint32_t readCount;      /**< how often the file was read, as of SetAlreadyReadCountsToLabel() */
  uint8_t flag2;           /**< second flag, 0 or 1 */
  uint8_t flag3;           /**< third flag, 0 or 1 */
  uint8_t flag4;           /**< fourth flag, 0 or 1 */
  uint32_t number3;        /**< third number */
  uint32_t number4;        /**< fourth number */
  uint32_t entryCount;     /**< number of pairs; capacity of `entries` on entry of a get */
  PrivilegeEntry* entries; /**< the pairs; stored and handed out in reverse order */
} PrivilegeInfo;

/** Walks the envelopes of a body: from CreatEmurateDigitEnvolop() to DestroyEmura(). */
typedef struct DigitEnvolopEnum DigitEnvolopEnum;

/**
 * Adds an envelope at the front of the head's list; an earlier one of the same recipient goes
 * first.
 * @param[in] label     label handle of the "1.1" family, not null
 * @param[in] envelope  the envelope, not null: an algorithm name of SflAlg2OID(), a serial number,
 *                      an issuer of 1 to 10 entries, and a key, null only with a length of 0
 * @retval 0   added
 * @retval -1  a null argument, serial number or issuer, or another version: nothing is changed; an
 *             unknown or null algorithm, a null key with a length, an issuer that
 *             ConvertIssuerName2PJCertIssuer() refuses, or no memory: the recipient's earlier
 *             envelope is gone
 */
TQ_API int32_t AddEnvelopeToHead(TqLabel label, const EnvelopeInfo* envelope);

/**
 * Hands out algorithm name and key of a recipient's envelope in the head.
 *
 * With a null algorithm or key buffer this is a size query: it stores the length of the key, and
 * the length of the name plus 1. The name is copied without a terminating zero and its length does
 * not count one.
 * @param[in]     label     label handle of the "1.1" family, not null
 * @param[in,out] envelope  serial number and issuer of the recipient, neither null, and the two
 *                          buffers with their capacities; not null. The capacity of the issuer must
 *                          reach the number of attributes in the stored name, though the name is
 *                          not written.
 * @retval 0   copied, or the lengths stored
 * @retval -1  a null argument, another version, no such envelope, a short buffer or capacity, or an
 *             algorithm that has no name
 */
TQ_API int32_t GetEnvelopeFromHead(TqLabel label, EnvelopeInfo* envelope);

/**
 * Tells whether a recipient has an envelope in the head.
 * @param[in]  label      label handle of the "1.1" family, not null
 * @param[in]  serial     content octets of the serial number, not null
 * @param[in]  serialLen  their number; only the low 8 bits count
 * @param[in]  issuer     issuer of the certificate, not null
 * @param[out] previous   receives the list entry before the one found, null where that is the
 *                        first; only for comparison with null; not null
 * @retval 1   found
 * @retval 0   not found; @p previous is unchanged
 * @retval -1  a null argument, or another version
 */
TQ_API int32_t HaveTheEnvelopeFromHEnv(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                       const PJCertIssuer* issuer, void** previous);

/**
 * Adds an envelope with its privileges at the front of the body's list; an earlier one of the same
 * recipient goes first.
 *
 * Pairs are stored in reverse order, the last one of the array first.
 * @param[in] label      label handle of the "1.1" family, not null
 * @param[in] envelope   the envelope, not null: an algorithm name of SflAlg2OID(), a serial number
 *                       and a key that are not null, and an issuer of 1 to 10 entries
 * @param[in] privilege  the privileges, not null; null arrays need a count of 0
 * @retval 0   added
 * @retval -1  a null argument, another version: nothing is changed; or an unknown algorithm, an
 *             issuer that ConvertIssuerName2PJCertIssuer() refuses, a null array with a count, or
 *             no memory: the recipient's earlier envelope is gone
 */
TQ_API int32_t ADDigitEnvlopeToBody(TqLabel label, const EnvelopeInfo* envelope,
                                    const PrivilegeInfo* privilege);

/**
 * Hands out a recipient's envelope and privileges from the body.
 *
 * Buffers are needed for algorithm, key, serial number and privilege data. There is no size query;
 * EnvelopeInfo::algLen is compared with the length of the stored identifier while the name is what
 * is written, so provide 32 bytes for it. GetCertByIssuerAndSerial() gives the length of the
 * privilege data, and LabCalSize() a bound for all envelopes together, but for their keys.
 *
 * The attributes of the stored name replace those of the caller's issuer. Where
 * PrivilegeInfo::entries is null, the caller receives a new array of 20 entries, released with
 * Asn1Free(). Pairs come in list order: in reverse of that in which they were added.
 * @param[in]     label      label handle of the "1.1" family, not null
 * @param[in,out] envelope   serial number and issuer of the recipient, neither null, and the
 *                           buffers with their capacities; receives all of it; not null
 * @param[in,out] privilege  buffer and, unless its entries are null, array with their capacities;
 *                           receives the privileges; not null
 * @retval 0   copied
 * @retval 1   the body has no envelopes, whatever the version
 * @retval -1  a null argument or buffer, another version, no such envelope, a short buffer, issuer
 *             or array, an algorithm that has no name, or no memory; what was written before the
 *             failure stays, a new array included
 */
TQ_API int32_t GetEnvelopeFromBody(TqLabel label, EnvelopeInfo* envelope, PrivilegeInfo* privilege);

/**
 * Tells whether a recipient has an envelope in the body.
 * @param[in]  label      label handle of the "1.1" family, not null
 * @param[in]  serial     content octets of the serial number, not null
 * @param[in]  serialLen  their number; only the low 8 bits count
 * @param[in]  issuer     issuer of the certificate, not null
 * @param[out] previous   receives the list entry before the one found, null where that is the
 *                        first; only for comparison with null; not null
 * @retval 1   found
 * @retval 0   not found; @p previous is unchanged
 * @retval -1  a null argument, or another version
 */
TQ_API int32_t HaveTheEnvelopeFromBEnv(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                       const PJCertIssuer* issuer, void** previous);

/**
 * Hands out the envelope and the privileges at a position in the body's list; works in every
 * version.
 *
 * The last envelope is never handed out, so that a list of one has none to offer.
 *
 * Buffers are as of GetEnvelopeFromBody(), with two differences: in "6.0" the stored algorithm
 * bytes are written and the issuer is left alone; else a null issuer receives a new one, released
 * with FreeIssuerName().
 * @param[in]     label      label handle with a version, not null
 * @param[in]     index      position from 0
 * @param[in,out] envelope   the buffers with their capacities; not null
 * @param[in,out] privilege  as of GetEnvelopeFromBody(); not null
 * @retval 0   copied
 * @retval -1  a null argument or buffer, no version, a negative index, no envelope there or none
 *             behind it, a short buffer, issuer or array, an algorithm that has no name, or no
 *             memory; what was written before the failure stays, a new issuer or array included
 */
TQ_API int32_t GetDigitEnvlope(TqLabel label, int32_t index, EnvelopeInfo* envelope,
                               PrivilegeInfo* privilege);

/**
 * Counts the envelopes of the body.
 * @param[in]  label  label handle, not null
 * @param[out] count  receives the number; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetDigitEnvlopeCountFromBody(TqLabel label, uint32_t* count);

/**
 * Hands out the privilege data of a recipient's envelope in the body.
 *
 * A null argument, apart from the buffer, gives 0 and does nothing: the length is not written.
 * @param[in]     label      label handle of the "1.1" family
 * @param[in]     serial     content octets of the serial number
 * @param[in]     serialLen  their number; only the low 8 bits count
 * @param[in]     issuer     issuer of the certificate
 * @param[out]    buffer     room for the data, or null to ask for its length
 * @param[in,out] length     capacity of @p buffer in bytes; receives the length
 * @retval 0   copied, the length stored, or a null argument
 * @retval -1  another version, no such envelope, or a short buffer
 */
TQ_API int32_t GetCertByIssuerAndSerial(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                        const PJCertIssuer* issuer, uint8_t* buffer,
                                        uint32_t* length);

/**
 * Creates an enumerator that re-keys a label, at the first envelope of the body.
 *
 * This changes the label: the list of the body is reversed, so that it runs oldest first, and the
 * list of the head is emptied, to be filled again by SetCurrentEmuEnvolop(). For each envelope call
 * GetCurrentDigitEnvolop() for its size, again with a buffer, then SetCurrentEmuEnvolop(), and stop
 * when HaveNextDigitEnvolop() gives 1. Linear in the number of envelopes.
 * @param[out] enumerator  receives the enumerator, released with DestroyEmura(); not null
 * @param[in]  label       label handle, not null; its body must not be changed by other calls while
 *                         the enumerator is in use
 * @retval 0   created
 * @retval -1  a null argument, a body without envelopes, or no memory; the label is unchanged
 */
TQ_API int32_t CreatEmurateDigitEnvolop(DigitEnvolopEnum** enumerator, TqLabel label);

/**
 * Hands out the privilege data of the current envelope: the certificate to wrap the new key for.
 *
 * With a buffer, the envelope after the current one becomes the next. The current one stays, so
 * that reading again gives the same bytes.
 * @param[in,out] enumerator  enumerator of CreatEmurateDigitEnvolop(), not null
 * @param[out]    buffer      room for the data, or null to ask for its length
 * @param[in,out] length      capacity of @p buffer in bytes; receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, a short buffer, or no current envelope: the last was re-keyed
 */
TQ_API int32_t GetCurrentDigitEnvolop(DigitEnvolopEnum* enumerator, uint8_t* buffer,
                                      uint32_t* length);

/**
 * Gives the current envelope a new key, adds an envelope for its recipient to the head, and goes on
 * to the next envelope.
 *
 * The next envelope is the one that GetCurrentDigitEnvolop() has set; without that call it is still
 * the current one. The head's envelope has the base name of the body's algorithm.
 * @param[in,out] enumerator  enumerator of CreatEmurateDigitEnvolop() on a label of the "1.1"
 *                            family, not null
 * @param[in]     headKey     wrapped key for the head; null only with a length of 0
 * @param[in]     headKeyLen  its length in bytes
 * @param[in]     bodyKey     wrapped key for the body, not null
 * @param[in]     bodyKeyLen  its length in bytes
 * @retval 0   done
 * @retval -1  a null argument, no current envelope: nothing is changed; or another version, an
 *             algorithm that has no name, a name with no room in a #PJCertIssuer, or no memory: the
 *             body's earlier key is gone, its new one is there unless there was no memory for it,
 *             and the head has no envelope for the recipient
 */
TQ_API int32_t SetCurrentEmuEnvolop(DigitEnvolopEnum* enumerator, const uint8_t* headKey,
                                    uint32_t headKeyLen, const uint8_t* bodyKey,
                                    uint32_t bodyKeyLen);

/**
 * Tells whether an enumerator has a next envelope. Note the sense: 0 is yes.
 * @param[in] enumerator  enumerator of CreatEmurateDigitEnvolop(), not null
 * @retval 0   there is one
 * @retval 1   there is none
 * @retval -1  a null enumerator
 */
TQ_API int32_t HaveNextDigitEnvolop(DigitEnvolopEnum* enumerator);

/** @} */

/**
 * @defgroup privileges Privileges
 *
 * Who may open a file, by the envelopes of its label. Nothing is enforced: callers ask and act.
 *
 * @{
 */

/**
 * Tells from encoded bytes whether a serial number has an envelope in the head. The issuer is not
 * compared and the version does not count; the body is not read, but must be there.
 *
 * Note the sense: 0 is yes, unlike HavePrivilegeOfHead().
 * @param[in] der        the encoded label, not null
 * @param[in] derLen     number of bytes at @p der, not 0
 * @param[in] serial     content octets of the serial number, not null
 * @param[in] serialLen  their number; only the low 8 bits count
 * @retval 0   it has one, or the head names no cipher
 * @retval -1  it has none, or a null argument, a length of 0 or below, no label, or no memory
 */
TQ_API int32_t HavePrivilege(const uint8_t* der, int32_t derLen, const uint8_t* serial,
                             uint32_t serialLen);

/**
 * Tells from encoded bytes whether a recipient has an envelope in the head. The body is not read,
 * but must be there. In "6.0" no recipient is ever found.
 * @param[in] der        the encoded label, not null
 * @param[in] derLen     number of bytes at @p der, not 0
 * @param[in] serial     content octets of the serial number; null finds nothing
 * @param[in] serialLen  their number; only the low 8 bits count
 * @param[in] issuer     issuer of the certificate; null finds nothing
 * @retval 1   the recipient has one
 * @retval 0   the recipient has none, or the head names no cipher
 * @retval -1  a null @p der, a length of 0 or below, no label, or no memory
 */
TQ_API int32_t HavePrivilegeOfHead(const uint8_t* der, int32_t derLen, const uint8_t* serial,
                                   uint32_t serialLen, const PJCertIssuer* issuer);

/**
 * Removes a recipient: the envelope in the head, then the one in the body.
 * @param[in] label      label handle of the "1.1" family, not null
 * @param[in] serial     content octets of the serial number, not null
 * @param[in] serialLen  their number; only the low 8 bits count
 * @param[in] issuer     issuer of the certificate, not null
 * @retval 0   both removed
 * @retval -1  a null argument, another version, no envelope in the head: nothing is changed; or
 *             none in the body: the one in the head is removed
 */
TQ_API int32_t DelPrivilegeFromLabel(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                     const PJCertIssuer* issuer);

/**
 * Stores how often a recipient has read the file, in place of the earlier count: read it with
 * GetEnvelopeFromBody(), count, and write it back. It is compared with nothing.
 * @param[in] label      label handle of the "1.1" family, not null
 * @param[in] serial     content octets of the serial number, not null
 * @param[in] serialLen  their number; only the low 8 bits count
 * @param[in] issuer     issuer of the certificate, not null
 * @param[in] count      the new count
 * @retval 0   stored in the recipient's envelope in the body
 * @retval -1  a null argument, another version, or no such envelope
 */
TQ_API int32_t SetAlreadyReadCountsToLabel(TqLabel label, const uint8_t* serial, uint32_t serialLen,
                                           const PJCertIssuer* issuer, uint32_t count);

/** @} */

/**
 * @defgroup markings Markings
 *
 * Watermark, stamp and fingerprints of a body. "1.1.2" writes those that were set; the other
 * versions write all of them, empty or not.
 *
 * A setter that gets past its first checks marks its record as set: on a later failure "1.1.2"
 * writes it with what it then holds. A null buffer with a length gives -1.
 *
 * A getter makes a new record, also where nothing was set: its buffers are null and its lengths 0
 * then. To change a marking, set a whole new one.
 *
 * @{
 */

/** A watermark. Texts are PrintableString, data are OCTET STRING; values are the caller's own. */
typedef struct WaterMark {
  uint8_t* data1;    /**< first data */
  uint32_t data1Len; /**< its length in bytes */
  uint8_t* data2;    /**< second data */
  uint32_t data2Len; /**< its length in bytes */
  uint32_t alg;      /**< algorithm number */
  uint32_t algParam; /**< parameter of the algorithm */
  char* text;        /**< zero-terminated text */
  uint32_t textLen;  /**< written by a get, with the terminating zero counted; not read by a set */
  uint64_t time;     /**< time in seconds */
} WaterMark;

/** What a seal says about itself; part of a #Seal. */
typedef struct Meta {
  uint8_t* element;   /**< a DER SEQUENCE, or bytes of length 0; another element does not encode */
  uint8_t elementLen; /**< its length in bytes; of a longer one a get writes the low 8 bits: the
                           buffer holds all of it, and the element's header tells its length */
  uint64_t time1;     /**< first time in seconds */
  uint8_t* text1;     /**< first text */
  uint32_t text1Len;  /**< its length in bytes */
  uint64_t time2;     /**< second time in seconds */
  uint64_t time3;     /**< third time in seconds */
  uint8_t* text2;     /**< second text */
  uint32_t text2Len;  /**< its length in bytes */
} Meta;

/** The seal of a stamp; part of a #StampRecord. */
typedef struct Seal {
  uint8_t* name;       /**< name */
  uint32_t nameLen;    /**< its length in bytes */
  Meta meta;           /**< what the seal says about itself */
  uint8_t type;        /**< type number; of a larger one a get writes the low 8 bits */
  uint8_t* data;       /**< data */
  uint32_t dataLen;    /**< its length in bytes */
  uint8_t* element;    /**< a DER element, or bytes of length 0; a BIT STRING does not encode */
  uint32_t elementLen; /**< its length in bytes */
  uint8_t* bits;       /**< whole octets of a BIT STRING */
  uint32_t bitsLen;    /**< their number */
} Seal;

/** The stamp proper; part of a #StampRecord. */
typedef struct Stamp {
  char* text1;       /**< zero-terminated first text */
  uint32_t text1Len; /**< written by a get, with the terminating zero counted; not read by a set */
  uint32_t value[4]; /**< four numbers */
  char* text2;       /**< zero-terminated second text; see SetStampInfo() for what is stored */
  uint32_t text2Len; /**< as `text1Len` */
  uint64_t time;     /**< time in seconds */
  uint8_t* data;     /**< third text, of any bytes */
  uint32_t dataLen;  /**< its length in bytes */
} Stamp;

/** A stamp with its seal. */
typedef struct StampRecord {
  uint8_t* name;    /**< name */
  uint32_t nameLen; /**< its length in bytes */
  Seal seal;        /**< the seal */
  Stamp stamp;      /**< the stamp proper */
  uint8_t* bits;    /**< whole octets of a BIT STRING */
  uint32_t bitsLen; /**< their number */
} StampRecord;

/** One fingerprint. */
typedef struct FingerEntry {
  uint8_t* value;    /**< a DER SEQUENCE, or bytes of length 0; another element does not encode */
  uint32_t valueLen; /**< its length in bytes */
  uint8_t action[9]; /**< flags 0 to 8, each 0 or 1; a label has two more, which a set clears and a
                          get leaves out */
} FingerEntry;

/** The fingerprints of a #Finger. */
typedef struct FingerList {
  uint32_t count;       /**< number of entries */
  FingerEntry* entries; /**< the entries, null where there are none */
} FingerList;

/** The fingerprint record of a body. */
typedef struct Finger {
  uint8_t* sys1;     /**< first system information */
  uint32_t sys1Len;  /**< its length in bytes */
  uint8_t* sys2;     /**< second system information */
  uint32_t sys2Len;  /**< its length in bytes */
  uint8_t* sys3;     /**< third system information */
  uint32_t sys3Len;  /**< its length in bytes */
  uint32_t sysValue; /**< system number */
  FingerList list;   /**< the fingerprints */
} Finger;

/**
 * Stores the watermark. Its text is stored with the terminating zero; a null one as no bytes at
 * all.
 * @param[in] label  label handle, not null
 * @param[in] mark   the watermark with both data not null; not null
 * @retval 0   stored
 * @retval -1  a null argument or data: nothing is changed; or no memory: what came before is stored
 */
TQ_API int32_t SetWaterMarkInfo(TqLabel label, const WaterMark* mark);

/**
 * Hands out a copy of the watermark.
 * @param[in]  label  label handle, not null
 * @param[out] mark   receives a new record, released as FreetWaterMarkInfo() says; not null
 * @retval 0   copied
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t GetWaterMarkInfo(TqLabel label, WaterMark** mark);

/**
 * Releases the two data of a watermark from GetWaterMarkInfo(). Its text and the record are not
 * released: hand WaterMark::text and then the record to Asn1Free() afterwards.
 * @param[in,out] mark  the watermark, or null
 * @retval 0  always
 */
TQ_API int32_t FreetWaterMarkInfo(WaterMark* mark);

/**
 * Stores the stamp: name and bits, then the seal, then the stamp proper.
 *
 * The stamp proper is stored only where its three buffers are there; without one of them it stays
 * as it was and that is no failure. The second text that is stored has the length of Stamp::text2
 * with its terminating zero, but the bytes of Stamp::data, with zeros behind them where that is
 * shorter.
 * @param[in] label  label handle, not null
 * @param[in] stamp  the stamp, not null: name and bits, data and element of the seal, and element
 *                   and texts of the meta record must not be null
 * @retval 0   stored
 * @retval -1  a null argument, name or bits: nothing is changed; or another buffer that is missing,
 *             or no memory: what came before is stored
 */
TQ_API int32_t SetStampInfo(TqLabel label, const StampRecord* stamp);

/**
 * Hands out a copy of the stamp.
 * @param[in]  label  label handle, not null
 * @param[out] stamp  receives a new record, released with FreeStampA(); not null
 * @retval 0   copied
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t GetStampInfo(TqLabel label, StampRecord** stamp);

/**
 * Releases a stamp from GetStampInfo(), with all its buffers.
 * @param[in] stamp  the stamp, or null
 * @retval 0  always
 */
TQ_API int32_t FreeStampA(StampRecord* stamp);

/**
 * Stores the fingerprint record. The list is stored in reverse order, the last entry of the array
 * first.
 *
 * A count of 0 empties the list and gives -1, after the system information has been stored.
 * @param[in] label   label handle, not null
 * @param[in] finger  the record, not null: system information and the value of each entry must not
 *                    be null
 * @retval 0   stored
 * @retval -1  a null argument or buffer, a count of 0, or no memory; unless an argument was null,
 *             the record counts as set and holds what came before
 */
TQ_API int32_t SetFingerPrintInfo(TqLabel label, const Finger* finger);

/**
 * Hands out a copy of the fingerprint record, the list in the order in which it is stored: in
 * reverse of that in which it was set.
 * @param[in]  label   label handle, not null
 * @param[out] finger  receives a new record, released with FreeFingerPrintInfo(); not null
 * @retval 0   copied
 * @retval -1  a null argument, or no memory
 */
TQ_API int32_t GetFingerPrintInfo(TqLabel label, Finger** finger);

/**
 * Releases a fingerprint record from GetFingerPrintInfo(), with its list and all its buffers.
 * @param[in] finger  the record, or null
 * @retval 0  always
 */
TQ_API int32_t FreeFingerPrintInfo(Finger* finger);

/** @} */

/**
 * @defgroup lists Logs and extensions
 *
 * Two lists of the body, both newest first: position 0 is the entry that was added last. Adding
 * takes constant time apart from the bytes copied; everything else is linear in the position.
 * @{
 */

/** One log entry. Values are the caller's own. */
typedef struct LogInfo {
  uint32_t number;      /**< log number */
  uint8_t* text1;       /**< first text */
  uint32_t text1Len;    /**< its length in bytes; only 255 bytes can be read back */
  PJCertIssuer* issuer; /**< issuer name; "6.0" does not write it */
  uint8_t* array1;      /**< content octets of the first INTEGER */
  uint32_t array1Len;   /**< their number; only 255 can be read back */
  uint8_t* array2;      /**< content octets of the second INTEGER */
  uint32_t array2Len;   /**< their number; only 255 can be read back */
  uint64_t time;        /**< time in seconds */
  uint32_t value;       /**< log value */
  uint8_t* text2;       /**< second text */
  uint32_t text2Len;    /**< its length in bytes */
} LogInfo;

/**
 * Adds a log entry at the front of the list.
 * @param[in] label  label handle, not null
 * @param[in] log    the entry, not null: texts and arrays must not be null, and the issuer must
 *                   have 1 to 10 entries, in "6.0" too
 * @retval 0   added
 * @retval -1  a null argument, buffer or issuer, an issuer that ConvertIssuerName2PJCertIssuer()
 *             refuses, or no memory; the list is unchanged
 */
TQ_API int32_t AddLog(TqLabel label, const LogInfo* log);

/**
 * Hands out a copy of a log entry.
 *
 * Of the first text and the two arrays as many bytes are copied as the low 8 bits of their length
 * say; the length is the stored one, and what lies behind the copied bytes is zeros.
 * @param[in]  label     label handle, not null
 * @param[in]  position  position from 0, the newest
 * @param[out] log       receives a new entry, released with FreeLog(); its issuer has a count of 0
 *                       where the label has none; not null
 * @retval 0   copied
 * @retval -1  a null argument, no entry there, a name with no room in a #PJCertIssuer, or no memory
 */
TQ_API int32_t GetLog(TqLabel label, uint32_t position, LogInfo** log);

/**
 * Removes a log entry, or all of them. Note what the position does to the result.
 * @param[in] label     label handle, not null
 * @param[in] position  position from 0, the newest. 0 removes every entry.
 * @retval 0   position 0: all entries removed
 * @retval -1  another position: that entry removed; or a null handle or no entry there: nothing is
 *             changed. GetLogCout() tells which.
 */
TQ_API int32_t DelLog(TqLabel label, int32_t position);

/**
 * Removes all log entries.
 * @param[in] label  label handle, not null
 * @retval 0   removed; there may have been none
 * @retval -1  a null handle
 */
TQ_API int32_t DelAlLog(TqLabel label);

/**
 * Releases a log entry from GetLog(), with its buffers and its issuer.
 *
 * An entry that lacks one of its four buffers is not released at all: leave them as GetLog() made
 * them.
 * @param[in] log  the entry, or null
 */
TQ_API void FreeLog(LogInfo* log);

/**
 * Counts the log entries.
 * @param[in]  label  label handle, not null
 * @param[out] count  receives the number; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetLogCout(TqLabel label, uint32_t* count);

/**
 * Adds an extension value at the front of the list. An earlier one of the same type stays, behind
 * it.
 * @param[in] label   label handle, not null
 * @param[in] type    the caller's number for it; DelExtendAttr() reaches those below 65536 only
 * @param[in] value   bytes of the value, not null
 * @param[in] length  their number
 * @retval 0   added
 * @retval -1  a null argument, or no memory; the list is unchanged
 */
TQ_API int32_t AddExtendValue(TqLabel label, uint32_t type, const uint8_t* value, uint32_t length);

/**
 * Hands out the newest extension value of a type. The capacity is not looked at: ask for the length
 * first, with a null buffer.
 * @param[in]  label   label handle, not null
 * @param[in]  type    the type, of which all 32 bits count
 * @param[out] buffer  room for the whole value, or null to ask for its length
 * @param[out] length  receives the length; not null
 * @retval 0   copied, or the length stored
 * @retval -1  a null argument, or no such type
 */
TQ_API int32_t GetExtendValue(TqLabel label, uint32_t type, uint8_t* buffer, uint32_t* length);

/**
 * Hands out the extension value at a position. The capacity is not looked at: ask for the length
 * first, with a null buffer.
 * @param[in]  label     label handle, not null
 * @param[in]  position  position from 0, the newest
 * @param[out] type      receives the type; not null
 * @param[out] buffer    room for the whole value, or null to ask for type and length
 * @param[out] length    receives the length; not null
 * @retval 0   copied, or type and length stored
 * @retval -1  a null argument, or no entry there
 */
TQ_API int32_t GetExtend(TqLabel label, uint32_t position, uint32_t* type, uint8_t* buffer,
                         uint32_t* length);

/**
 * Removes the newest extension value whose type equals the low 16 bits of a type. Values of the
 * types from 65536 on cannot be removed.
 * @param[in] label  label handle, not null
 * @param[in] type   the type; only its low 16 bits count, so that 65543 removes one of type 7
 * @retval 0   removed
 * @retval -1  a null handle, or no such type
 */
TQ_API int32_t DelExtendAttr(TqLabel label, uint32_t type);

/**
 * Counts the extension values.
 * @param[in]  label  label handle, not null
 * @param[out] count  receives the number; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetExtendCount(TqLabel label, uint32_t* count);

/** @} */

/**
 * @defgroup sizes Sizes and padding
 *
 * @{
 */

/**
 * What LabCalSize() tells about a label: lengths of fields, and estimates, in bytes, of what lists
 * and records take when they are encoded. An empty list or a record that is left out counts as
 * said.
 */
typedef struct LabelSizeInfo {
  uint32_t customLen;         /**< length of the head's custom bytes */
  uint32_t headSignAlgLen;    /**< length of the head signature's stored algorithm; "1.1.2": 0 */
  uint32_t headSignLen;       /**< length of the head signature's certificate; "1.1.2": certificate,
                                   algorithm and value of all signatures of the body */
  uint32_t bodySignCertLen;   /**< length of the body signer's certificate */
  uint32_t reserve;           /**< 1500 */
  uint32_t cipher;            /**< length of the stored cipher; not 0 when the head names one */
  uint32_t headEnvelopeCount; /**< number of envelopes in the head */
  uint32_t headEnvelopeSize;  /**< issuers of those envelopes; added to the value before */
  uint32_t bodySignValueLen;  /**< length of the body signature's value */
  uint32_t bodyEnvelopeSize;  /**< envelopes of the body, without keys; 2 for none */
  uint32_t stampSize;         /**< stamp; "1.1.2": 0 unless it was set */
  uint32_t waterMarkSize;     /**< watermark; "1.1.2": 0 unless it was set */
  uint32_t fingerPrintSize;   /**< 0, fingerprints or not */
  uint32_t creatorStr2Len;    /**< length of FileCreatorInfo::str2 */
  uint32_t fileNoLen;         /**< length of the file number with its terminating zero */
  uint32_t fileNameLen;       /**< length of the file name */
  uint32_t fileTitleLen;      /**< length of the file title */
  uint32_t extendSize;        /**< extension values; 0 for none */
  uint32_t logSize;           /**< log entries; 0 for none */
} LabelSizeInfo;

/**
 * Tells lengths and estimated sizes of a label's parts; a size query of an encoder gives the exact
 * length of the whole. Linear in the number of list entries.
 * @param[in]     label  label handle, not null; without a version, it counts as "6.0"
 * @param[in,out] sizes  the record, not null; zero it first, since one field is added to
 * @retval 0   filled
 * @retval -1  a null argument: nothing is changed; or more than 100 envelopes in the head, or a sum
 *             above 32 bits: part of the record is filled
 */
TQ_API int32_t LabCalSize(TqLabel label, LabelSizeInfo* sizes);

/**
 * Sets the padding that EncodeLabelPad() and EncodeLabelPadEncrypted() write.
 * @param[in] label  label handle, not null
 * @param[in] size   number of zero bytes; the tag and the length before them come on top
 * @retval 0   set
 * @retval -1  a null handle; or no memory: the new size stays, without its bytes, and the two
 *             encoders give -1 until a size can be set
 */
TQ_API int32_t SetLabelPadSize(TqLabel label, uint32_t size);

/**
 * Tells from encoded bytes whether a label has padding: a third element.
 * @param[in]  der     the encoded label, not null
 * @param[in]  derLen  number of bytes at @p der
 * @param[out] flag    receives 1 where there is padding and 0 where there is not; not null
 * @retval 0   told
 * @retval -1  a null argument, no label, fewer than two elements, or no memory
 */
TQ_API int32_t HavePadded(const uint8_t* der, uint32_t derLen, uint32_t* flag);

/** @} */

/**
 * @defgroup dates Dates
 *
 * A label has three deadlines: expiry, abolition and destruction. One has passed when it is not 0
 * and the present is later, by at least a second. Nothing is enforced: callers ask and act.
 * @{
 */

/**
 * Sets the expiry time of the file.
 * @param[in] label  label handle, not null
 * @param[in] time   seconds since the Unix epoch; 0 is never
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetExpired(TqLabel label, uint64_t time);

/**
 * Hands out the expiry time of the file.
 * @param[in]  label  label handle, not null
 * @param[out] time   receives the seconds since the Unix epoch, 0 for never; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetExpired(TqLabel label, uint64_t* time);

/**
 * Sets the destruction time of the file.
 * @param[in] label  label handle, not null
 * @param[in] time   seconds since the Unix epoch; 0 is never
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t SetDestroyTime(TqLabel label, uint64_t time);

/**
 * Hands out the destruction time of the file.
 * @param[in]  label  label handle, not null
 * @param[out] time   receives the seconds since the Unix epoch, 0 for never; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetDestroyTime(TqLabel label, uint64_t* time);

/**
 * Hands out the abolition time of the file: what AbolishSF(), SetContentAtrr() or the writer of a
 * decoded label has set.
 * @param[in]  label  label handle, not null
 * @param[out] time   receives the seconds since the Unix epoch, 0 for never; not null
 * @retval 0   stored
 * @retval -1  a null argument
 */
TQ_API int32_t GetAbolishTime(TqLabel label, uint64_t* time);

/**
 * Abolishes the file at once: sets the abolition time to one second before the present. The file
 * knows once the label has been encoded again.
 * @param[in] label  label handle, not null
 * @retval 0   stored
 * @retval -1  a null handle
 */
TQ_API int32_t AbolishSF(TqLabel label);

/**
 * Tells whether the file is valid: neither expired nor abolished. The destruction time does not
 * count.
 * @param[in] label  label handle, not null
 * @retval 0   valid
 * @retval -1  expired or abolished, or a null handle
 */
TQ_API int32_t CheckLabelDate(TqLabel label);

/**
 * Tells whether the file is to be destroyed.
 * @param[in] label  label handle, not null
 * @retval 0   not yet
 * @retval -1  its destruction time has passed, or a null handle
 */
TQ_API int32_t CheckDestroyDate(TqLabel label);

/**
 * Tells whether the file is abolished.
 * @param[in] label  label handle, not null
 * @retval 0   it is not
 * @retval -1  its abolition time has passed, or a null handle
 */
TQ_API int32_t CheckAbolishDate(TqLabel label);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
