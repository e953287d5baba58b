#include "crypto/issuers.h"

#include "crypto/names.h"

namespace tq {
namespace {

bool fits(const PJCertIssuerEntry& entry) {
  return entry.typeLen <= sizeof entry.type && entry.valueLen <= sizeof entry.value;
}

bool fits(const X509Name& attribute) {
  return attribute.type.length <= sizeof PJCertIssuerEntry::type &&
         attribute.value.length <= sizeof PJCertIssuerEntry::value;
}

bool occurs_in(const PJCertIssuerEntry& entry, const X509Name& first) {
  if (!fits(entry)) return false;
  for (const X509Name* attribute = &first; attribute != nullptr; attribute = attribute->next) {
    if (equal_bytes(attribute->type, entry.type, entry.typeLen) &&
        equal_bytes(attribute->value, entry.value, entry.valueLen)) {
      return true;
    }
  }
  return false;
}

[[nodiscard]] bool copy_attribute(const PJCertIssuerEntry& entry, X509Name& attribute) {
  return replace(attribute.type, entry.type, entry.typeLen, der::type_word(der::kObjectId)) &&
         replace(attribute.value, entry.value, entry.valueLen, entry.valueTag);
}

void copy_entry(const X509Name& attribute, PJCertIssuerEntry& entry) {
  const auto copy = [](const ANYBUF& field, std::uint8_t* to) {
    if (field.length != 0) std::memcpy(to, field.data, field.length);
    return field.length;
  };
  entry.typeLen = copy(attribute.type, entry.type);
  entry.valueLen = copy(attribute.value, entry.value);
  entry.valueTag = attribute.value.type;
}

// Whether the chain can be copied as it is.
bool fits_issuer(const X509Name& first) {
  std::uint32_t count = 0;
  for (const X509Name* attribute = &first; attribute != nullptr; attribute = attribute->next) {
    if (++count > kIssuerCapacity || !fits(*attribute)) return false;
  }
  return true;
}

}  // namespace

std::uint64_t count_attributes(const X509Name& first) {
  if (is_empty(first)) return 0;
  std::uint64_t count = 0;
  for (const X509Name* attribute = &first; attribute != nullptr; attribute = attribute->next) {
    ++count;
  }
  return count;
}

Issuer make_issuer(const X509Name& name) {
  if (!fits_issuer(name)) return nullptr;
  Block<PJCertIssuerEntry> entries = make_zeroed<PJCertIssuerEntry>(kIssuerCapacity);
  Block<PJCertIssuer> issuer = make_zeroed<PJCertIssuer>();
  if (!entries || !issuer) return nullptr;
  issuer->capacity = kIssuerCapacity;
  if (!is_empty(name)) {
    for (const X509Name* attribute = &name; attribute != nullptr; attribute = attribute->next) {
      copy_entry(*attribute, entries.get()[issuer->count++]);
    }
  }
  issuer->entries = entries.release();
  return Issuer(issuer.release());
}

}  // namespace tq

std::int32_t X509NameCmp(const X509Name* name, const PJCertIssuer* issuer) {
  if (name == nullptr) return -1;
  if (issuer == nullptr || issuer->count == 0) return 0;
  if (issuer->entries == nullptr) return -1;
  for (std::uint32_t i = 0; i < issuer->count; ++i) {
    if (!tq::occurs_in(issuer->entries[i], *name)) return -1;
  }
  return 0;
}

std::int32_t ConvertIssuerName2PJCertIssuer(const PJCertIssuer* in, X509Name* out) {
  if (in == nullptr || in->entries == nullptr || in->count == 0 ||
      in->count > tq::kIssuerCapacity || out == nullptr) {
    return -1;
  }
  for (std::uint32_t i = 0; i < in->count; ++i) {
    if (!tq::fits(in->entries[i])) return -1;
  }
  tq::FreeX509Name(out);
  if (!tq::copy_attribute(in->entries[0], *out)) return -1;
  X509Name* last = out;
  for (std::uint32_t i = 1; i < in->count; ++i) {
    last->next = tq::make_zeroed<X509Name>().release();
    if (last->next == nullptr) return -1;
    last = last->next;
    if (!tq::copy_attribute(in->entries[i], *last)) return -1;
  }
  return 0;
}

std::int32_t ConvertPJCertIssuer2IssuerName(const X509Name* in, PJCertIssuer** out) {
  if (in == nullptr || out == nullptr) return -1;
  tq::Issuer issuer = tq::make_issuer(*in);
  if (!issuer) return -1;
  *out = issuer.release();
  return 0;
}

std::int32_t FreeIssuerName(PJCertIssuer* issuer) {
  if (issuer == nullptr || issuer->entries == nullptr) return 0;
  Asn1Free(issuer->entries);
  Asn1Free(issuer);
  return 0;
}
