// Seals a file for its recipients.

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <memory>

#include "base/files.h"
#include "commands/arguments.h"
#include "commands/program.h"
#include "format/json.h"
#include "format/values.h"
#include "sealed/content.h"
#include "sealed/edit.h"
#include "sealed/layout.h"
#include "sealed/recipients.h"
#include "sealed/signatures.h"
#include "sealed/sums.h"

namespace tq::tool {
namespace {

struct Options {
  std::string input;
  std::string output;
  std::vector<std::string> recipients;
  std::vector<std::string> signers;
  std::string passphrase;
  std::string expires;
  std::string destroy;
  std::string label;
  std::string title;
  std::vector<std::string> privileges;
  bool json = false;
};

struct Parties {
  std::vector<Party> recipients;
  std::vector<Party> signers;
};

[[noreturn]] void refuse(const std::string& field, std::string why, std::string advice = {}) {
  throw Failure{
      .status = Status::kUsage, .why = std::move(why), .field = field, .advice = std::move(advice)};
}

Party read_signer(const std::string& text, Bytes passphrase) {
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos || text.find(',', comma + 1) != std::string::npos) {
    refuse(text, "not KEY,CERT", "name both files, with one comma between them");
  }
  return read_party(text.substr(comma + 1), text.substr(0, comma), passphrase);
}

Parties read_parties(const Options& options) {
  Parties parties;
  const Secret passphrase = read_passphrase(options.passphrase);
  for (const std::string& path : options.recipients) {
    parties.recipients.push_back(read_party(path));
    parties.recipients.back().require_in_force(std::time(nullptr));
  }
  for (const std::string& text : options.signers) {
    parties.signers.push_back(read_signer(text, passphrase));
    parties.signers.back().require_in_force(std::time(nullptr));
  }
  return parties;
}

void set_text(TqLabel label, std::int32_t (*setter)(TqLabel, const std::uint8_t*, std::uint32_t),
              const std::string& text, std::size_t most, const char* field) {
  if (text.size() > most) refuse(field, fmt::format("a text of more than {} bytes", most));
  const auto length = static_cast<std::uint32_t>(text.size());
  if (length != 0 && setter(label, as_octets(text.c_str()), length) != 0) throw_not_encodable();
}

std::string base_name(const std::string& path) {
  return path == "-" ? std::string() : path.substr(path.rfind('/') + 1);
}

void set_head(TqLabel label, const Party& sealer) {
  const PJCertIssuer issuer = sealer.issuer_name();
  const bool done = GLSetVersion(label, as_octets(kVersion.data()), kVersion.size()) == 0 &&
                    SetHeadCreateTime(label) == 0 &&
                    SetCertSerialAndIssuerToHead(label, sealer.serial.data(),
                                                 static_cast<std::uint32_t>(sealer.serial.size()),
                                                 &issuer) == 0 &&
                    SetEncryptHead(label, as_octets(kCipher.data()), kCipher.size(), 0) == 0;
  if (!done) throw_not_encodable();
}

LabelOwner describe(const Options& options, const Descriptor& input, const Party& sealer) {
  constexpr std::size_t kMostLabelText = 128;
  constexpr std::size_t kMostText = 255;
  LabelOwner label(GetHandleLabel());
  if (!label) throw std::bad_alloc();
  set_head(label.get(), sealer);
  set_text(label.get(), SetLabel, options.label, kMostLabelText, "--label");
  set_text(label.get(), GLSetFileTitle, options.title, kMostText, "--title");
  set_text(label.get(), SetFileName, base_name(options.input), kMostText, "the file's name");
  if (!options.expires.empty()) {
    SetExpired(label.get(), time_argument(options.expires, "--expires"));
  }
  if (!options.destroy.empty()) {
    SetDestroyTime(label.get(), time_argument(options.destroy, "--destroy"));
  }
  struct stat status = {};
  if (::fstat(input.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_mtime > 0) {
    SetModifyTime(label.get(), static_cast<std::uint64_t>(status.st_mtime));
  }
  store_sums(label.get(), {});  // of the size that they will have
  return label;
}

ContentSums seal_content(const Options& options, const Descriptor& input, OutputFile& out,
                         const FileKeys& keys) {
  ContentWriter writer(out, keys);
  Secret plain(kContentStep);
  for (std::size_t count = plain.size(); count == plain.size();) {
    count = read_some(input, options.input, plain.data(), plain.size());
    writer.write({plain.data(), count});
  }
  return writer.finish();
}

Json subjects(const std::vector<Party>& parties) {
  Json names = Json::array();
  for (const Party& party : parties) names.push_back(party.subject);
  return names;
}

void print_json(const Options& options, const Parties& parties, const ContentSums& sums,
                std::size_t label_size) {
  const Json json = {{"form", "tqlabel/protect/1"},
                     {"file", options.input},
                     {"output", options.output},
                     {"labelSize", label_size},
                     {"size", sums.length},
                     {"sha256", hexadecimal(sums.sha256)},
                     {"recipients", subjects(parties.recipients)},
                     {"signers", subjects(parties.signers)}};
  fmt::print("{}\n", json.dump(2));
}

// The label comes last, into the room that was left before the content.
Status protect(const Options& options) {
  if (options.output == "-") {
    refuse("--output", "the label is written last, in front of the content", "name a file");
  }
  require_no_journal(options.output);
  const Rights rights = parse_rights(options.privileges);
  const Parties parties = read_parties(options);
  const Descriptor input = open_input(options.input);
  const FileKeys keys = make_keys();
  const LabelOwner label = describe(options, input, parties.signers.front());
  for (const Party& recipient : parties.recipients) {
    add_recipient(label.get(), recipient, keys.file, rights);
  }
  const std::size_t size = roomy_size(label.get(), signatures_size(parties.signers));
  if (size > kMostLabel) refuse("--to", "more recipients than a label holds");
  OutputFile out(options.output);
  out.seek(size);
  const ContentSums sums = seal_content(options, input, out, keys);
  store_sums(label.get(), sums);
  sign_label(label.get(), parties.signers);
  out.write_at(seal_label(label.get(), keys, size), 0);
  out.commit();
  if (options.json) print_json(options, parties, sums, size);
  return Status::kYes;
}

}  // namespace

void add_protect(Program& program) {
  CLI::App* command = add_command(
      program, "protect", "Seal a file for recipients",
      "tqlabel protect report.odt -o report.sealed --to ann.cer bob.cer --sign me.key,me.cer");
  auto options = std::make_shared<Options>();
  command->add_option("IN", options->input, "the file to seal, - for standard input")->required();
  command->add_option("-o,--output", options->output, "the sealed file to write")->required();
  command->add_option("--to", options->recipients, "certificates of the recipients, PEM or DER")
      ->required();
  command->add_option("--sign", options->signers, "KEY,CERT of each signer, PEM or DER")
      ->required();
  command->add_option("--pass", options->passphrase, "file with the passphrase of the keys");
  command->add_option("--expires", options->expires, "when it can no longer be opened, in UTC");
  command->add_option("--destroy", options->destroy, "when it is to be destroyed, in UTC");
  command->add_option("--label", options->label, "text that everybody can read, such as internal");
  command->add_option("--title", options->title, "title of the file, for recipients");
  command->add_option("--privilege", options->privileges,
                      "print, copy, edit, reads=N or TYPE=VALUE, for all recipients");
  on_chosen(program, *command, [&program, options] {
    options->json = program.json;
    return protect(*options);
  });
}

}  // namespace tq::tool
