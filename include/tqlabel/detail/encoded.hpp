/**
 * @file
 * What is told of encoded labels without decoding them, and of the names of algorithms.
 */
#ifndef TQLABEL_DETAIL_ENCODED_HPP
#define TQLABEL_DETAIL_ENCODED_HPP

#include <tqlabel/detail/calls.hpp>

/** @cond cpp */
namespace tqlabel {

/** Questions about encoded labels, answered without decoding them. */
namespace peek {

/** Whether the head names a cipher: the body is encrypted. */
inline Result<bool> is_encrypted(ByteView der) {
  return detail::with<std::int32_t>(der, [](const std::uint8_t* data, std::int32_t length) {
    return detail::answer(LabelBodyWeatherEnc(data, length));
  });
}
/** Whether the label has padding. */
inline Result<bool> has_padding(ByteView der) {
  return detail::with(der, [](const std::uint8_t* data, std::uint32_t length) -> Result<bool> {
    std::uint32_t flag = 0;
    if (HavePadded(data, length, &flag) != 0) return Error::kRefused;
    return flag != 0;
  });
}
/** The label text, to its first zero byte; empty where the head names no cipher. */
inline Result<std::string> text(ByteView der) {
  return detail::with(
      der, [](const std::uint8_t* data, std::uint32_t length) -> Result<std::string> {
        char room[129] = {};
        if (GetLable(data, length, static_cast<std::uint8_t*>(static_cast<void*>(room))) != 0) {
          return Error::kRefused;
        }
        return std::string(room);
      });
}
/** The custom bytes of the head. */
inline Result<Bytes> custom(ByteView der) {
  return detail::with<std::int32_t>(der, [](const std::uint8_t* data, std::int32_t length) {
    return detail::fetch<Bytes, std::int32_t>([&](std::uint8_t* buffer, std::int32_t* room) {
      return GetCustomAttr(data, length, buffer, room);
    });
  });
}
/** The algorithm of the head signature, where the head names a cipher. */
inline Result<std::string> sign_algorithm(ByteView der) {
  return detail::with<std::int32_t>(der, [](const std::uint8_t* data, std::int32_t length) {
    return detail::fetch<std::string>([&](std::uint8_t* buffer, std::uint32_t* room) {
      return GetSignAlgName(data, length, buffer, room);
    });
  });
}
/** Whether a recipient has an envelope in the head; false where the head names no cipher. */
inline Result<bool> in_head(ByteView der, const Recipient& recipient) {
  return detail::with<std::int32_t>(der, [&](const std::uint8_t* data, std::int32_t length) {
    return detail::with(recipient, [&](auto... who) {
      return detail::answer(HavePrivilegeOfHead(data, length, who...));
    });
  });
}
/** Whether a serial number may open the file: it has an envelope in the head, or there is no
 * cipher. Refused for what is no label and for a serial number that has none. */
inline Result<void> may_open(ByteView der, ByteView serial) {
  if (!detail::fits<std::uint8_t>(serial.size())) return Error::kTooLong;
  return detail::with<std::int32_t>(der, [&](const std::uint8_t* data, std::int32_t length) {
    return detail::status(
        HavePrivilege(data, length, detail::octets(serial), detail::size32(serial)));
  });
}

}  // namespace peek

/** The content octets of the identifier of an algorithm or attribute type, such as "AES.256.CBC".
 */
inline Result<Bytes> identifier_of(std::string_view name) {
  return detail::with(as_octets(name), [](const std::uint8_t* data, std::uint32_t length) {
    return detail::fetch<Bytes>([&](std::uint8_t* oid, std::uint32_t* room) {
      return SflAlg2OID(data, length, 0, 0, oid, room);
    });
  });
}
/** The base name of an identifier, given by its content octets. */
inline Result<std::string> name_of(ByteView identifier) {
  return detail::with(identifier,
                      [](const std::uint8_t* data, std::uint32_t length) -> Result<std::string> {
                        char name[33] = {};
                        if (SflOID2Alg(data, length, name, nullptr, nullptr) != 0)
                          return Error::kRefused;
                        return std::string(name);
                      });
}
/** An attribute of a name, such as ("CN", "Example Root"). */
inline Result<Attribute> attribute(std::string_view type, std::string_view value,
                                   StringType string_type = StringType::kPrintable) {
  return identifier_of(type).and_then([&](Bytes octets) -> Result<Attribute> {
    return Attribute{std::move(octets), std::string(value), string_type};
  });
}

}  // namespace tqlabel
/** @endcond */

#endif
