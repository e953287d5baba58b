#include "lint/codes.h"

#include <fmt/format.h>

#include <algorithm>

namespace tq::tool {
namespace {

constexpr Severity kError = Severity::kError;
constexpr Severity kWarning = Severity::kWarning;

// Each page: what is wrong, why it matters, an example, what to do.
constexpr Explanation kExplanations[] = {
    {Code::kNotDer, kError, "not DER",
     R"(
At this byte there is no DER element: the tag is none, or the length is
indefinite, longer than it must be, or larger than what is around it leaves
room for. Nothing behind it can be told.
Example: a file that was cut short, so that the outermost SEQUENCE ends beyond
its end.
Fetch the file again. If it is whole, the program that wrote it does not write
DER.)"},
    {Code::kMissing, kError, "missing element",
     R"(
What is around this place ends before all of its elements have come. Elements
have no names in a label; each is known by its position, so none but the
optional ones may be left out.
Example: a label that ends behind its head.
Compare with docs/label.asn1, for the version that the head names.)"},
    {Code::kWrongType, kError, "wrong type",
     R"(
An element of this type cannot stand here. Either one in front of it is missing
or comes twice, or the writer took the label for another version: each version
has an order of its own.
Example: "1.1" in the version text of a head that is laid out as "6.0".
Compare with docs/label.asn1, for the version that the head names.)"},
    {Code::kBadValue, kError, "value that no label can hold",
     R"(
The type is right and the value is not: an INTEGER outside 0 to 4294967295 or
with octets too many, a BOOLEAN other than 00 and FF, a time in another form
than YYYYMMDDHHMMSSZ, a BIT STRING with unused bits, a list whose SET is empty.
Example: 20230230000000Z, a day that does not exist.
Correct the writer; "tqlabel new" shows from JSON what a value looks like.)"},
    {Code::kVersion, kError, "unknown version",
     R"(
The version text decides how all that follows is laid out. It is none of "6.0",
"1.1", "1.1.1" and "1.1.2", so nothing that follows can be read.
Example: "1.1" with a zero byte at its end.
If you know the version, correct the text; otherwise ask who wrote the label.
Trying out versions may give one that decodes by accident.)"},
    {Code::kShortSealedBody, kError, "encrypted body of less than 128 bytes",
     R"(
DecodeLabelEncrypted() takes a short encrypted body for an empty one: its
length is 0 and none of its bytes are handed out. The body of a real label is
longer in every version.
Example: an OCTET STRING of 100 bytes behind the head.
Encrypt the body again from the label in the clear.)"},
    {Code::kLargeName, kError, "name with no room in the record for callers",
     R"(
A PJCertIssuer has room for 10 attributes, each with a type of 16 bytes and a
value of 128. Every function that hands this name out fails, and no caller can
ask for it.
Example: a CN of 200 bytes in the issuer of an envelope: its recipient cannot
be looked up.
The certificate needs an issuer with a smaller name.)"},
    {Code::kLongField, kError, "field that its getter refuses",
     R"(
The getter of this field has a length of 8 bits and gives -1 for more than 255
bytes. A serial number of that size is never found either.
Example: a file name of 300 bytes: GetFileName() fails. GetContentAtrr() hands
it out.
Shorten the field: tqlabel edit LABEL --set PATH=VALUE.)"},
    {Code::kUnknownAlgorithm, kError, "unknown algorithm",
     R"(
The object identifier is none of those that SflOID2Alg() knows. The functions
that hand the algorithm out as a name fail: GetHeadSignAlg(), GetEncryptHead(),
GetEnvelopeFromHead() and the like, and what they would have handed out with it
is lost to their callers, too.
Example: 1.2.3.4.5 in place of 1.2.840.113549.1.1.11.
Store an algorithm that the library has a name for.)"},
    {Code::kUnwritableName, kError, "name that is read but not written",
     R"(
Names are written with the attributes CN, C, L, ST, O, OU and E alone. This one
decodes, but the label, once it has been changed, does not encode any more.
Example: serialNumber (2.5.4.5) in the issuer of a certificate.
Do not edit such a label; recipients and signers need certificates with other
issuers.)"},
    {Code::kNoCertificate, kError, "no certificate in its place",
     R"(
A certificate is a SEQUENCE. An element of another type is passed over: the
signer has no certificate then, and the label does not encode.
Example: NULL in body.bodySignCert.
Store the signer's certificate with SetBodySignCert() or SetHeadSignCert(); in
"1.1.2" replace the chain with SetBodySignAttr().)"},
    {Code::kHiddenRecipient, kError, "envelope that is never found",
     R"(
An earlier envelope of the list has the same serial number and the same issuer.
Lookups take the first, so that this one is reached by no one, and whoever
removes the recipient leaves it there.
Example: two programs have each added an envelope for the same certificate.
Remove the recipient twice, then add the envelope again.)"},
    {Code::kDoesNotEncode, kError, "label that decodes but does not encode",
     R"(
The library reads all of the label and cannot write it again: EncodeLabel() and
the functions like it fail, whatever was changed. No other finding says where
the cause is.
Example: the wrapped key of "IBCCS-1", whose first part is not of 4 octets.
Do not edit such a label. Make the part anew from its source.)"},
    {Code::kIgnored, kWarning, "element that is passed over",
     R"(
Behind the last element that is known there is another one. Readers pass it
over, and it is gone when the label is written again, which breaks signatures
over it.
Example: a field that a later version has added, or a third attribute value of
a relative name.
Find out what wrote it. "tqlabel edit" keeps such elements.)"},
    {Code::kMarkingTwice, kWarning, "marking that comes twice",
     R"(
In "1.1.2" stamp, watermark and fingerprints each have a tag. Of two with the
same tag the last counts, other readers may take the first, and one is gone
when the label is written again.
Example: [1] { a watermark } followed by [1] { another one }.
Remove the one that is not meant.)"},
    {Code::kLogsTag, kWarning, "logs under another tag",
     R"(
Logs have the tag [1]. Behind extension values the library takes an element
with another tag for logs as well. Other readers do not, and it is written as
[1], which breaks signatures.
Example: [2] { logs }, written by a program for a later version.
Find out what wrote it; if it is logs, write them as [1].)"},
    {Code::kPadding, kWarning, "padding that is not zero",
     R"(
Padding fills the room that a file keeps for its label; all of it is zeros.
Nobody looks at it and no signature covers it, so that anything may hide there
or be left over from earlier.
Example: an OCTET STRING that ends in the body of a longer label that stood
there before.
Set the padding anew: tqlabel edit LABEL --set padding=HEX, or
SetLabelPadSize().)"},
    {Code::kCharacters, kWarning, "character outside of a string type",
     R"(
PrintableString has letters, digits, space and ' ( ) + , - . / : = ? alone,
IA5String has ASCII, BMPString two octets for each character, UTF8String what
is UTF-8. The library stores all bytes as they come. Readers that check the
type refuse the label, others guess the encoding.
Example: a file name "plan_1.odt": the underscore is no character of
PrintableString.
Harmless among programs that agree on an encoding; otherwise use the characters
of the type.)"},
    {Code::kZeroByte, kWarning, "zero byte within a text",
     R"(
Programs in C take a text to end at its first zero byte, others see all of it,
so that two readers see two texts. A zero at the end of a file number, a
watermark's text or one of the first two texts of a stamp is what the library
itself stores there and is no finding.
Example: "plan.odt\0.exe".
Distrust the label if you do not know why it is there; otherwise remove the
byte.)"},
    {Code::kUnterminated, kWarning, "file number without its terminating zero",
     R"(
GLSetFileNo() stores a file number with a zero at its end, and GLGetFileNo()
copies what is stored, without a length. Callers without zeros behind the
number read beyond it.
Example: "F-17" in place of "F-17\0".
Set the number with GLSetFileNo(), or with "\u0000" at its end in JSON.)"},
    {Code::kNumber, kWarning, "INTEGER that others read differently",
     R"(
Serial numbers and the two numbers of a log are kept octet by octet and not
looked at. DER has one form for each number: one octet at least, and no more
than needed. Serial numbers are above zero. Readers that normalise numbers
write other octets, and lookups, which compare octets, then fail.
Example: 00 00 C0 FF EE, or C0 FF EE, which is negative, in place of 00 C0 FF
EE.
Store the content octets as they are in the certificate.)"},
    {Code::kOpaque, kWarning, "element that is not DER inside",
     R"(
Certificates and the like are carried whole; only their outer header is looked
at. What is inside is not DER from this byte on: no program will be able to
read the element.
Example: a certificate that was cut off and put into a SEQUENCE of the right
length.
Store the element again from its source.)"},
    {Code::kWrittenOtherwise, kWarning, "bytes that do not come back",
     R"(
The library reads this and writes something else for it, so that signatures
over the label break as soon as it is written again, even if nothing was
changed.
Example: a UTF8String in a name, which is written as PrintableString.
Do not have the library write the label again before its signatures have been
verified.)"},
    {Code::kRefusedSize, kWarning, "size that the setter refuses",
     R"(
The field can be read but not set to what it is: label text and serial number
of the head take 128 bytes at most, and the value of a body signature is a
multiple of 32 bytes.
Example: an SM2 signature as DER, of 70 to 72 bytes, in place of the 64 bytes
of r and s.
A program that copies the label field by field loses this one: check the
results of setters.)"},
    {Code::kCutOff, kWarning, "value that is handed out in part",
     R"(
The record or the getter for this value is narrower than the value is, and no
failure is reported: of lengths and numbers the low 8, 16 or 32 bits arrive.
Example: a first log text of 300 bytes: 44 of them are copied, and zeros
follow.
Use smaller values.)"},
    {Code::kStuckExtension, kWarning, "extension value that cannot be removed",
     R"(
DelExtendAttr() looks at the low 16 bits of the type that it is given, so that
it never finds a type from 65536 on and may remove another one in its place.
Example: DelExtendAttr(label, 65543) removes the newest value of type 7.
Use types below 65536. To be rid of this one, take it out by its position
in the list: tqlabel edit LABEL --remove body.extends[N].)"},
    {Code::kHiddenExtension, kWarning, "extension value behind another of its type",
     R"(
GetExtendValue() hands out the newest value of a type, which stands first.
Older ones are seen by position alone and come to light when the newest is
removed.
Example: a program that adds a value in place of changing it.
Remove the type until there is none, then add the value.)"},
    {Code::kLongList, kWarning, "list that is too long for a function",
     R"(
LabCalSize() fails with more than 100 envelopes in the head, and
GetEnvelopeFromBody() with more than 20 pairs of a privilege, unless its caller
has brought more room.
Example: a label for a whole department.
Ask an encoder for the size, and bring an array for the pairs.)"},
    {Code::kOutOfReach, kWarning, "envelopes in \"6.0\"",
     R"(
Envelopes are added, found and removed by recipient in the "1.1" family alone.
In "6.0" every such call fails and HavePrivilegeOfHead() finds nobody;
HavePrivilege() looks at serial numbers.
Example: a label that was made as "1.1" and rewritten as "6.0".
Use "1.1" for labels with recipients.)"},
    {Code::kAmbiguousRecipient, kWarning, "recipient that matches another envelope",
     R"(
A lookup compares serial numbers and then asks whether every attribute of the
issuer occurs in the stored one, which may have more; string types and order do
not count. The first match is taken: this recipient may be given the envelope
of another one, and removing one may remove the other.
Example: issuers "O=Office" and "O=Office, CN=CA 2", each with a certificate of
serial number 1.
Re-issue one of the certificates. Of one serial number the first 64 issuers are
compared.)"},
    {Code::kBodyOnly, kWarning, "body envelope without head envelope",
     R"(
The recipient has privileges but no key to open the label with, and
DelPrivilegeFromLabel(), which looks in the head first, does not remove them.
Example: a label whose head was rebuilt for fewer recipients.
Add the recipient to the head with AddEnvelopeToHead(), or remove the envelope
of the body.)"},
    {Code::kHeadOnly, kWarning, "head envelope without body envelope",
     R"(
The recipient can open the label but has no privileges in it.
DelPrivilegeFromLabel() removes the envelope and reports a failure, and
re-keying, which goes by the body, drops it in silence.
Example: AddEnvelopeToHead() without ADDigitEnvlopeToBody().
Add the recipient to the body, or remove the envelope of the head.)"},
    {Code::kCipherWithoutSeal, kWarning, "cipher named, body in the clear",
     R"(
LabelBodyNeedEnc() and LabelBodyWeatherEnc() go by the cipher in the head.
Callers who ask them take the body for encrypted and fail with
DecodeLabelEncrypted(); all others read it in the clear.
Example: EncodeLabel() after SetEncryptHead().
Encrypt the body, or remove the cipher.)"},
    {Code::kSealWithoutCipher, kWarning, "body encrypted, no cipher named",
     R"(
LabelBodyNeedEnc() and LabelBodyWeatherEnc() go by the cipher in the head.
Callers who ask them take the body to be in the clear and fail with
DecodeLabel(); none knows how to decrypt it, and HavePrivilege() says yes to
everybody.
Example: EncodeLabelEncrypted() without SetEncryptHead().
Name the cipher with SetEncryptHead().)"},
    {Code::kDates, kWarning, "dates in the wrong order",
     R"(
Two times contradict each other: changed before made, expired before made,
destroyed before expired, or a log that is older than the one behind it, though
the newest stands first.
Example: a creation time of 2026 with a modification time of 2023, from a clock
that was wrong.
Correct the time that is wrong. Times that are not set are not compared.)"},
    {Code::kSignerAlgorithm, kWarning, "signature by another algorithm than the head's",
     R"(
GetNextSign() names the algorithm of the head's signature for every signature
of the body. Whoever verifies by that name fails, or takes a good signature for
a forged one.
Example: a chain of one SM2 and one RSA signature.
Verify by the algorithm that is stored, or have all signers use that of the
head.)"},
    {Code::kSignerTwice, kWarning, "certificate that has signed before",
     R"(
GetMultiSignData() finds a signer by certificate and takes the first: the
message that it hands out for the second signature is that of the first, so
that the second does not verify.
Example: one person who approves a file twice.
Compare with the whole chain up to the signature, or have each certificate sign
once.)"},
    {Code::kSetOrder, Severity::kNote, "SET that is not sorted",
     R"(
DER sorts the entries of a SET OF by their bytes. The library keeps the order
in which entries were added, newest first, and writes it as it is. Strict
readers refuse the list; tools that sort it change the bytes that were signed.
Example: two recipients, in any order but that of their bytes.
Nothing, unless another program has to read the label.)"},
};

}  // namespace

std::span<const Explanation> explanations() { return kExplanations; }

const Explanation& explanation_of(Code code) {
  return *std::ranges::find(kExplanations, code, &Explanation::code);
}

std::string name_of(Code code) { return fmt::format("TQ{:03}", static_cast<int>(code)); }

std::string_view name_of(Severity severity) {
  constexpr std::string_view kNames[] = {"note", "warning", "error"};
  return kNames[static_cast<int>(severity)];
}

}  // namespace tq::tool
