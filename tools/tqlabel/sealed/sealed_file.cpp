#include "sealed/sealed_file.h"

#include <ctime>

#include "base/failure.h"
#include "sealed/body.h"
#include "sealed/signatures.h"

namespace tq::tool {
namespace {

[[noreturn]] void refuse(Status status, std::string why) {
  throw Failure{.status = status, .why = std::move(why)};
}

// What goes wrong within is a failure of the file, unless it is known of which other one.
template <class Action>
auto concerning(const std::string& file, Action action) {
  try {
    return action();
  } catch (Failure& failure) {
    if (failure.file.empty()) failure.file = file;
    throw;
  }
}

void require_sizes(TqLabel label, const EditFile& file, const ContentSums& sums) {
  std::uint32_t size = 0;
  GetLabelAlignSize(label, &size);
  if (size != file.label().size() || content_size(sums.length) != file.content_size()) {
    refuse(Status::kMalformed, "label or content is not of the size that the label says");
  }
}

bool is_same(const ContentSums& left, const ContentSums& right) {
  return left.length == right.length && are_equal(left.sha256, right.sha256) &&
         are_equal(left.tag, right.tag);
}

}  // namespace

SealedFile::SealedFile(const std::string& path, EditFile::Purpose purpose)
    : file_(path, purpose), sealed_(read_sealed_label(file_.label(), file_.path())) {}

void SealedFile::open_body(const Party& recipient) {
  keys_ = derive_keys(file_key_for(recipient, *label()));
  const Secret body = tool::open_body(sealed_.head, sealed_.body, keys_);
  if (!layout_of(*label()).multi_sign ||
      DecodeLabelDecrypted(label(), body.data(), static_cast<std::uint32_t>(body.size())) != 0) {
    refuse(Status::kMalformed, "the body is none of version 1.1.2");
  }
  sums_ = stored_sums(label());
  require_sizes(label(), file_, sums_);
}

void SealedFile::unlock(const Party& recipient) {
  concerning(file_.path(), [&] { open_body(recipient); });
}

std::vector<Party> SealedFile::signers() const { return verified_signers(label(), file_.path()); }

void SealedFile::require_valid() const {
  concerning(file_.path(), [&] {
    if (CheckAbolishDate(label()) != 0) refuse(Status::kNo, "the file has been abolished");
    if (CheckDestroyDate(label()) != 0) refuse(Status::kNo, "the file is to be destroyed");
    if (CheckLabelDate(label()) != 0) refuse(Status::kNo, "the file has expired");
  });
}

void SealedFile::read_content(const std::function<void(Bytes)>& take) const {
  ContentReader reader(file_.descriptor(), file_.path(), file_.label().size(), file_.content_size(),
                       keys_);
  for (Bytes plain = reader.read(); !plain.empty(); plain = reader.read()) take(plain);
  if (is_same(reader.finish(), sums_)) return;
  throw Failure{
      .status = Status::kCrypto, .why = "the content is not what was sealed", .file = file_.path()};
}

void SealedFile::save() {
  concerning(file_.path(), [&] {
    SetHeadModifyTime(label(), static_cast<std::uint64_t>(std::time(nullptr)));
    std::vector<std::uint8_t> bytes = seal_label(label(), keys_, file_.label().size());
    if (bytes.empty()) bytes = seal_label(label(), keys_, roomy_size(label(), 0));
    if (bytes.empty() || bytes.size() > kMostLabel) {
      refuse(Status::kUsage, "the label would become too large");
    }
    file_.replace_label(std::move(bytes));
  });
}

}  // namespace tq::tool
