// Prints labels as trees.

#include <fmt/format.h>

#include <optional>

#include "base/files.h"
#include "commands/each_file.h"
#include "commands/program.h"
#include "format/certificate.h"
#include "format/json.h"
#include "format/print.h"
#include "format/values.h"
#include "sealed/layout.h"
#include "sealed/sealed_file.h"

namespace tq::tool {
namespace {

struct Options {
  std::vector<std::string> paths;
  std::string key;
  std::string certificate;
  std::string passphrase;
  bool offsets = false;
  bool json = false;
};

// A label and, where it was encrypted and a key was given, the body that it holds.
struct Inspected {
  std::vector<std::uint8_t> bytes;
  std::optional<std::uint64_t> behind;
  Label label;
  Secret body_bytes = {};
  std::optional<Item> body = {};
};

std::string show_shape(const Label& label) {
  const bool padded = label.padding().kind != Kind::kAbsent;
  if (label.sealed) return padded ? "padded encrypted" : "encrypted";
  return padded ? "padded" : "plain";
}

void print_summary(Tree& tree, const Label& label, std::optional<std::uint64_t> behind) {
  tree.line("shape", show_shape(label));
  tree.line("format version", show_value(*label.head().find("versionText")));
  tree.line("size", show_size(label.bytes().size()));
  tree.line("head size", show_size(label.head().bytes().size()));
  tree.line(label.sealed ? "encrypted body size" : "body size",
            show_size((label.sealed ? label.body().content() : label.body().bytes()).size()));
  if (behind.value_or(0) != 0) tree.line("behind the label", show_size(*behind));
}

Json certificate_json(const std::string& path, const Certificate& certificate) {
  return {{"path", path},
          {"subject", certificate.subject},
          {"issuer", certificate.issuer},
          {"notBefore", certificate.not_before},
          {"notAfter", certificate.not_after},
          {"sha256", certificate.sha256}};
}

// What is not of the label itself, for readers.
Json notes(const Inspected& inspected, bool with_offsets) {
  const Label& label = inspected.label;
  const std::optional<std::uint64_t> behind = inspected.behind;
  Json certificates = Json::array();
  Json offsets = Json::array();
  const auto add_certificate = [&](const std::string& path, const Item& item) {
    if (item.kind != Kind::kElement) return;
    const std::optional<Certificate> certificate = read_certificate(item.bytes());
    if (certificate) certificates.push_back(certificate_json(path, *certificate));
  };
  walk(label.root, [&](const std::string& path, const Item& item) {
    if (item.element.start == nullptr) return;
    offsets.push_back(
        {{"path", path}, {"at", label.offset_of(item)}, {"length", item.element.size()}});
    add_certificate(path, item);
  });
  if (inspected.body) walk(*inspected.body, add_certificate, "body");
  Json notes = {{"shape", show_shape(label)},
                {"size", label.bytes().size()},
                {"behind", behind ? Json(*behind) : Json()},
                {"certificates", std::move(certificates)}};
  if (with_offsets) notes["offsets"] = std::move(offsets);
  return notes;
}

class Inspection {
 public:
  Inspection(const Options& options, bool colored) : options_(options), tree_(stdout, colored) {}

  Status run() {
    return for_each_file(options_.paths, [&](const std::string& path) {
      if (options_.json || options_.paths.size() == 1) return file(path);
      const Tree::Branch inside = tree_.branch(escaped_path(path));
      return file(path);
    });
  }

 private:
  Status file(const std::string& path) {
    const Inspected inspected = options_.key.empty() ? read(path) : open(path);
    options_.json ? as_json(inspected) : as_text(inspected);
    return Status::kYes;
  }

  static Inspected read(const std::string& path) {
    LabelFile read = read_settled_label(path);
    Inspected inspected = {.bytes = std::move(read.bytes), .behind = read.behind, .label = {}};
    inspected.label = label_in(inspected.bytes, path);
    return inspected;
  }

  [[nodiscard]] Inspected open(const std::string& path) const {
    SealedFile file(path, EditFile::Purpose::kRead);
    file.unlock(
        read_party(options_.certificate, options_.key, read_passphrase(options_.passphrase)));
    const Bytes label = file.file().label();
    Inspected inspected = {
        .bytes = {label.begin(), label.end()}, .behind = file.file().content_size(), .label = {}};
    inspected.label = label_in(inspected.bytes, path);
    inspected.body_bytes = encoded(file.label(), EncodeBodyPlaint);
    const std::optional<Fault> fault =
        read_body(inspected.body_bytes, inspected.label.layout, inspected.body.emplace());
    if (fault) throw fault->failure(path);
    return inspected;
  }

  void as_text(const Inspected& inspected) {
    const Label& label = inspected.label;
    print_summary(tree_, label, inspected.behind);
    const PrintOptions print_options = {options_.offsets ? label.file.data() : nullptr};
    for (const Item& part : label.root.children) {
      const bool opened = &part == &label.body() && inspected.body;
      opened ? print(tree_, *inspected.body, {}) : print(tree_, part, print_options);
    }
  }

  void as_json(const Inspected& inspected) const {
    Json json = to_json(inspected.label);
    if (inspected.body) json["body"] = to_json(*inspected.body);
    json["notes"] = notes(inspected, options_.offsets);
    fmt::print("{}\n", json.dump(2));
  }

  const Options& options_;
  Tree tree_;
};

}  // namespace

void add_inspect(Program& program) {
  CLI::App* command = add_command(program, "inspect", "Print every field of labels",
                                  "tqlabel inspect --offsets report.label");
  auto options = std::make_shared<Options>();
  command->add_option("FILE", options->paths, "labels in DER, - for standard input")->required();
  command->add_flag("--offsets", options->offsets, "Add byte offset and length of each element");
  CLI::Option* key = command->add_option("--key", options->key,
                                         "private key of a recipient, to open sealed files");
  CLI::Option* certificate =
      command->add_option("--cert", options->certificate, "the recipient's certificate");
  key->needs(certificate);
  certificate->needs(key);
  command->add_option("--pass", options->passphrase, "file with the passphrase of the key");
  on_chosen(program, *command, [&program, options] {
    options->json = program.json;
    return Inspection(*options, is_colored(program.color, stdout)).run();
  });
}

}  // namespace tq::tool
