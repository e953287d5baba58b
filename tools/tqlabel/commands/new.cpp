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

void write_label(const std::vector<std::uint8_t>& der, const std::string& source,
                 const std::string& output) {
  Label label;
  std::optional<Fault> fault = read_label(der, label);
  if (fault) {
    Failure failure = fault->failure(source);
    failure.why = "does not make a label: " + failure.why;
    failure.at.reset();
    failure.advice = "see what stands there";
    throw failure;
  }
  write_file(output, der);
}

void add_new(Program& program) {
  CLI::App* command = add_command(program, "new", "Make a label from JSON",
                                  "tqlabel inspect --json a.label | tqlabel new - -o b.label");
  auto options = std::make_shared<Options>();
  command->add_option("JSON", options->json, "the label as JSON, as inspect --json prints it")
      ->required();
  command->add_option("-o,--output", options->output, "the label to write")->required();
  command->callback([&program, options] { program.run = [options] { return make(*options); }; });
}

}  // namespace tq::tool
