#include "base/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "asn1/der.h"
#include "base/failure.h"

namespace tq::tool {
namespace {

constexpr std::size_t kFirstStep = 65536;

// Reads on to a size; each step doubles what there is, so that a size that is a lie costs as much
// memory as the file has brought.
void read_to(const Descriptor& file, const std::string& path, std::size_t size,
             std::vector<std::uint8_t>& bytes) {
  while (bytes.size() < size) {
    const std::size_t used = bytes.size();
    const std::size_t step = std::min(std::max(kFirstStep, used), size - used);
    bytes.resize(used + step);
    const std::size_t count = read_some(file, path, bytes.data() + used, step);
    bytes.resize(used + count);
    if (count < step) break;
  }
}

// How many bytes are still to be read, where that can be told.
std::optional<std::uint64_t> left_in(const Descriptor& file) {
  struct stat status = {};
  if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  const off_t position = ::lseek(file.get(), 0, SEEK_CUR);
  if (position < 0 || position > status.st_size) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size - position);
}

// What a new file may be; an existing one keeps what it had.
unsigned permissions_for(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0) {
    if (!S_ISREG(status.st_mode)) {
      throw Failure{.status = Status::kInputOutput,
                    .why = "not a regular file",
                    .file = path,
                    .advice = "name a file, or - for standard output"};
    }
    return status.st_mode & 0777U;
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666U & ~mask;
}

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

Descriptor::~Descriptor() {
  if (is_open()) ::close(number_);
}

void fail_by_errno(const std::string& path, std::string advice) {
  throw Failure{.status = Status::kInputOutput,
                .why = std::strerror(errno),
                .file = path,
                .advice = std::move(advice)};
}

std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

Descriptor open_input(const std::string& path) {
  if (path == "-") return Descriptor(::dup(STDIN_FILENO));
  Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.is_open()) fail_by_errno(path);
  return file;
}

std::size_t read_some(const Descriptor& file, const std::string& path, std::uint8_t* to,
                      std::size_t room) {
  std::size_t used = 0;
  while (used < room) {
    const ssize_t count = ::read(file.get(), to + used, room - used);
    if (count < 0 && errno != EINTR) fail_by_errno(path);
    if (count == 0) break;
    if (count > 0) used += static_cast<std::size_t>(count);
  }
  return used;
}

void write_at(const Descriptor& file, const std::string& path, Bytes bytes, std::uint64_t offset) {
  while (!bytes.empty()) {
    const ssize_t count =
        ::pwrite(file.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (count < 0 && errno != EINTR) fail_by_errno(path);
    if (count <= 0) continue;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
    offset += static_cast<std::uint64_t>(count);
  }
}

std::size_t label_size(Bytes bytes) {
  constexpr std::size_t kLongestLength = 4;
  if (bytes.size() < 2 + kLongestLength || bytes[0] != der::kSequence) return bytes.size();
  if (bytes[1] < 0x80) return std::size_t{2} + bytes[1];
  const std::size_t count = bytes[1] & 0x7FU;
  if (count > kLongestLength) return bytes.size();
  std::size_t length = 0;
  for (std::size_t i = 0; i < count; ++i) length = length << 8 | bytes[2 + i];
  return 2 + count + length;
}

LabelFile read_label_file(const std::string& path) {
  const Descriptor file = open_input(path);
  const std::optional<std::uint64_t> whole = left_in(file);
  LabelFile read;
  read_to(file, path, kFirstStep, read.bytes);
  const std::size_t size = label_size(read.bytes);
  read_to(file, path, size, read.bytes);
  if (whole) read.behind = *whole - std::min<std::uint64_t>(size, *whole);
  read.bytes.resize(std::min(size, read.bytes.size()));
  return read;
}

std::vector<std::uint8_t> read_small_file(const std::string& path, std::size_t most) {
  std::vector<std::uint8_t> bytes;
  read_to(open_input(path), path, most + 1, bytes);
  if (bytes.size() <= most) return bytes;
  throw Failure{.status = Status::kInputOutput,
                .why = fmt::format("larger than {} bytes", most),
                .file = path};
}

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
  if (is_standard_output()) return;
  permissions_ = permissions_for(path_);
  const std::string folder = folder_of(path_);
  file_ = Descriptor(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
  if (file_.is_open()) return;
  hidden_ = folder + "/.tqlabel-XXXXXX";
  file_ = Descriptor(::mkostemp(hidden_.data(), O_CLOEXEC));
  if (file_.is_open()) return;
  hidden_.clear();
  fail_by_errno(path_);
}

OutputFile::~OutputFile() {
  if (!hidden_.empty()) ::unlink(hidden_.c_str());
}

int OutputFile::descriptor() const { return is_standard_output() ? STDOUT_FILENO : file_.get(); }

void OutputFile::write(Bytes bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor(), bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) {
      fail_by_errno(is_standard_output() ? "standard output" : path_);
    }
    if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

void OutputFile::write_at(Bytes bytes, std::uint64_t offset) {
  tool::write_at(file_, path_, bytes, offset);
}

void OutputFile::seek(std::uint64_t offset) {
  if (::lseek(descriptor(), static_cast<off_t>(offset), SEEK_SET) < 0) fail_by_errno(path_);
}

// A file without a name cannot replace one that has it: it takes a hidden name first.
void OutputFile::name_it() {
  const std::string self = fmt::format("/proc/self/fd/{}", file_.get());
  for (unsigned attempt = 0;; ++attempt) {
    std::string name = fmt::format("{}/.tqlabel-{}-{}", folder_of(path_), ::getpid(), attempt);
    if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
      hidden_ = std::move(name);
      return;
    }
    if (errno != EEXIST) fail_by_errno(path_);
  }
}

void OutputFile::commit() {
  if (is_standard_output()) return;
  if (::fchmod(file_.get(), permissions_) != 0 || ::fsync(file_.get()) != 0) fail_by_errno(path_);
  if (hidden_.empty()) name_it();
  if (::rename(hidden_.c_str(), path_.c_str()) != 0) fail_by_errno(path_);
  hidden_.clear();
}

void sync_folder(const std::string& path) {
  const std::string name = folder_of(path);
  const Descriptor folder(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder.is_open() || ::fsync(folder.get()) != 0) fail_by_errno(name);
}

void write_file(const std::string& path, Bytes bytes) {
  OutputFile file(path);
  file.write(bytes);
  file.commit();
}

}  // namespace tq::tool
