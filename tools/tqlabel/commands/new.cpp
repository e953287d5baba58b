// Makes a label from JSON.

#include "base/files.h"
#include "commands/program.h"
#include "commands/write_label.h"
#include "format/json.h"

namespace tq::tool {
namespace {

// More than any label in JSON that a person or a program would write here.
constexpr std::size_t kLargestJson = std::size_t{1} << 30;

struct Options {
  std::string json;
  std::string output;
};

Status make(const Options& options) {
  const Json json = parse_json(read_small_file(options.json, kLargestJson), options.json);
  write_label(from_json(json, options.json), options.json, options.output);
  return Status::kYes;
}

}  // namespace

void add_new(Program& program) {
  CLI::App* command = add_command(program, "new", "Make a label from JSON",
                                  "tqlabel inspect --json a.label | tqlabel new - -o b.label");
  auto options = std::make_shared<Options>();
  command->add_option("JSON", options->json, "the label as JSON, as inspect --json prints it")
      ->required();
  command->add_option("-o,--output", options->output, "the label to write")->required();
  on_chosen(program, *command, [options] { return make(*options); });
}

}  // namespace tq::tool
