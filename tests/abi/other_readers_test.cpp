// What other programs make of encoded labels: every element is DER to OpenSSL, and the labels are
// what tests/data/label.asn1 says to libtasn1. The algorithms are filled in all of them: an empty
// OBJECT IDENTIFIER, which a label without a signature has, is an error to both readers.

#include <memory>

#include "abi/support.h"

// Behind OpenSSL's headers, which have a type of this name.
#include <libtasn1.h>
#undef ASN1_TYPE

namespace tq::abi {
namespace {

void expect_der(const Element& element) {
  for (const Element& child : element.children) expect_der(child);
  if (element.constructed()) return;
  const Bytes der = element.der();
  const std::uint8_t* at = der.data();
  ASN1_TYPE* value = d2i_ASN1_TYPE(nullptr, &at, static_cast<long>(der.size()));
  ASSERT_NE(value, nullptr) << "at offset " << element.start;
  EXPECT_EQ(at, der.data() + der.size());
  EXPECT_EQ(ASN1_TYPE_get(value), element.tag);
  if (element.tag == V_ASN1_GENERALIZEDTIME) {
    EXPECT_EQ(ASN1_GENERALIZEDTIME_check(value->value.generalizedtime), 1);
  }
  std::uint8_t* again = nullptr;
  const int length = i2d_ASN1_TYPE(value, &again);
  EXPECT_EQ(Bytes(again, again + std::max(length, 0)), der) << "at offset " << element.start;
  OPENSSL_free(again);
  ASN1_TYPE_free(value);
}

struct FreeTree {
  void operator()(asn1_node_st* tree) const { asn1_delete_structure(&tree); }
};
using Tree = std::unique_ptr<asn1_node_st, FreeTree>;

Tree read_module() {
  asn1_node definitions = nullptr;
  char complaint[ASN1_MAX_ERROR_DESCRIPTION_SIZE] = "";
  EXPECT_EQ(asn1_parser2tree(TQLABEL_TEST_DATA "/label.asn1", &definitions, complaint),
            ASN1_SUCCESS)
      << complaint;
  return Tree(definitions);
}

// The element read as a type of the module, which must also write it as it was.
Tree read_as(asn1_node definitions, const std::string& type, const Bytes& der) {
  asn1_node element = nullptr;
  EXPECT_EQ(asn1_create_element(definitions, ("TqLabel." + type).c_str(), &element), ASN1_SUCCESS)
      << type;
  Tree tree(element);
  int length = static_cast<int>(der.size());
  char complaint[ASN1_MAX_ERROR_DESCRIPTION_SIZE] = "";
  EXPECT_EQ(
      asn1_der_decoding2(&element, der.data(), &length, ASN1_DECODE_FLAG_STRICT_DER, complaint),
      ASN1_SUCCESS)
      << type << ": " << complaint;
  static_cast<void>(tree.release());  // it is gone after a failure
  tree.reset(element);
  if (!tree) return tree;
  EXPECT_EQ(length, static_cast<int>(der.size()));
  Bytes again(der.size() + 64);
  length = static_cast<int>(again.size());
  EXPECT_EQ(asn1_der_coding(element, "", again.data(), &length, complaint), ASN1_SUCCESS)
      << type << ": " << complaint;
  again.resize(static_cast<std::size_t>(length));
  EXPECT_EQ(again, der) << type;
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

std::string suffix(std::string_view version) {
  std::string digits(version);
  std::erase(digits, '.');
  return digits;
}

using Fill = void (*)(TqLabel, const char*);
constexpr Fill kFills[] = {[](TqLabel label, const char* version) { fill(label, version); },
                           fill_fields, fill_records};

TEST(OtherReaders, TakeEveryShapeOfEveryVersion) {
  const Tree module = read_module();
  ASSERT_TRUE(module);
  for (const char* version : kVersions) {
    for (const Fill how : kFills) {
      Label label;
      how(label, version);
      const Bytes secret = pattern(400);
      const std::string layout = is_60(version) ? "60" : "11";
      const std::pair<std::string, Bytes> shapes[] = {
          {"Label" + suffix(version), encode(label)},
          {"Label" + suffix(version), encode(label, EncodeLabelPad)},
          {"Body" + suffix(version), encode(label, EncodeBodyPlaint)},
          {"Message" + suffix(version), encode(label, GetSignatureMessage)},
          {"Sealed" + layout, encode_sealed(label, secret)},
          {"Sealed" + layout, encode_sealed(label, secret, EncodeLabelPadEncrypted)}};
      for (const auto& [type, der] : shapes) {
        SCOPED_TRACE(type);
        ASSERT_FALSE(der.empty());
        expect_der(parse(der));
        EXPECT_TRUE(read_as(module.get(), type, der));
      }
      const Label decoded = decode(shapes[0].second);
      ASSERT_TRUE(decoded);
      EXPECT_EQ(encode(decoded), shapes[0].second);
      EXPECT_EQ(encode(decoded, GetSignatureMessage), shapes[3].second);
    }
  }
}

TEST(OtherReaders, FindTheFieldsWhereTheModuleHasThem) {
  const Tree module = read_module();
  ASSERT_TRUE(module);
  for (const char* version : kVersions) {
    SCOPED_TRACE(version);
    Label label;
    fill_records(label, version);
    const Tree tree = read_as(module.get(), "Label" + suffix(version), encode(label));
    ASSERT_TRUE(tree);
    const std::pair<const char*, Bytes> expected[] = {
        {"head.label", text("Secret")},
        {"head.version", text(version)},
        {"head.custom", pattern(40)},
        {"head.serial", hex("00 C4 11")},
        {"head.modifyTime", text("20231114221320Z")},
        {"head.encrypt.algorithm",
         text(is_60(version) ? "AES.256.CBC" : "2.16.840.1.101.3.4.1.42")},
        {"head.sign.algorithm", text(is_60(version) ? kSignAlg : "1.2.840.113549.1.1.11")},
        {"body.content.fileType", hex("07")},
        {"body.content.secrecy", hex("03")},
        {"body.content.fileSize", hex("00 FF FF FF FF")},
        {"body.content.fileName", text("plan.txt")},
        {"body.content.fileTitle", text("The plan")},
        {"body.content.modifyTime", text("20200913122640Z")},
        {"body.content.expiryTime", text("20300317174640Z")},
        {"body.content.abolishTime", text("19700101000000Z")},
        {"body.content.destroyTime", text("99991231235959Z")},
        {"body.creator.fileNo", text("No. 1")},
        {"body.stamp.seal.type", hex("09")},
        {"body.stamp.stamp.text1", text("said")},
        {"body.waterMark.data1", pattern(8)},
        {"body.fingerPrint.sys.value", hex("05")},
    };
    for (const auto& [name, value] : expected) EXPECT_EQ(value_of(tree, name), value) << name;
    if (is_aligned(version)) {
      EXPECT_EQ(value_of(tree, "body.fileAlign.labelAlign"), hex("02"));  // 02 00
      EXPECT_EQ(value_of(tree, "body.fileAlign.fileAlign"), hex("10"));   // 10 00
      EXPECT_EQ(value_of(tree, "body.fileAlign.unEffect"), hex("11"));
    }
    if (!is_60(version)) {
      EXPECT_EQ(value_of(tree, "head.issuer.?2.?1.type"), text("2.5.4.3"));
      EXPECT_EQ(value_of(tree, "head.issuer.?2.?1.value.printable"), text("Root"));
      EXPECT_EQ(value_of(tree, "body.envelopes.some.set.?2.envelope.serial"), hex("01"));
      EXPECT_EQ(value_of(tree, "body.envelopes.some.set.?2.privilege.value4"), hex("28"));
    }
  }
}

}  // namespace
}  // namespace tq::abi
