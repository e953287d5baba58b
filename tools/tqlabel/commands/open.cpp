// Opens a sealed file.

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <memory>

#include "base/files.h"
#include "commands/arguments.h"
#include "commands/program.h"
#include "format/json.h"
#include "format/values.h"
#include "sealed/recipients.h"
#include "sealed/sealed_file.h"

namespace tq::tool {
namespace {

struct Options {
  Access access;
  std::string output = "-";
  std::vector<std::string> signers;
  bool json = false;
};

void require_signed_by(const std::vector<Party>& signers, const Options& options) {
  for (const std::string& path : options.signers) {
    const Party wanted = read_party(path);
    if (std::ranges::any_of(signers, [&](const Party& signer) {
          return signer.certificate == wanted.certificate;
        })) {
      continue;
    }
    throw Failure{.status = Status::kCrypto,
                  .why = "not signed by " + wanted.subject,
                  .file = options.access.file};
  }
}

void require_right(const OPrivilege& rights, const Options& options) {
  const bool may_open = rights.priFlag1 != 0;
  if (may_open && (rights.priValue1 == 0 || rights.priValue2 < rights.priValue1)) return;
  throw Failure{.status = Status::kNo,
                .why = may_open ? fmt::format("no readings left ({} of {})", rights.priValue2,
                                              rights.priValue1)
                                : "the privilege to open it is missing",
                .file = options.access.file};
}

// A limit that is not counted would be none.
bool can_record(const SealedFile& file, const OPrivilege& rights) {
  if (file.file().can_change()) return true;
  const Failure failure = {.status = Status::kInputOutput,
                           .why = "the file cannot be written, so that this is not recorded",
                           .file = file.file().path()};
  if (rights.priValue1 != 0) throw failure;
  report(failure);
  return false;
}

void record(SealedFile& file, const Party& recipient) {
  OPrivilege& rights = envelope_for(recipient, *file.label()).privilege;
  if (!can_record(file, rights)) return;
  if (rights.priValue2 != std::numeric_limits<std::uint32_t>::max()) ++rights.priValue2;
  append_log(file.label(), Action::kOpen, recipient, rights.priValue2);
  file.save();
}

// Nothing leaves before the content has been found authentic and the reading is on record. What
// goes to a file is written on the way and has no name until then; for what cannot be taken back
// the content is read twice.
void write_content(SealedFile& file, const Party& recipient, const Options& options) {
  OutputFile out(options.output);
  const auto write = [&](Bytes plain) { out.write(plain); };
  const bool twice = out.is_standard_output();
  if (twice) {
    file.read_content([](Bytes) {});
  } else {
    file.read_content(write);
  }
  record(file, recipient);
  if (twice) file.read_content(write);
  out.commit();
}

void print_json(const SealedFile& file, const std::vector<Party>& signers, const Options& options) {
  Json names = Json::array();
  for (const Party& signer : signers) names.push_back(signer.subject);
  const Json json = {{"form", "tqlabel/open/1"},
                     {"file", options.access.file},
                     {"output", options.output},
                     {"size", file.sums().length},
                     {"sha256", hexadecimal(file.sums().sha256)},
                     {"signers", std::move(names)}};
  fmt::print("{}\n", json.dump(2));
}

Status open(const Options& options) {
  if (options.json && options.output == "-") {
    throw Failure{.status = Status::kUsage,
                  .why = "standard output is for either JSON or the content",
                  .advice = "name a file with -o"};
  }
  const Party recipient = options.access.recipient();
  SealedFile file(options.access.file, EditFile::Purpose::kChange);
  file.unlock(recipient);
  recipient.require_in_force(std::time(nullptr));
  file.require_valid();
  require_right(envelope_for(recipient, *file.label()).privilege, options);
  const std::vector<Party> signers = file.signers();
  require_signed_by(signers, options);
  write_content(file, recipient, options);
  if (options.json) print_json(file, signers, options);
  return Status::kYes;
}

}  // namespace

void add_open(Program& program) {
  CLI::App* command =
      add_command(program, "open", "Open a sealed file as one of its recipients",
                  "tqlabel open report.sealed --key me.key --cert me.cer -o report.odt");
  auto options = std::make_shared<Options>();
  add_access(*command, options->access);
  command->add_option("--signed-by", options->signers,
                      "certificates of those who must have signed it");
  command->add_option("-o,--output", options->output, "the file to write; default is -");
  on_chosen(program, *command, [&program, options] {
    options->json = program.json;
    return open(*options);
  });
}

}  // namespace tq::tool
