// Labels in code that asn1c generates from the module.

#include <asn_application.h>

#include "codec.h"

// The headers that declare these are not C++: they define a record within a list twice.
extern "C" {
extern asn_TYPE_descriptor_t asn_DEF_Label60;
extern asn_TYPE_descriptor_t asn_DEF_Label111;
extern asn_TYPE_descriptor_t asn_DEF_Label112;
}

namespace tq::bench {
namespace {

asn_TYPE_descriptor_t* type_of(Version version) {
  static constexpr asn_TYPE_descriptor_t* kTypes[] = {&asn_DEF_Label60, &asn_DEF_Label111,
                                                      &asn_DEF_Label112};
  return kTypes[static_cast<std::size_t>(version)];
}

void release(Version version, void* decoded) {
  asn_TYPE_descriptor_t* const type = type_of(version);
  ASN_STRUCT_FREE(*type, decoded);
}

void* decode(Version version, std::span<const std::uint8_t> label) {
  void* decoded = nullptr;
  const asn_dec_rval_t result =
      ber_decode(nullptr, type_of(version), &decoded, label.data(), label.size());
  if (result.code == RC_OK) return decoded;
  release(version, decoded);  // what there was of it
  return nullptr;
}

std::size_t encode(Version version, const void* decoded, std::span<std::uint8_t> buffer) {
  const asn_enc_rval_t result = der_encode_to_buffer(type_of(version), const_cast<void*>(decoded),
                                                     buffer.data(), buffer.size());
  return result.encoded < 0 ? 0 : static_cast<std::size_t>(result.encoded);
}

}  // namespace

const Codec kAsn1c = {"asn1c", decode, release, encode};

}  // namespace tq::bench
