#include "sealed/edit.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "base/failure.h"
#include "crypto/stream.h"
#include "sealed/format.h"

namespace tq::tool {
namespace {

// A journal is this, the sizes of label and file, the IV of the content, the label, and a SHA-256.
constexpr std::string_view kMagic = "tqlabel journal\n";
constexpr std::size_t kJournalHead = kMagic.size() + 2 * kNumberSize + kBlockSize;
constexpr std::size_t kJournalRest = kJournalHead + sizeof(Sum);
constexpr const char* kJournalAdvice = "move it away if it is not needed";

using Block = std::vector<std::uint8_t>;

[[noreturn]] void refuse(const std::string& file, std::string why, std::string advice = {}) {
  throw Failure{.status = Status::kMalformed,
                .why = std::move(why),
                .file = file,
                .advice = std::move(advice)};
}

void append(Block& to, Bytes bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

Bytes as_bytes(std::string_view text) { return {as_octets(text.data()), text.size()}; }

Sum sum_of(Bytes bytes) {
  Sha256 digest;
  digest.update(bytes);
  return digest.finish();
}

struct stat status_of(const Descriptor& file, const std::string& path) {
  struct stat status = {};
  if (::fstat(file.get(), &status) != 0) fail_by_errno(path);
  return status;
}

void require_regular(const std::string& path) {
  struct stat status = {};
  if (path == "-") {
    throw Failure{.status = Status::kUsage, .why = "a sealed file must have a name", .file = path};
  }
  if (::stat(path.c_str(), &status) != 0) fail_by_errno(path);
  if (S_ISREG(status.st_mode)) return;
  throw Failure{.status = Status::kInputOutput, .why = "not a regular file", .file = path};
}

// The file that a link leads to, or the path as the user has written it; empty where there is none.
std::string behind_links(const std::string& path) {
  struct stat status = {};
  if (::lstat(path.c_str(), &status) != 0) return {};
  if (!S_ISLNK(status.st_mode)) return path;
  const Owned<char, std::free> real(::realpath(path.c_str(), nullptr));
  return real ? real.get() : std::string();
}

std::string real_path(const std::string& path) {
  require_regular(path);
  std::string real = behind_links(path);
  if (real.empty()) fail_by_errno(path);
  return real;
}

bool exists(const std::string& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

// In a folder that others can write to, a journal of theirs is not to be trusted.
Block read_journal(const std::string& path, uid_t owner) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.is_open()) fail_by_errno(path);
  const struct stat status = status_of(file, path);
  if (!S_ISREG(status.st_mode) || (status.st_uid != owner && status.st_uid != ::geteuid())) {
    refuse(path, "a journal that is not from the owner of the file", kJournalAdvice);
  }
  Block bytes(std::min<std::size_t>(static_cast<std::size_t>(status.st_size),
                                    kMostLabel + kJournalRest + 1));
  bytes.resize(read_some(file, path, bytes.data(), bytes.size()));
  return bytes;
}

bool is_whole(Bytes journal) {
  if (journal.size() < kJournalRest) return false;
  const std::uint64_t label = from_big_endian(journal.data() + kMagic.size());
  return label == journal.size() - kJournalRest &&
         std::ranges::equal(sum_of(journal.first(journal.size() - sizeof(Sum))),
                            journal.last(sizeof(Sum)));
}

bool begins_like_one(Bytes journal) {
  const std::size_t size = std::min(journal.size(), kMagic.size());
  return std::ranges::equal(journal.first(size), as_bytes(kMagic).first(size));
}

void copy_content(const EditFile& from, OutputFile& to) {
  constexpr std::size_t kStep = std::size_t{1} << 20;
  Block buffer(kStep);
  if (::lseek(from.descriptor().get(), static_cast<off_t>(from.label().size()), SEEK_SET) < 0) {
    fail_by_errno(from.path());
  }
  for (std::size_t count = kStep; count == kStep;) {
    count = read_some(from.descriptor(), from.path(), buffer.data(), kStep);
    to.write({buffer.data(), count});
  }
}

}  // namespace

EditFile::EditFile(const std::string& path, Purpose purpose) : path_(real_path(path)) {
  open(purpose);
  // A reader who finds a journal does what whoever left it would have done next.
  if (purpose == Purpose::kRead && exists(journal_path())) open(Purpose::kChange);
  finish_journal();
  if (label_.empty()) read_label();
}

void EditFile::open(Purpose purpose) {
  do {
    file_ = Descriptor();
    if (purpose == Purpose::kChange) {
      file_ = Descriptor(::open(path_.c_str(), O_RDWR | O_CLOEXEC));
    }
    can_change_ =
        file_.is_open() && ::faccessat(AT_FDCWD, folder_of(path_).c_str(), W_OK, AT_EACCESS) == 0;
    if (!file_.is_open()) file_ = open_input(path_);
    lock();
  } while (!is_at_path());
  size_ = static_cast<std::uint64_t>(status_of(file_, path_).st_size);
}

void EditFile::lock() const {
  while (::flock(file_.get(), can_change_ ? LOCK_EX : LOCK_SH) != 0) {
    if (errno != EINTR) fail_by_errno(path_);
  }
}

// Whoever had the lock before may have put another file in place of this one.
bool EditFile::is_at_path() const {
  struct stat there = {};
  if (::stat(path_.c_str(), &there) != 0) fail_by_errno(path_);
  const struct stat here = status_of(file_, path_);
  return here.st_dev == there.st_dev && here.st_ino == there.st_ino;
}

void EditFile::read_label() {
  if (::lseek(file_.get(), 0, SEEK_SET) != 0) fail_by_errno(path_);
  label_.resize(std::min<std::uint64_t>(kLabelUnit, size_));
  label_.resize(read_some(file_, path_, label_.data(), label_.size()));
  const std::size_t size = label_size(label_);
  if (size == 0 || size % kLabelUnit != 0 || size > kMostLabel || size >= size_ ||
      (size_ - size) % kContentUnit != 0 || size_ - size < 2 * kBlockSize) {
    refuse(path_, "not a sealed file", "tqlabel protect makes one");
  }
  const std::size_t first = label_.size();
  label_.resize(size);
  if (read_some(file_, path_, label_.data() + first, size - first) != size - first) {
    refuse(path_, "the label is cut short");
  }
}

Block EditFile::content_iv(std::uint64_t offset) const {
  Block iv(kBlockSize);
  if (::lseek(file_.get(), static_cast<off_t>(offset), SEEK_SET) < 0) fail_by_errno(path_);
  iv.resize(read_some(file_, path_, iv.data(), iv.size()));
  return iv;
}

Block EditFile::journal_of(Bytes label) const {
  Block journal;
  journal.reserve(kJournalRest + label.size());
  append(journal, as_bytes(kMagic));
  append(journal, big_endian(label.size()));
  append(journal, big_endian(size_));
  append(journal, content_iv(label.size()));
  append(journal, label);
  append(journal, sum_of(journal));
  return journal;
}

void EditFile::finish_journal() {
  if (!exists(journal_path())) return;
  const Block journal = read_journal(journal_path(), status_of(file_, path_).st_uid);
  if (!is_whole(journal)) {
    if (!begins_like_one(journal)) refuse(journal_path(), "not a journal", kJournalAdvice);
    if (can_change_) remove_journal();
    return;
  }
  Block label(journal.begin() + kJournalHead, journal.end() - sizeof(Sum));
  if (journal_of(label) != journal) {
    refuse(journal_path(), "the journal of another file", kJournalAdvice);
  }
  label_ = std::move(label);
  if (!can_change_) return;
  write_label(label_);
  remove_journal();
}

void EditFile::remove_journal() const {
  if (::unlink(journal_path().c_str()) != 0) fail_by_errno(journal_path());
  sync_folder(path_);
}

void EditFile::write_label(Bytes label) const {
  write_at(file_, path_, label, 0);
  if (::fsync(file_.get()) != 0) fail_by_errno(path_);
}

// A new file takes the place of this one, locked as this one is.
void EditFile::rewrite(Bytes label) {
  OutputFile out(path_);
  if (::flock(out.descriptor(), LOCK_EX) != 0) fail_by_errno(path_);
  out.write(label);
  copy_content(*this, out);
  Descriptor kept(::fcntl(out.descriptor(), F_DUPFD_CLOEXEC, 0));
  if (!kept.is_open()) fail_by_errno(path_);
  out.commit();
  sync_folder(path_);
  file_ = std::move(kept);
  size_ = label.size() + content_size();
}

void EditFile::require_change() const {
  if (can_change_) return;
  throw Failure{.status = Status::kInputOutput,
                .why = "file or folder cannot be written",
                .file = path_,
                .advice = "change the permissions"};
}

void EditFile::replace_label(Block label) {
  require_change();
  if (label.size() == label_.size()) {
    write_file(journal_path(), journal_of(label));
    sync_folder(path_);
    write_label(label);
    remove_journal();
  } else {
    rewrite(label);
  }
  label_ = std::move(label);
}

LabelFile read_settled_label(const std::string& path) {
  const std::string real = behind_links(path);
  if (real.empty() || !exists(journal_of_file(real))) return read_label_file(path);
  const EditFile file(path, EditFile::Purpose::kRead);
  const Bytes label = file.label();
  return {.bytes = {label.begin(), label.end()}, .behind = file.content_size()};
}

void require_no_journal(const std::string& path) {
  if (!exists(journal_of_file(path))) return;
  throw Failure{.status = Status::kInputOutput,
                .why = "what was there has an unfinished change",
                .file = path,
                .advice = "open it once or remove " + journal_of_file(path)};
}

}  // namespace tq::tool
