#ifndef TQLABEL_TOOL_COMMANDS_PROGRAM_H
#define TQLABEL_TOOL_COMMANDS_PROGRAM_H

// The command line. Each command adds itself with its arguments, its help and what it does.

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "base/color.h"
#include "base/failure.h"

namespace tq::tool {

struct Program {
  CLI::App app{"Builds, shows, checks and edits the security labels of protected files.",
               "tqlabel"};
  bool json = false;
  Color color = Color::kAuto;
  std::function<Status()> run;  // what the command line has chosen
};

// A command with an example at the end of its help.
inline CLI::App* add_command(Program& program, const std::string& name, const std::string& what,
                             const std::string& example) {
  CLI::App* command = program.app.add_subcommand(name, what);
  command->footer("\nExample:\n  " + example + "\n");
  return command;
}

// What the program does if the command is the one that was chosen.
inline void on_chosen(Program& program, CLI::App& command, std::function<Status()> run) {
  command.callback([&program, run = std::move(run)] { program.run = run; });
}

void add_inspect(Program& program);
void add_new(Program& program);
void add_edit(Program& program);
void add_diff(Program& program);
void add_recipients(Program& program);
void add_rekey(Program& program);
void add_log_command(Program& program);
void add_abolish(Program& program);
void add_check(Program& program);
void add_verify(Program& program);
void add_completion(Program& program);
void add_man(Program& program);
void add_lint(Program& program);
void add_protect(Program& program);
void add_open(Program& program);

}  // namespace tq::tool

#endif
