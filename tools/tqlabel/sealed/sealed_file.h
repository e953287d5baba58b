#ifndef TQLABEL_TOOL_SEALED_SEALED_FILE_H
#define TQLABEL_TOOL_SEALED_SEALED_FILE_H

// A sealed file as a recipient sees it. Commands that show or change one go through these steps:
//
//   SealedFile file(path, EditFile::Purpose::kChange);   // framing; locked until it goes
//   file.unlock(recipient);                              // from here on the label is authentic
//   ... file.signers(), file.label(), file.read_content(...)
//   file.save();                                         // where the label was changed
//
// Each throws a Failure that names the file.

#include <functional>
#include <string>
#include <vector>

#include "crypto/derive.h"
#include "crypto/party.h"
#include "sealed/edit.h"
#include "sealed/layout.h"
#include "sealed/recipients.h"
#include "sealed/sums.h"

namespace tq::tool {

class SealedFile {
 public:
  SealedFile(const std::string& path, EditFile::Purpose purpose);

  // Unwraps the file key with the recipient's private key, authenticates head and body and fills in
  // the latter.
  void unlock(const Party& recipient);

  // Those who have signed, as of verified_signers().
  [[nodiscard]] std::vector<Party> signers() const;

  // Throws where the file has been abolished, has expired or is to be destroyed.
  void require_valid() const;

  // Hands the content to a function, piece by piece, and throws at the end if it is not what was
  // sealed: until then the function must not let go of it.
  void read_content(const std::function<void(Bytes)>& take) const;

  // Seals the label as it now is, and puts it in place of the one in the file. Either that is done
  // or nothing is.
  void save();

  [[nodiscard]] TqLabel label() const { return sealed_.label.get(); }  // its head, until unlock()
  [[nodiscard]] const FileKeys& keys() const { return keys_; }
  [[nodiscard]] const ContentSums& sums() const { return sums_; }
  [[nodiscard]] const EditFile& file() const { return file_; }

 private:
  void open_body(const Party& recipient);

  EditFile file_;
  SealedLabel sealed_;
  FileKeys keys_;
  ContentSums sums_;
};

// Opens a file as its recipient, changes its label and writes that down. The change gives the value
// for the log.
template <class Change>
void change_sealed(const std::string& path, const Party& recipient, Action action,
                   const std::string& note, Change change) {
  SealedFile file(path, EditFile::Purpose::kChange);
  file.unlock(recipient);
  const std::uint32_t value = change(file);
  append_log(file.label(), action, recipient, value, note);
  file.save();
}

}  // namespace tq::tool

#endif
