#ifndef TQ_CRYPTO_ALGORITHMS_H
#define TQ_CRYPTO_ALGORITHMS_H

// Algorithm and attribute names and their object identifiers.

#include <tqlabel/label.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace tq {

struct ReflectOID {
  const char* name;
  std::uint32_t length;  // content octets of the identifier
  const std::uint8_t* octets;
};

inline constexpr std::size_t kReflectRows = 64;
inline constexpr std::size_t kReflectFilled = 46;

// Sorted by the octets of the identifiers, the shorter first where one begins the other; the rows
// behind the filled ones are empty.
extern const std::array<ReflectOID, kReflectRows> g_ReflectOID;

// Room for any name with its suffixes and its terminator, and for any identifier.
inline constexpr std::size_t kAlgorithmNameRoom = 32;
inline constexpr std::size_t kObjectIdRoom = 16;

// Whether the algorithm is one of the two identity-based schemes, which have forms of their own.
[[nodiscard]] bool is_identity_signature(const ANYBUF& algorithm);
[[nodiscard]] bool is_identity_wrapping(const ANYBUF& algorithm);

// Compares without regard to case; -1 when either is null.
std::int32_t SflStrCmp(const char* left, const char* right);

// Joins a base name with the suffixes of a key length and a mode. The buffer is zeroed first; a
// name that does not fit fails.
std::int32_t AddModeAndBitnumToAlg(char* out, std::uint32_t size, const char* base,
                                   std::uint8_t mode, std::int32_t key_length);

// Splits a name: the part before the first dot goes to the zeroed buffer; the mode output becomes 1
// where the name has a mode part. Outputs may be null. A key length that is not 64, 112, 192 or 256
// gives 257.
std::int32_t ParseAlgToModeAndBits(const char* name, char* base, std::uint32_t size,
                                   std::uint8_t* mode, std::uint32_t* key_length);

// Does nothing.
std::int32_t ConvertAlg2OID();

// Moves a node's fields into another node and releases the first one's shell.
std::int32_t ConvertOID2Alg(ANYBUF* source, ANYBUF* destination);

}  // namespace tq

#endif
