// The command line of the tool: commands, their arguments and the exit status.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <exception>

#include "inspect.h"

namespace {

using tq::tool::Status;

constexpr const char* kExitStatus =
    "\nExit status: 0 when all went well, 2 for a wrong command line, 3 for a file that cannot be\n"
    "read, 4 for a file that is no label; of several files the worst counts.\n";

constexpr const char* kInspectExample =
    "Example:\n"
    "  tqlabel inspect report.label\n"
    "  openssl enc -d -a -in report.b64 | tqlabel inspect -\n";

Status run(int count, char** arguments) {
  CLI::App app("Shows the security labels of protected files.", "tqlabel");
  app.set_version_flag("--version", "tqlabel " TQLABEL_VERSION);
  app.require_subcommand(1);
  app.footer(std::string(kInspectExample) + kExitStatus);

  std::vector<std::string> paths;
  CLI::App* inspect = app.add_subcommand("inspect", "Print every field of labels as a tree");
  inspect->add_option("FILE", paths, "DER files, - for standard input")->required();
  inspect->footer(std::string(kInspectExample) + kExitStatus);

  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? Status::kOk : Status::kUsage;
  }
  return tq::tool::inspect(paths);
}

}  // namespace

int main(int count, char** arguments) {
  Status status = Status::kUnreadable;
  try {
    status = run(count, arguments);
  } catch (const std::exception& error) {
    fmt::print(stderr, "tqlabel: {}\n", error.what());
  }
  // A full disk shows only now.
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    fmt::print(stderr, "tqlabel: the output cannot be written\n");
    status = std::max(status, Status::kUnreadable);
  }
  return static_cast<int>(status);
}
