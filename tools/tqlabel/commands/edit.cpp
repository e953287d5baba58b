// Changes fields of a label.

#include "sealed/edit.h"

#include <fmt/format.h>

#include "base/files.h"
#include "commands/program.h"
#include "commands/write_label.h"
#include "format/path.h"

namespace tq::tool {
namespace {

struct Options {
  std::string label;
  std::vector<std::string> set;
  std::vector<std::string> add;
  std::vector<std::string> remove;
  std::string output;
};

std::pair<std::string, std::string> split_assignment(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw Failure{Status::kUsage, "not PATH=VALUE", {}, text};
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

void change(Json& json, const Options& options) try {
  for (const std::string& assignment : options.set) {
    const auto [path, text] = split_assignment(assignment);
    Json& value = at_path(json, path);
    value = typed_value(value, text);
  }
  for (const std::string& assignment : options.add) {
    const auto [path, text] = split_assignment(assignment);
    add_at(json, path, parse_json(bytes_of(text), {}));
  }
  for (const std::string& path : options.remove) remove_at(json, path);
} catch (Failure& failure) {
  failure.file = options.label;
  throw;
}

Status edit(const Options& options) {
  const LabelFile read = read_settled_label(options.label);
  if (read.behind.value_or(0) != 0) {
    throw Failure{.status = Status::kUsage,
                  .why = fmt::format("{} bytes follow the label", *read.behind),
                  .file = options.label,
                  .advice = "recipients, rekey, log and abolish edit sealed files"};
  }
  Json json = to_json(label_in(read.bytes, options.label));
  change(json, options);
  write_label(from_json(json, options.label), options.label, options.output);
  return Status::kYes;
}

}  // namespace

void add_edit(Program& program) {
  CLI::App* command = add_command(program, "edit", "Change fields of a label",
                                  "tqlabel edit a.label --set body.content.fileTitle=Plan "
                                  "--remove 'body.logs[1]' -o b.label");
  auto options = std::make_shared<Options>();
  command->add_option("LABEL", options->label, "the label to begin with")->required();
  command->add_option("--set", options->set, "PATH=VALUE: gives a field a value")
      ->allow_extra_args(false);
  command->add_option("--add", options->add, "PATH=JSON: adds an entry to a list")
      ->allow_extra_args(false);
  command->add_option("--remove", options->remove, "PATH: takes an entry out of a list")
      ->allow_extra_args(false);
  command->add_option("-o,--output", options->output, "the label to write")->required();
  on_chosen(program, *command, [options] { return edit(*options); });
}

}  // namespace tq::tool
