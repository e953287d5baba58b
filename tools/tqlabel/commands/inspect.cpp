// Prints labels as trees.

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "base/files.h"
#include "commands/program.h"
#include "format/certificate.h"
#include "format/json.h"
#include "format/print.h"
#include "format/values.h"

namespace tq::tool {
namespace {

struct Options {
  std::vector<std::string> paths;
  bool offsets = false;
  bool json = false;
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
Json notes(const Label& label, std::optional<std::uint64_t> behind, bool with_offsets) {
  Json certificates = Json::array();
  Json offsets = Json::array();
  walk(label.root, [&](const std::string& path, const Item& item) {
    if (item.element.start == nullptr) return;
    offsets.push_back(
        {{"path", path}, {"at", label.offset_of(item)}, {"length", item.element.size()}});
    if (item.kind != Kind::kElement) return;
    const std::optional<Certificate> certificate = read_certificate(item.bytes());
    if (certificate) certificates.push_back(certificate_json(path, *certificate));
  });
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
    if (options_.paths.size() == 1) return file(options_.paths.front());
    Status worst = Status::kYes;
    for (const std::string& path : options_.paths) {
      if (options_.json) {
        worst = std::max(worst, file(path));
      } else {
        const Tree::Branch inside = tree_.branch(escaped_path(path));
        worst = std::max(worst, file(path));
      }
    }
    return worst;
  }

 private:
  Status file(const std::string& path) {
    try {
      const LabelFile read = read_label_file(path);
      const Label label = label_in(read.bytes, path);
      options_.json ? as_json(label, read.behind) : as_text(label, read.behind);
      return Status::kYes;
    } catch (const Failure& failure) {
      report(failure);
      return failure.status;
    }
  }

  void as_text(const Label& label, std::optional<std::uint64_t> behind) {
    print_summary(tree_, label, behind);
    const PrintOptions print_options = {options_.offsets ? label.file.data() : nullptr};
    for (const Item& part : label.root.children) print(tree_, part, print_options);
  }

  void as_json(const Label& label, std::optional<std::uint64_t> behind) const {
    Json json = to_json(label);
    json["notes"] = notes(label, behind, options_.offsets);
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
  command->callback([&program, options] {
    program.run = [&program, options] {
      options->json = program.json;
      return Inspection(*options, is_colored(program.color, stdout)).run();
    };
  });
}

}  // namespace tq::tool
