// Who may open a sealed file: shows, adds and removes recipients.

#include <fmt/format.h>

#include <ctime>
#include <utility>

#include "commands/arguments.h"
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
  const BDigitEnvolope* envelope = file.label()->body.bodyEnvelopes;
  for (const Party& recipient : recipients_of(*file.label(), options.access.file)) {
    const OPrivilege& rights = envelope->privilege;
    if (as_json) {
      recipients.push_back(recipient_json(recipient, rights));
    } else {
      fmt::print("{}\n  serial: {}\n  may: {}\n  has read: {}\n", recipient.subject,
                 hexadecimal(recipient.serial), show_rights(rights), show_reads(rights));
    }
    envelope = envelope->next;
  }
  if (as_json) {
    const Json json = {{"form", "tqlabel/recipients/1"}, {"recipients", std::move(recipients)}};
    fmt::print("{}\n", json.dump(2));
  }
  return Status::kYes;
}

Status add(const Options& options) {
  const Rights rights = parse_rights(options.privileges);
  const Access& access = options.access;
  change_sealed(access.file, access.recipient(), Action::kAdd, {}, [&](SealedFile& file) {
    for (const std::string& path : options.certificates) {
      const Party recipient = read_party(path);
      recipient.require_in_force(std::time(nullptr));
      add_recipient(file.label(), recipient, file.keys().file, rights);
    }
    return static_cast<std::uint32_t>(options.certificates.size());
  });
  return Status::kYes;
}

Status remove(const Options& options) {
  const Access& access = options.access;
  change_sealed(access.file, access.recipient(), Action::kRemove, {}, [&](SealedFile& file) {
    for (const std::string& path : options.certificates) {
      remove_recipient(file.label(), read_party(path));
    }
    if (file.label()->body.bodyEnvelopes == nullptr) {
      throw Failure{.status = Status::kUsage,
                    .why = "nobody could open the file any more",
                    .file = access.file,
                    .advice = "leave one recipient at least"};
    }
    return static_cast<std::uint32_t>(options.certificates.size());
  });
  fmt::print(stderr,
             "The old key stays valid: who has kept it can still read the content.\n"
             "\"tqlabel rekey\" gives the file another one.\n");
  return Status::kYes;
}

CLI::App* add_action(CLI::App& recipients, const std::string& name, const std::string& what,
                     Access& access, const std::string& more = {}) {
  CLI::App* command = recipients.add_subcommand(name, what);
  add_access(*command, access);
  command->footer("\nExample:\n  tqlabel recipients " + name +
                  " report.sealed --key me.key --cert me.cer" + more + "\n");
  return command;
}

}  // namespace

void add_recipients(Program& program) {
  CLI::App* command =
      add_command(program, "recipients", "List, add or remove recipients",
                  "tqlabel recipients list report.sealed --key me.key --cert me.cer");
  command->require_subcommand(1);
  auto options = std::make_shared<Options>();
  CLI::App* lists =
      add_action(*command, "list", "Print who may open a sealed file", options->access);
  on_chosen(program, *lists, [&program, options] { return list(*options, program.json); });
  CLI::App* adds = add_action(*command, "add", "Let others open a sealed file", options->access,
                              " --to eve.cer");
  adds->add_option("--to", options->certificates, "certificates of the recipients, PEM or DER")
      ->required();
  adds->add_option("--privilege", options->privileges,
                   "print, copy, edit, reads=N or TYPE=VALUE, for those who are added");
  on_chosen(program, *adds, [options] { return add(*options); });
  CLI::App* removes = add_action(*command, "remove", "Take recipients out of a sealed file",
                                 options->access, " --who eve.cer");
  removes->add_option("--who", options->certificates, "their certificates, PEM or DER")->required();
  on_chosen(program, *removes, [options] { return remove(*options); });
}

}  // namespace tq::tool
