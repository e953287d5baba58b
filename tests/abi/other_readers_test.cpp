// What another program makes of encoded labels: to libtasn1 they are what docs/label.asn1 says. The
// algorithms are filled in all of them: an empty OBJECT IDENTIFIER, which a label without a
// signature has, is an error to it.

#include "abi/records.h"

// Behind OpenSSL's headers, which have a type of this name.
#include <libtasn1.h>
#undef ASN1_TYPE

namespace tq::abi {
namespace {

struct FreeTree {
  void operator()(asn1_node_st* tree) const { asn1_delete_structure(&tree); }
};
using Tree = std::unique_ptr<asn1_node_st, FreeTree>;

Tree read_module() {
  asn1_node definitions = nullptr;
  char complaint[ASN1_MAX_ERROR_DESCRIPTION_SIZE] = "";
  asn1_parser2tree(TQLABEL_DOCS "/label.asn1", &definitions, complaint);
  EXPECT_STREQ(complaint, "");
  return Tree(definitions);
}

// The element read as a type of the module, which must also write it as it was.
Tree read_as(const Tree& module, const std::string& type, const Bytes& der) {
  asn1_node element = nullptr;
  EXPECT_EQ(asn1_create_element(module.get(), ("TqLabel." + type).c_str(), &element), ASN1_SUCCESS);
  int length = static_cast<int>(der.size());
  char complaint[ASN1_MAX_ERROR_DESCRIPTION_SIZE] = "";
  const int result =
      asn1_der_decoding2(&element, der.data(), &length, ASN1_DECODE_FLAG_STRICT_DER, complaint);
  Tree tree(element);  // none after a failure
  EXPECT_EQ(result, ASN1_SUCCESS) << type << ": " << complaint;
  if (!tree) return tree;
  Bytes again(der.size() + 64);
  length = static_cast<int>(again.size());
  EXPECT_EQ(asn1_der_coding(element, "", again.data(), &length, complaint), ASN1_SUCCESS);
  again.resize(static_cast<std::size_t>(length));
  EXPECT_EQ(again, der) << type << ": " << complaint;
  return tree;
}

Bytes value_of(const Tree& tree, const char* name) {
  Bytes value(300);
  int length = static_cast<int>(value.size());
  EXPECT_EQ(asn1_read_value(tree.get(), name, value.data(), &length), ASN1_SUCCESS) << name;
  value.resize(static_cast<std::size_t>(std::max(length, 0)));
  while (!value.empty() && value.back() == 0) value.pop_back();  // some come with a terminator
  return value;
}

class OtherReaders : public testing::TestWithParam<const char*> {};

TEST_P(OtherReaders, TakeEveryShapeOfEveryVersion) {
  const Tree module = read_module();
  const std::string version = digits_of(GetParam());
  const std::string sealed = is_60(GetParam()) ? "Sealed60" : "Sealed11";
  for (const auto how :
       {+[](TqLabel label, const char*text) { fill(label, text); }, fill_fields, fill_records}) {
    Label label;
    how(label, GetParam());
    const Bytes secret = pattern(400);
    const std::pair<std::string, Bytes> shapes[] = {
        {"Label" + version, encode(label)},
        {"Label" + version, encode(label, EncodeLabelPad)},
        {"Body" + version, encode(label, EncodeBodyPlaint)},
        {"Message" + version, encode(label, GetSignatureMessage)},
        {sealed, encode_sealed(label, secret)},
        {sealed, encode_sealed(label, secret, EncodeLabelPadEncrypted)}};
    for (const auto& [type, der] : shapes) {
      SCOPED_TRACE(type);
      read_as(module, type, der);
    }
  }
}

TEST_P(OtherReaders, FindTheFieldsWhereTheModuleHasThem) {
  const char* const version = GetParam();
  const Tree tree =
      read_as(read_module(), "Label" + digits_of(version), encode(full_label(version)));
  std::vector<std::pair<const char*, Bytes>> expected = {
      {"head.serial", hex("00 C4 11")},
      {"head.encrypt.algorithm", text(is_60(version) ? "AES.256.CBC" : "2.16.840.1.101.3.4.1.42")},
      {"head.sign.algorithm", text(is_60(version) ? kSignAlg : "1.2.840.113549.1.1.11")},
      {"body.content.fileSize", hex("00 FF FF FF FF")},
      {"body.content.expiryTime", text("20300317174640Z")},
      {"body.creator.fileNo", text("No. 1")},
      {"body.stamp.seal.type", hex("00 9C")},
      {"body.fingerPrint.sys.value", hex("3C 70 53 BF")},
  };
  if (is_aligned(version)) {  // 02 00, 10 00 and 11
    expected.insert(expected.end(), {{"body.fileAlign.labelAlign", hex("02")},
                                     {"body.fileAlign.fileAlign", hex("10")},
                                     {"body.fileAlign.unEffect", hex("11")}});
  }
  if (!is_60(version)) {
    expected.insert(expected.end(), {{"head.issuer.?2.?1.type", text("2.5.4.3")},
                                     {"head.issuer.?2.?1.value.printable", text("Root")},
                                     {"body.envelopes.some.set.?2.envelope.serial", hex("02")},
                                     {"body.envelopes.some.set.?2.privilege.value4", hex("28")}});
  }
  for (const auto& [name, value] : expected) EXPECT_EQ(value_of(tree, name), value) << name;
}

INSTANTIATE_TEST_SUITE_P(Each, OtherReaders, testing::ValuesIn(kVersions), name_of);

}  // namespace
}  // namespace tq::abi
