#include "sealed/signatures.h"

#include <set>
#include <utility>

#include "base/failure.h"
#include "crypto/signer.h"
#include "crypto/stream.h"
#include "der/records/content.h"
#include "sealed/layout.h"

namespace tq::tool {
namespace {

constexpr std::string_view kStatement = "tqlabel content statement 1\n";

[[noreturn]] void refuse(const std::string& file, const char* field, std::string why) {
  throw Failure{.status = Status::kCrypto, .why = std::move(why), .file = file, .field = field};
}

void need(bool done) {
  if (!done) throw_not_encodable();
}

LabelOwner copy_of(TqLabel label) {
  const Secret bytes = encoded(label, EncodeLabel);
  LabelOwner copy = decode_label(bytes);
  need(copy != nullptr);
  return copy;
}

void remove_recipients(TqLabelHandle& label) {
  FreeDigitEnvolop(std::exchange(label.head.encryptHead.envelopes, nullptr));
  FreeEncryptBody(std::exchange(label.body.bodyEnvelopes, nullptr));
}

void remove_signers(TqLabel label) {
  const SignAttribute none = {};
  need(SetBodySignAttr(label, 0, &none) == 0);
}

// What the head's signature is for: a label without that which recipients, logs, abolition, new
// keys and a new size change.
Secret head_message(TqLabel label) {
  const LabelOwner copy = copy_of(label);
  remove_recipients(*copy);
  remove_signers(copy.get());
  DelAlLog(copy.get());
  while (DelExtendAttr(copy.get(), kContentTag) == 0) {
  }
  SetLabelAlignSize(copy.get(), 0);
  SetHeadModifyTime(copy.get(), 0);
  SetModifyTime(copy.get(), 0);
  copy->body.content.time3 = 0;  // abolition, which has no setter that takes a time
  return encoded(copy.get(), GetSignatureMessage);
}

void append(Secret& message, Bytes bytes) {
  message.insert(message.end(), bytes.begin(), bytes.end());
}

Secret content_record(const TqLabelHandle& label) {
  ContentAtrr content = label.body.content;
  content.time1 = content.time3 = 0;
  ANYBUF* element = nullptr;
  need(EncodeContentAtrr(&content, &element) == 0);
  const Node owner(element);
  return {element->data, element->data + element->length};
}

// The signatures before that of a signer; all there are if he has none yet.
Secret signatures_before(TqLabel label, Bytes certificate) {
  MultiSignData request = {};
  request.cert = const_cast<std::uint8_t*>(certificate.data());
  request.certLen = static_cast<std::uint32_t>(certificate.size());
  need(GetMultiSignData(label, &request) == 0);
  Secret chain(request.dataLen);
  request.data = chain.data();
  need(chain.empty() || GetMultiSignData(label, &request) == 0);
  return chain;
}

Secret statement(TqLabel label, Bytes signatures) {
  Secret message(kStatement.begin(), kStatement.end());
  std::uint32_t length = 0;
  need(GetExtendValue(label, kContentSum, nullptr, &length) == 0);
  Secret sum(length);
  need(GetExtendValue(label, kContentSum, sum.data(), &length) == 0);
  append(message, sum);
  append(message, content_record(*label));
  append(message, signatures);
  return message;
}

void add_signature(TqLabel label, const Party& signer, bool is_first) {
  const Secret before = is_first ? Secret() : signatures_before(label, signer.certificate);
  const Secret message = statement(label, before);
  std::vector<std::uint8_t> value = sign(message, signer);
  SignAttribute attribute = {};
  std::string name = signature_name(signer.kind);
  attribute.algName = name.data();
  attribute.value = value.data();
  attribute.valueLen = static_cast<std::uint32_t>(value.size());
  attribute.cert = const_cast<std::uint8_t*>(signer.certificate.data());
  attribute.certLen = static_cast<std::uint32_t>(signer.certificate.size());
  need(SetBodySignAttr(label, is_first ? 0 : 1, &attribute) == 0);
}

// Whoever vouches says with what kind of signature; it must be the one of his key.
Party signer_of(const Sign& signature, const std::string& file, const char* field) {
  Party signer = party_of(bytes_of(signature.certificate), file);
  const Bytes algorithm = bytes_of(signature.algorithm);
  char name[64] = {};
  if (SflOID2Alg(algorithm.data(), static_cast<std::uint32_t>(algorithm.size()), name, nullptr,
                 nullptr) != 0 ||
      std::string_view(name) != signature_name(signer.kind)) {
    refuse(file, field, "not the algorithm of the signer's key");
  }
  return signer;
}

void verify(Bytes message, const Sign& signature, const Party& signer, const std::string& file,
            const char* field) {
  if (is_signed(message, bytes_of(signature.value), signer)) return;
  refuse(file, field, "the signature of " + signer.subject + " is not for this");
}

// A signer is found by his certificate. The work for each grows with the number of all.
void require_distinct(std::span<const Party> signers) {
  constexpr std::size_t kMostSigners = 100;
  std::set<std::vector<std::uint8_t>> known;
  for (const Party& signer : signers) {
    if (known.insert(signer.certificate).second && known.size() <= kMostSigners) continue;
    throw Failure{.status = Status::kCrypto,
                  .why = signer.subject + " signs twice, or as one of more than 100",
                  .file = signer.file};
  }
}

}  // namespace

std::size_t signatures_size(std::span<const Party> signers) {
  constexpr std::size_t kAround = 64;  // headers and algorithm
  std::size_t size = 0;
  for (const Party& signer : signers) {
    const auto value = static_cast<std::size_t>(EVP_PKEY_get_size(signer.public_key.get()));
    size += signer.certificate.size() + value + kAround;
  }
  return 2 * size;  // the head has the first one's, too
}

void sign_label(TqLabel label, std::span<const Party> signers) {
  const Party& first = signers.front();
  require_distinct(signers);
  const std::string name = signature_name(first.kind);
  need(SetHeadSignAlg(label, as_octets(name.c_str()), static_cast<std::uint32_t>(name.size())) ==
           0 &&
       SetHeadSignCert(label, first.certificate.data(),
                       static_cast<std::uint32_t>(first.certificate.size())) == 0);
  const std::vector<std::uint8_t> value = sign(head_message(label), first);
  need(SetHeadSignValue(label, value.data(), static_cast<std::uint32_t>(value.size())) == 0);
  remove_signers(label);
  for (const Party& signer : signers) add_signature(label, signer, &signer == &first);
}

std::vector<Party> verified_signers(TqLabel label, const std::string& file) {
  constexpr const char* kHead = "head.headSign";
  constexpr const char* kBody = "body.multiSign";
  std::uint64_t made = 0;
  GetHeadCreateTime(label, &made);
  const Sign& head = label->head.headSign;
  const Party sealer = signer_of(head, file, kHead);
  verify(head_message(label), head, sealer, file, kHead);
  std::vector<Party> signers;
  for (const Sign* sign = &label->body.multiSign; sign != nullptr; sign = sign->next) {
    Party signer = signer_of(*sign, file, kBody);
    verify(statement(label, signatures_before(label, signer.certificate)), *sign, signer, file,
           kBody);
    signer.require_in_force(static_cast<std::time_t>(made));
    signers.push_back(std::move(signer));
    require_distinct(signers);
  }
  if (signers.front().certificate != sealer.certificate) {
    refuse(file, kBody, "the first signer is not the one of the head");
  }
  return signers;
}

}  // namespace tq::tool
