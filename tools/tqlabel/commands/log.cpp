// What was done with a sealed file: shows the log and adds to it.

#include <fmt/format.h>

#include <map>

#include "commands/arguments.h"
#include "commands/program.h"
#include "format/json.h"
#include "format/values.h"
#include "sealed/sealed_file.h"

namespace tq::tool {
namespace {

struct Options {
  Access access;
  std::string note;
};

// Subjects by serial number, since a long log may be that of many.
using Names = std::map<std::vector<std::uint8_t>, std::string>;

Names names_of(const std::vector<Party>& recipients) {
  Names names;
  for (const Party& recipient : recipients) names.emplace(recipient.serial, recipient.subject);
  return names;
}

// The subject of the recipient with that serial number, or the number.
std::string name_of(const Log& log, const Names& names) {
  const Bytes serial = bytes_of(log.logArray1);
  const auto known = names.find({serial.begin(), serial.end()});
  return known == names.end() ? hexadecimal(serial) : known->second;
}

Json log_json(const Log& log, const std::string& who) {
  const auto text = [](const ANYBUF& field) {
    return escaped(bytes_of(field), Encoding::kUtf8, "");
  };
  return {{"time", show_time(log.logTime)}, {"number", log.logType},
          {"what", text(log.logText1)},     {"who", who},
          {"value", log.logValue},          {"note", text(log.logText2)}};
}

Status list(const Options& options, bool as_json) {
  SealedFile file(options.access.file, EditFile::Purpose::kRead);
  file.unlock(options.access.recipient());
  const Names names = names_of(recipients_of(*file.label(), options.access.file));
  Json entries = Json::array();
  for (const Log* log = file.label()->body.logs; log != nullptr; log = log->next) {
    const Json entry = log_json(*log, name_of(*log, names));
    if (as_json) {
      entries.push_back(entry);
    } else {
      fmt::print("{}  {:<8}{:>4}  {}{}{}\n", entry["time"].get<std::string>(),
                 entry["what"].get<std::string>(), log->logValue, entry["who"].get<std::string>(),
                 log->logText2.length == 0 ? "" : ": ", entry["note"].get<std::string>());
    }
  }
  if (as_json) {
    fmt::print("{}\n", Json{{"form", "tqlabel/log/1"}, {"entries", std::move(entries)}}.dump(2));
  }
  return Status::kYes;
}

Status append(const Options& options) {
  const Access& access = options.access;
  change_sealed(access.file, access.recipient(), Action::kNote, options.note,
                [](SealedFile&) { return 0U; });
  return Status::kYes;
}

}  // namespace

void add_log_command(Program& program) {
  const std::string example =
      "tqlabel log append report.sealed --key me.key --cert me.cer --note printed";
  CLI::App* command =
      add_command(program, "log", "List or append what was done with a file", example);
  command->require_subcommand(1);
  auto options = std::make_shared<Options>();
  CLI::App* lists = command->add_subcommand("list", "Print the log, newest first");
  add_access(*lists, options->access);
  on_chosen(program, *lists, [&program, options] { return list(*options, program.json); });
  CLI::App* appends = command->add_subcommand("append", "Add an entry to the log");
  add_access(*appends, options->access);
  appends->add_option("--note", options->note, "what was done")->required();
  on_chosen(program, *appends, [options] { return append(*options); });
}

}  // namespace tq::tool
