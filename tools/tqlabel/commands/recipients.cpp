// Who may open a sealed file: shows, adds and removes recipients.

#include "sealed/recipients.h"

#include <fmt/format.h>

#include "commands/access.h"
#include "commands/program.h"
#include "format/json.h"
#include "format/values.h"
#include "sealed/sealed_file.h"

namespace tq::tool {
namespace {

struct Options {
  Access access;
  std::vector<std::string> certificates;
  std::vector<std::string> privileges;
};

std::string show_rights(const OPrivilege& rights) {
  std::string text = rights.priFlag1 != 0 ? "open" : "nothing";
  if (rights.priFlag2 != 0) text += ", print";
  if (rights.priFlag3 != 0) text += ", copy";
  if (rights.priFlag4 != 0) text += ", edit";
  const ExtPri* pair = rights.extPriList;
  for (; pair != nullptr; pair = pair->next) {
    text += fmt::format(", {}={}", pair->priType, pair->priValue);
  }
  return text;
}

std::string show_reads(const OPrivilege& rights) {
  return rights.priValue1 == 0 ? fmt::format("{}", rights.priValue2)
                               : fmt::format("{} of {}", rights.priValue2, rights.priValue1);
}

Json recipient_json(const Party& recipient, const OPrivilege& rights) {
  Json more = Json::array();
  for (const ExtPri* pair = rights.extPriList; pair != nullptr; pair = pair->next) {
    more.push_back({{"type", pair->priType}, {"value", pair->priValue}});
  }
  return {{"subject", recipient.subject},
          {"serial", hexadecimal(recipient.serial)},
          {"sha256", sha256_hex(recipient.certificate)},
          {"open", rights.priFlag1 != 0},
          {"print", rights.priFlag2 != 0},
          {"copy", rights.priFlag3 != 0},
          {"edit", rights.priFlag4 != 0},
          {"reads", rights.priValue2},
          {"mostReads", rights.priValue1 == 0 ? Json() : Json(rights.priValue1)},
          {"more", std::move(more)}};
}

Status list(const Options& options, bool as_json) {
  SealedFile file(options.access.file, EditFile::Purpose::kRead);
  file.unlock(options.access.recipient());
  Json recipients = Json::array();
  for (const Party& recipient : recipients_of(*file.label(), options.access.file)) {
    const OPrivilege& rights = envelope_for(recipient, *file.label()).privilege;
    if (as_json) {
      recipients.push_back(recipient_json(recipient, rights));
    } else {
      fmt::print("{}\n  serial: {}\n  may: {}\n  has read: {}\n", recipient.subject,
                 hexadecimal(recipient.serial), show_rights(rights), show_reads(rights));
    }
  }
  if (as_json) {
    const Json json = {{"form", "tqlabel/recipients/1"}, {"recipients", std::move(recipients)}};
    fmt::print("{}\n", json.dump(2));
  }
  return Status::kYes;
}

Status add(const Options& options) {
  const Rights rights = parse_rights(options.privileges);
  const Party self = options.access.recipient();
  SealedFile file(options.access.file, EditFile::Purpose::kChange);
  file.unlock(self);
  for (const std::string& path : options.certificates) {
    const Party recipient = read_party(path);
    recipient.require_in_force(std::time(nullptr));
    add_recipient(file.label(), recipient, file.keys().file, rights);
  }
  append_log(file.label(), Action::kAdd, self,
             static_cast<std::uint32_t>(options.certificates.size()));
  file.save();
  return Status::kYes;
}

Status remove(const Options& options) {
  const Party self = options.access.recipient();
  SealedFile file(options.access.file, EditFile::Purpose::kChange);
  file.unlock(self);
  for (const std::string& path : options.certificates) {
    remove_recipient(file.label(), read_party(path));
  }
  if (file.label()->body.bodyEnvelopes == nullptr) {
    throw Failure{.status = Status::kUsage,
                  .why = "nobody could open the file any more",
                  .file = options.access.file,
                  .advice = "leave one recipient at least"};
  }
  append_log(file.label(), Action::kRemove, self,
             static_cast<std::uint32_t>(options.certificates.size()));
  file.save();
  fmt::print(stderr,
             "The old key stays valid: who has kept it can still read the content.\n"
             "\"tqlabel rekey\" gives the file another one.\n");
  return Status::kYes;
}

template <class Action>
void add_action(Program& program, CLI::App& command, const std::string& example,
                const std::shared_ptr<Options>& options, Action action) {
  add_access(command, options->access);
  command.footer("\nExample:\n  " + example + "\n");
  command.callback([&program, options, action] {
    program.run = [&program, options, action] { return action(program, *options); };
  });
}

}  // namespace

void add_recipients(Program& program) {
  CLI::App* command =
      add_command(program, "recipients", "List, add or remove recipients",
                  "tqlabel recipients list report.sealed --key me.key --cert me.cer");
  command->require_subcommand(1);
  auto options = std::make_shared<Options>();
  CLI::App* lists = command->add_subcommand("list", "Print who may open a sealed file");
  add_action(program, *lists, "tqlabel recipients list report.sealed --key me.key --cert me.cer",
             options,
             [](Program& global, const Options& chosen) { return list(chosen, global.json); });
  CLI::App* adds = command->add_subcommand("add", "Let others open a sealed file");
  add_action(program, *adds,
             "tqlabel recipients add report.sealed --key me.key --cert me.cer --to eve.cer",
             options, [](Program&, const Options& chosen) { return add(chosen); });
  adds->add_option("--to", options->certificates, "certificates of the recipients, PEM or DER")
      ->required();
  adds->add_option("--privilege", options->privileges,
                   "print, copy, edit, reads=N or TYPE=VALUE, for those who are added");
  CLI::App* removes = command->add_subcommand("remove", "Take recipients out of a sealed file");
  add_action(program, *removes,
             "tqlabel recipients remove report.sealed --key me.key --cert me.cer --who eve.cer",
             options, [](Program&, const Options& chosen) { return remove(chosen); });
  removes->add_option("--who", options->certificates, "their certificates, PEM or DER")->required();
}

}  // namespace tq::tool
