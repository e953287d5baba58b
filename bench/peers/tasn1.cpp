// Labels as trees of libtasn1, which interprets the module.

#include <libtasn1.h>

#include <memory>

#include "codec.h"

namespace tq::bench {
namespace {

struct FreeTree {
  void operator()(asn1_node_st* tree) const { asn1_delete_structure(&tree); }
};
using Tree = std::unique_ptr<asn1_node_st, FreeTree>;

Tree read_module() {
  asn1_node definitions = nullptr;
  char complaint[ASN1_MAX_ERROR_DESCRIPTION_SIZE];
  asn1_parser2tree(TQ_BENCH_MODULE, &definitions, complaint);
  return Tree(definitions);
}

// An empty label, to be copied: that is faster than to make each one from the module.
Tree make(const char* type) {
  static const Tree kModule = read_module();
  asn1_node label = nullptr;
  asn1_create_element(kModule.get(), type, &label);
  return Tree(label);
}

const Tree kLabels[] = {make("TqLabel.Label60"), make("TqLabel.Label111"),
                        make("TqLabel.Label112")};

void* decode(Version version, std::span<const std::uint8_t> label) {
  asn1_node tree = asn1_dup_node(kLabels[static_cast<std::size_t>(version)].get(), "");
  int length = static_cast<int>(label.size());
  // Deletes the tree where it fails.
  asn1_der_decoding2(&tree, label.data(), &length, ASN1_DECODE_FLAG_STRICT_DER, nullptr);
  return tree;
}

void release(Version, void* decoded) { FreeTree()(static_cast<asn1_node>(decoded)); }

std::size_t encode(Version, const void* decoded, std::span<std::uint8_t> buffer) {
  int length = static_cast<int>(buffer.size());
  const int result =
      asn1_der_coding(static_cast<asn1_node_const>(decoded), "", buffer.data(), &length, nullptr);
  return result == ASN1_SUCCESS ? static_cast<std::size_t>(length) : 0;
}

}  // namespace

const Codec kTasn1 = {"libtasn1", decode, release, encode};

}  // namespace tq::bench
