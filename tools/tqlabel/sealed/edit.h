#ifndef TQLABEL_TOOL_SEALED_EDIT_H
#define TQLABEL_TOOL_SEALED_EDIT_H

// The label of a sealed file, exchanged so that an interruption never costs the file: the new label
// goes to a journal beside it first. What an earlier change has left is dealt with before anything
// is read: a journal that is whole is carried out, a part of one is removed.

#include <string>
#include <vector>

#include "base/files.h"

namespace tq::tool {

[[nodiscard]] inline std::string journal_of_file(const std::string& path) {
  return path + ".tqjournal";
}

class EditFile {
 public:
  enum class Purpose { kRead, kChange };

  // Readers share the file; whoever is to change it has it alone until the end.
  EditFile(const std::string& path, Purpose purpose);

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const Descriptor& descriptor() const { return file_; }
  // Not where file or folder cannot be written, whatever the purpose.
  [[nodiscard]] bool can_change() const { return can_change_; }
  void require_change() const;

  [[nodiscard]] Bytes label() const { return label_; }
  // IV and ciphertext, which follow the label.
  [[nodiscard]] std::uint64_t content_size() const { return size_ - label_.size(); }

  // Exchanges the label. One of another size costs a copy of the file.
  void replace_label(std::vector<std::uint8_t> label);

 private:
  void open(Purpose purpose);
  void lock() const;
  [[nodiscard]] bool is_at_path() const;
  void read_label();
  [[nodiscard]] std::string journal_path() const { return journal_of_file(path_); }
  [[nodiscard]] std::vector<std::uint8_t> content_iv(std::uint64_t offset) const;
  [[nodiscard]] std::vector<std::uint8_t> journal_of(Bytes label) const;
  void finish_journal();
  void remove_journal() const;
  void write_label(Bytes label) const;
  void rewrite(Bytes label);

  std::string path_;  // of no symbolic link, so that everybody finds the same journal
  Descriptor file_;
  bool can_change_ = false;
  std::uint64_t size_ = 0;
  std::vector<std::uint8_t> label_;
};

// The label at the front of a file, as read_label_file() gives it, but with what an interrupted
// change has left completed or undone.
[[nodiscard]] LabelFile read_settled_label(const std::string& path);

// Throws where a journal waits that a new file of that name must not be taken for.
void require_no_journal(const std::string& path);

}  // namespace tq::tool

#endif
