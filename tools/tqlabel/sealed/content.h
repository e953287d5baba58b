#ifndef TQLABEL_TOOL_SEALED_CONTENT_H
#define TQLABEL_TOOL_SEALED_CONTENT_H

// The content of a sealed file: IV and ciphertext, written and read as a stream. Sums are computed
// beside the cipher, in a thread of their own.

#include <string>
#include <vector>

#include "base/files.h"
#include "crypto/derive.h"
#include "crypto/stream.h"

namespace tq::tool {

// How much callers had best pass at a time.
inline constexpr std::size_t kContentStep = std::size_t{512} * 1024;

struct ContentSums {
  std::uint64_t length = 0;  // of what was sealed
  Sum sha256 = {};           // of the same
  Sum tag = {};              // of IV and ciphertext
};

constexpr std::uint64_t content_size(std::uint64_t length) {
  return kBlockSize + encrypted_size(length);
}

class ContentWriter {
 public:
  // Writes to where the file is.
  ContentWriter(OutputFile& out, const FileKeys& keys);

  void write(Bytes plain);
  [[nodiscard]] ContentSums finish();
  [[nodiscard]] const Iv& iv() const { return iv_; }

 private:
  void write_sealed(std::size_t length);

  OutputFile& out_;
  Iv iv_;
  Cbc cipher_;
  Hmac mac_;
  Sha256 digest_;
  std::uint64_t length_ = 0;
  std::uint64_t sealed_length_ = 0;
  std::vector<std::uint8_t> sealed_;
};

// Nothing that it reads is authentic until finish() has been compared.
class ContentReader {
 public:
  // The content lies at an offset of the file, and is so large with its IV.
  ContentReader(const Descriptor& file, const std::string& path, std::uint64_t offset,
                std::uint64_t size, const FileKeys& keys);

  // The next bytes; none at the end. They stay until the next call.
  [[nodiscard]] Bytes read();
  // After the end. Where the padding was wrong there is no length that could be the right one.
  [[nodiscard]] ContentSums finish();

 private:
  std::size_t decrypt(Bytes sealed, bool is_last);

  const Descriptor& file_;
  const std::string& path_;
  std::uint64_t left_;  // to be read
  std::uint64_t sealed_length_;
  Iv iv_;
  Cbc cipher_;
  Hmac mac_;
  Sha256 digest_;
  std::uint64_t length_ = 0;
  bool broken_ = false;
  std::vector<std::uint8_t> sealed_;
  Secret plain_;
};

}  // namespace tq::tool

#endif
