// The program: its commands, and how it ends.

#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>

#include "commands/program.h"

namespace {

using namespace tq::tool;

constexpr const char* kFooter =
    "\nFILE may be - for standard input, and an output - for standard output.\n"
    "\nExit status: 0 yes or clean; 1 no, differs or findings; 2 wrong command line; 3 a file "
    "cannot\n"
    "be read or written; 4 malformed label; 5 key or cryptography. Of several files the worst "
    "counts.\n";

void add_globals(Program& program) {
  CLI::App& app = program.app;
  app.set_version_flag("--version", "tqlabel " TQLABEL_VERSION);
  app.add_flag("--json", program.json, "Print JSON");
  app.add_option("--color", program.color, "Use colors: auto, always or never")
      ->option_text("auto|always|never")
      ->transform(CLI::CheckedTransformer(std::map<std::string, Color>{
          {"auto", Color::kAuto}, {"always", Color::kAlways}, {"never", Color::kNever}}));
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(kFooter);
}

Status run(Program& program, int count, char** arguments) {
  add_globals(program);
  add_inspect(program);
  add_new(program);
  add_edit(program);
  add_diff(program);
  add_lint(program);
  add_protect(program);
  add_open(program);
  add_recipients(program);
  add_rekey(program);
  add_log_command(program);
  add_abolish(program);
  add_check(program);
  add_verify(program);
  add_completion(program);
  add_man(program);
  try {
    program.app.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    return program.app.exit(error) == 0 ? Status::kYes : Status::kUsage;
  }
  return program.run();
}

}  // namespace

int main(int count, char** arguments) {
  Status status = Status::kInputOutput;
  try {
    // a pipe that breaks is an output that cannot be written
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    Program program;
    status = run(program, count, arguments);
  } catch (const Failure& failure) {
    report(failure);
    status = failure.status;
  } catch (const std::exception& error) {
    if (std::ferror(stdout) == 0) fmt::print(stderr, "tqlabel: {}\n", error.what());
  }
  // A full disk shows only now.
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    report({Status::kInputOutput, "the output cannot be written"});
    status = std::max(status, Status::kInputOutput);
  }
  return static_cast<int>(status);
}
