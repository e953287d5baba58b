// Tells who vouches for a file, and for what of it.

#include <fmt/format.h>

#include "base/files.h"
#include "commands/arguments.h"
#include "commands/program.h"
#include "crypto/signer.h"
#include "format/json.h"
#include "sealed/layout.h"
#include "sealed/sealed_file.h"
#include "sealed/signatures.h"

namespace tq::tool {
namespace {

constexpr const char* kCovered[] = {
    "the content: its length and SHA-256",
    "name, title, type, secrecy, expiry and destruction of the file",
    "by the first signer also: label text, creation, custom data, extensions, markings",
};
constexpr const char* kNotCovered[] = {
    "recipients, their rights and read counts",
    "logs",
    "abolition",
    "size of the label, time of its last change",
};

struct Options {
  Access access;
  std::vector<std::string> trusted;
  bool json = false;
};

struct Verdict {
  Party signer;
  std::string fault;  // of the chain
};

std::vector<Verdict> judge(std::vector<Party> signers, TqLabel label, const Options& options) {
  std::uint64_t made = 0;
  GetHeadCreateTime(label, &made);
  std::vector<Verdict> verdicts;
  for (Party& signer : signers) {
    std::string fault = chain_fault(signer, options.trusted, static_cast<std::time_t>(made));
    verdicts.push_back({std::move(signer), std::move(fault)});
  }
  return verdicts;
}

Json list_of(std::span<const char* const> texts) {
  Json list = Json::array();
  for (const char* text : texts) list.push_back(text);
  return list;
}

void print_text(const std::vector<Verdict>& verdicts, bool sealed) {
  for (const Verdict& verdict : verdicts) {
    fmt::print("{}: the signature holds; {}\n", verdict.signer.subject,
               verdict.fault.empty() ? "the chain leads to a trusted certificate"
                                     : "not trusted: " + verdict.fault);
  }
  if (!sealed) return;
  fmt::print("covered:\n  {}\nnot covered, whoever can open the file may change it:\n  {}\n",
             fmt::join(kCovered, "\n  "), fmt::join(kNotCovered, "\n  "));
}

void print_json(const std::vector<Verdict>& verdicts, bool sealed) {
  Json signers = Json::array();
  for (const Verdict& verdict : verdicts) {
    signers.push_back({{"subject", verdict.signer.subject},
                       {"trusted", verdict.fault.empty()},
                       {"fault", verdict.fault.empty() ? Json() : Json(verdict.fault)}});
  }
  Json json = {{"form", "tqlabel/verify/1"}, {"signers", std::move(signers)}};
  if (sealed) {
    json["covered"] = list_of(kCovered);
    json["notCovered"] = list_of(kNotCovered);
  }
  fmt::print("{}\n", json.dump(2));
}

Status conclude(const std::vector<Verdict>& verdicts, bool sealed, const Options& options) {
  options.json ? print_json(verdicts, sealed) : print_text(verdicts, sealed);
  const bool all =
      std::ranges::all_of(verdicts, [](const Verdict& verdict) { return verdict.fault.empty(); });
  return all ? Status::kYes : Status::kNo;
}

// The head's signer has signed all of a label whose body is in the clear.
Status verify_plain(Bytes der, const Options& options) {
  const std::string& path = options.access.file;
  const LabelOwner label = decode_label(der);
  if (!label) throw Failure{Status::kMalformed, "the label does not decode", path};
  const Sign& sign = label->head.headSign;
  Party signer = party_of(bytes_of(sign.certificate), path);
  if (!is_signed(encoded(label.get(), GetSignatureMessage), bytes_of(sign.value), signer)) {
    throw Failure{.status = Status::kCrypto,
                  .why = "the signature of " + signer.subject + " is not for this label",
                  .file = path,
                  .field = "head.headSign"};
  }
  std::vector<Party> signers;
  signers.push_back(std::move(signer));
  return conclude(judge(std::move(signers), label.get(), options), false, options);
}

Status verify_sealed(const Options& options) {
  SealedFile file(options.access.file, EditFile::Purpose::kRead);
  file.unlock(options.access.recipient());
  std::vector<Party> signers = file.signers();
  file.read_content([](Bytes) {});
  return conclude(judge(std::move(signers), file.label(), options), true, options);
}

Status verify(const Options& options) {
  const LabelFile read = read_settled_label(options.access.file);
  if (!label_in(read.bytes, options.access.file).sealed) return verify_plain(read.bytes, options);
  if (options.access.key.empty() || options.access.certificate.empty()) {
    throw Failure{.status = Status::kUsage,
                  .why = "the signatures are in an encrypted body",
                  .file = options.access.file,
                  .advice = "bring --key and --cert of a recipient"};
  }
  return verify_sealed(options);
}

}  // namespace

void add_verify(Program& program) {
  CLI::App* command =
      add_command(program, "verify", "Tell who has signed a label or a sealed file, and what of it",
                  "tqlabel verify report.sealed --trust ca.cer --key me.key --cert me.cer");
  auto options = std::make_shared<Options>();
  add_access(*command, options->access, Access::Needed::kForEncrypted);
  command->add_option("--trust", options->trusted, "certificates that are trusted, PEM or DER")
      ->required();
  on_chosen(program, *command, [&program, options] {
    options->json = program.json;
    return verify(*options);
  });
}

}  // namespace tq::tool
