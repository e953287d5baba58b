#include "sealed/content.h"

#include <unistd.h>

#include <algorithm>
#include <future>
#include <limits>

#include "base/failure.h"
#include "sealed/format.h"

namespace tq::tool {
namespace {

Iv random_iv() {
  Iv iv;
  fill_randomly(iv);
  return iv;
}

Iv read_iv(const Descriptor& file, const std::string& path, std::uint64_t offset) {
  Iv iv = {};
  if (::lseek(file.get(), static_cast<off_t>(offset), SEEK_SET) < 0) fail_by_errno(path);
  if (read_some(file, path, iv.data(), iv.size()) == iv.size()) return iv;
  throw Failure{.status = Status::kMalformed, .why = "the content is cut short", .file = path};
}

// The length keeps bytes from being moved between what is authenticated and what is not.
Sum finish_tag(Hmac& mac, std::uint64_t sealed_length) {
  mac.update(big_endian(sealed_length));
  return mac.finish();
}

}  // namespace

ContentWriter::ContentWriter(OutputFile& out, const FileKeys& keys)
    : out_(out),
      iv_(random_iv()),
      cipher_(keys.content_encryption, iv_, Cbc::Direction::kEncrypt),
      mac_(keys.content_authentication),
      sealed_(kContentStep + kBlockSize) {
  out_.write(iv_);
  mac_.update(iv_);
}

void ContentWriter::write_sealed(std::size_t length) {
  const Bytes sealed = {sealed_.data(), length};
  mac_.update(sealed);
  out_.write(sealed);
  sealed_length_ += length;
}

void ContentWriter::write(Bytes plain) {
  while (!plain.empty()) {
    const Bytes part = plain.first(std::min(plain.size(), kContentStep));
    const auto summed = std::async(std::launch::async, [&] { digest_.update(part); });
    write_sealed(cipher_.update(part, sealed_.data()));
    length_ += part.size();
    plain = plain.subspan(part.size());
  }
}

ContentSums ContentWriter::finish() {
  std::size_t length = 0;
  require(cipher_.finish(sealed_.data(), length), "AES-256-CBC");
  write_sealed(length);
  return {length_, digest_.finish(), finish_tag(mac_, sealed_length_)};
}

ContentReader::ContentReader(const Descriptor& file, const std::string& path, std::uint64_t offset,
                             std::uint64_t size, const FileKeys& keys)
    : file_(file),
      path_(path),
      left_(size - kBlockSize),
      sealed_length_(left_),
      iv_(read_iv(file, path, offset)),
      cipher_(keys.content_encryption, iv_, Cbc::Direction::kDecrypt),
      mac_(keys.content_authentication),
      sealed_(kContentStep),
      plain_(kContentStep + kBlockSize) {
  mac_.update(iv_);
}

std::size_t ContentReader::decrypt(Bytes sealed, bool is_last) {
  std::size_t length = cipher_.update(sealed, plain_.data());
  if (is_last) {
    std::size_t rest = 0;
    broken_ = !cipher_.finish(plain_.data() + length, rest);
    length += rest;
  }
  digest_.update({plain_.data(), length});
  length_ += length;
  return length;
}

Bytes ContentReader::read() {
  std::size_t length = 0;
  while (length == 0 && left_ != 0) {
    const std::size_t wanted = std::min<std::uint64_t>(left_, sealed_.size());
    if (read_some(file_, path_, sealed_.data(), wanted) != wanted) {
      throw Failure{.status = Status::kMalformed, .why = "the content is cut short", .file = path_};
    }
    const Bytes sealed = {sealed_.data(), wanted};
    const auto summed = std::async(std::launch::async, [&] { mac_.update(sealed); });
    left_ -= wanted;
    length = decrypt(sealed, left_ == 0);
  }
  return {plain_.data(), length};
}

ContentSums ContentReader::finish() {
  constexpr std::uint64_t kNone = std::numeric_limits<std::uint64_t>::max();
  return {broken_ ? kNone : length_, digest_.finish(), finish_tag(mac_, sealed_length_)};
}

}  // namespace tq::tool
