#ifndef TQLABEL_TOOL_BASE_FILES_H
#define TQLABEL_TOOL_BASE_FILES_H

// Files as the commands read and write them. "-" is standard input or output. What goes wrong is
// thrown as a Failure that names the file.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/text.h"

namespace tq::tool {

// A descriptor that closes itself.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();

  [[nodiscard]] int get() const { return number_; }
  [[nodiscard]] bool is_open() const { return number_ >= 0; }

 private:
  int number_ = -1;
};

// Throws what the last system call has said about a file.
[[noreturn]] void fail_by_errno(const std::string& path, std::string advice = {});

[[nodiscard]] std::string folder_of(const std::string& path);

[[nodiscard]] Descriptor open_input(const std::string& path);

// Reads until there is no more room or the input ends; the answer is how much there was.
[[nodiscard]] std::size_t read_some(const Descriptor& file, const std::string& path,
                                    std::uint8_t* to, std::size_t room);

void write_at(const Descriptor& file, const std::string& path, Bytes bytes, std::uint64_t offset);

// What the header of a label says of its size; how much there is where that is none of a label.
[[nodiscard]] std::size_t label_size(Bytes bytes);

struct LabelFile {
  std::vector<std::uint8_t> bytes;           // the label; less where the file is cut short
  std::optional<std::uint64_t> behind = {};  // how many bytes follow it, where that can be told
};

// Reads the label at the front of a file and no more: one that does not begin with a SEQUENCE is
// read no further than that takes to see.
[[nodiscard]] LabelFile read_label_file(const std::string& path);

// Reads a file of at most `most` bytes: JSON, keys, certificates.
[[nodiscard]] std::vector<std::uint8_t> read_small_file(const std::string& path, std::size_t most);

// A file that comes into being as a whole: it is written without a name, or under a hidden one, and
// takes its name when it is complete. Until then whatever had the name stays as it was.
class OutputFile {
 public:
  explicit OutputFile(std::string path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  OutputFile(OutputFile&&) = delete;
  OutputFile& operator=(OutputFile&&) = delete;
  ~OutputFile();

  [[nodiscard]] bool is_standard_output() const { return path_ == "-"; }
  [[nodiscard]] int descriptor() const;

  void write(Bytes bytes);
  void write_at(Bytes bytes, std::uint64_t offset);  // not to standard output
  void seek(std::uint64_t offset);                   // where the next write goes
  // Gives the file its name; what a disk has not taken by then is a failure, too.
  void commit();

 private:
  void name_it();

  std::string path_;
  std::string hidden_;  // the name until then; empty for none
  Descriptor file_;
  unsigned permissions_ = 0;
};

// Makes names in the folder of that path last that are new, changed or gone.
void sync_folder(const std::string& path);

// A whole output in one call.
void write_file(const std::string& path, Bytes bytes);

}  // namespace tq::tool

#endif
