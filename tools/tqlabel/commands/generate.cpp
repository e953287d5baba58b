// Shell completions and manual pages, from the definitions that parse the command line.

#include <fmt/format.h>

#include <cctype>
#include <map>

#include "commands/program.h"

namespace tq::tool {
namespace {

using Apps = std::vector<const CLI::App*>;
using Options = std::vector<const CLI::Option*>;

Apps commands_of(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

Options options_of(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

Options positionals_of(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

bool takes_value(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

// What stands for the value in help.
std::string value_name(const CLI::Option& option) {
  if (!takes_value(option)) return {};
  const std::string& text = option.get_option_text();
  return text.empty() ? "VALUE" : text;
}

// "-o, --output" as separate words.
std::vector<std::string> names_of(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

std::string join(const std::vector<std::string>& words, std::string_view separator = " ") {
  return fmt::format("{}", fmt::join(words, separator));
}

std::vector<std::string> all_names(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : options_of(app)) {
    for (std::string& name : names_of(*option)) names.push_back(std::move(name));
  }
  return names;
}

// Bash: words of the command, files otherwise.

void print_bash(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : commands_of(app)) names.push_back(command->get_name());
  fmt::print(
      "# bash completion for tqlabel\n"
      "_tqlabel() {{\n"
      "  local word=${{COMP_WORDS[COMP_CWORD]}} command='' i\n"
      "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
      "    case ${{COMP_WORDS[i]}} in -*) ;; *) command=${{COMP_WORDS[i]}} && break ;; esac\n"
      "  done\n"
      "  local words='{}'\n"
      "  case $command in\n"
      "    '') words+=' {}' ;;\n",
      join(all_names(app)), join(names));
  for (const CLI::App* command : commands_of(app)) {
    std::vector<std::string> words = all_names(*command);
    for (const CLI::App* inner : commands_of(*command)) words.push_back(inner->get_name());
    fmt::print("    {}) words+=' {}' ;;\n", command->get_name(), join(words));
  }
  fmt::print(
      "  esac\n"
      "  COMPREPLY=()\n"
      "  if [[ -z $command || $word == -* || $words != *--* ]]; then\n"
      "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
      "  fi\n"
      "  [[ ${{#COMPREPLY[@]}} -gt 0 || -z $command ]] || compopt -o default\n"
      "}}\n"
      "complete -F _tqlabel tqlabel\n");
}

// Within single quotes of a shell.
std::string quote(std::string_view text, std::string_view also = {}) {
  std::string quoted;
  for (const char character : text) {
    if (character == '\'') {
      quoted += "'\\''";
    } else {
      if (also.find(character) != also.npos) quoted += '\\';
      quoted += character;
    }
  }
  return quoted;
}

void print_zsh_options(const CLI::App& app) {
  for (const CLI::Option* option : options_of(app)) {
    for (const std::string& name : names_of(*option)) {
      fmt::print(" \\\n        '{}[{}]{}'", name, quote(option->get_description(), "[]:"),
                 takes_value(*option) ? ":" + quote(value_name(*option), ":") + ":_files" : "");
    }
  }
}

void print_zsh(const CLI::App& app) {
  fmt::print("#compdef tqlabel\n_tqlabel() {{\n  local -a commands=(\n");
  for (const CLI::App* command : commands_of(app)) {
    fmt::print("    '{}:{}'\n", command->get_name(), quote(command->get_description(), ":"));
  }
  fmt::print("  )\n  local context state line\n  _arguments -C");
  print_zsh_options(app);
  fmt::print(
      " \\\n        '1:command:->command' '*::argument:->argument'\n"
      "  case $state in\n"
      "    command) _describe command commands ;;\n"
      "    argument) case $line[1] in\n");
  for (const CLI::App* command : commands_of(app)) {
    fmt::print("      {}) _arguments", command->get_name());
    print_zsh_options(*command);
    fmt::print(" '*:file:_files' ;;\n");
  }
  fmt::print("    esac ;;\n  esac\n}}\n_tqlabel \"$@\"\n");
}

void print_fish_options(const CLI::App& app, const std::string& condition) {
  for (const CLI::Option* option : options_of(app)) {
    std::string names;
    for (const std::string& name : option->get_snames()) names += " -s " + name;
    for (const std::string& name : option->get_lnames()) names += " -l " + name;
    fmt::print("complete -c tqlabel{}{}{} -d '{}'\n", condition, names,
               takes_value(*option) ? " -r" : "", quote(option->get_description()));
  }
}

void print_fish(const CLI::App& app) {
  fmt::print("# fish completion for tqlabel\n");
  print_fish_options(app, {});
  for (const CLI::App* command : commands_of(app)) {
    fmt::print("complete -c tqlabel -f -n __fish_use_subcommand -a {} -d '{}'\n",
               command->get_name(), quote(command->get_description()));
    print_fish_options(*command,
                       fmt::format(" -n '__fish_seen_subcommand_from {}'", command->get_name()));
  }
}

// Manual pages, for man(7). A leading dot or quote would be a request, and hyphens are to be typed.

std::string troff(std::string_view text) {
  std::string out;
  bool at_start = true;
  for (const char character : text) {
    if (at_start && (character == '.' || character == '\'')) out += "\\&";
    if (character == '\\') out += "\\e";
    if (character == '-') out += '\\';
    if (character != '\\') out += character;
    at_start = character == '\n';
  }
  return out;
}

void print_man_options(const char* title, const Options& options) {
  if (options.empty()) return;
  fmt::print(".SH {}\n", title);
  for (const CLI::Option* option : options) {
    std::vector<std::string> names = names_of(*option);
    const std::string name = names.empty() ? option->get_name() : join(names, ", ");
    const std::string value = names.empty() ? std::string() : value_name(*option);
    fmt::print(".TP\n.B {}{}\n{}\n", troff(name),
               value.empty() ? "" : " \\fI" + troff(value) + "\\fR",
               troff(option->get_description()));
  }
}

// What a footer says is one paragraph or a list that is to stay as it is.
void print_man_footer(const CLI::App& app) {
  const std::string footer = app.get_footer();
  if (!footer.empty()) fmt::print(".SH NOTES\n.nf\n{}\n.fi\n", troff(footer));
}

void print_man(const CLI::App& app, const std::string& name, const std::string& usage) {
  std::string upper = name;
  for (char& letter : upper) {
    letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  }
  fmt::print(".TH {} 1 \"\" \"tqlabel\" \"tqlabel\"\n.SH NAME\n{} \\- {}\n", troff(upper),
             troff(name), troff(app.get_description()));
  fmt::print(".SH SYNOPSIS\n.B {}\n", troff(usage));
  for (const CLI::Option* option : positionals_of(app)) {
    fmt::print("\\fI{}\\fR\n", troff(option->get_name()));
  }
  if (!options_of(app).empty()) fmt::print("[\\fIoptions\\fR]\n");
  const Apps commands = commands_of(app);
  if (!commands.empty()) fmt::print(".SH COMMANDS\n");
  for (const CLI::App* command : commands) {
    fmt::print(".TP\n.B {}\n{}\n", troff(command->get_name()), troff(command->get_description()));
  }
  print_man_options("ARGUMENTS", positionals_of(app));
  print_man_options("OPTIONS", options_of(app));
  print_man_footer(app);
  fmt::print(".SH SEE ALSO\n.BR tqlabel (1)\n");
}

void print_man_of(const CLI::App& app, const std::string& command) {
  if (command.empty()) return print_man(app, "tqlabel", "tqlabel");
  for (const CLI::App* candidate : commands_of(app)) {
    if (candidate->get_name() != command) continue;
    return print_man(*candidate, "tqlabel-" + command, "tqlabel " + command);
  }
  throw Failure{Status::kUsage, "no such command", {}, command};
}

}  // namespace

void add_completion(Program& program) {
  CLI::App* command = add_command(program, "completion", "Print completions for a shell",
                                  "tqlabel completion bash > /etc/bash_completion.d/tqlabel");
  using Print = void (*)(const CLI::App&);
  static const std::map<std::string, Print> kShells = {
      {"bash", print_bash}, {"zsh", print_zsh}, {"fish", print_fish}};
  auto shell = std::make_shared<std::string>();
  command->add_option("SHELL", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember(kShells));
  on_chosen(program, *command, [&program, shell] {
    kShells.at (*shell)(program.app);
    return Status::kYes;
  });
}

void add_man(Program& program) {
  CLI::App* command =
      add_command(program, "man", "Print a manual page", "tqlabel man inspect | man -l -");
  auto page = std::make_shared<std::string>();
  command->add_option("COMMAND", *page, "a command; otherwise the page of the program");
  on_chosen(program, *command, [&program, page] {
    print_man_of(program.app, *page);
    return Status::kYes;
  });
}

}  // namespace tq::tool
