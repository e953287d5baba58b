// May this certificate open the file at this time?

#include <fmt/color.h>

#include <ctime>

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
  Access access;  // its certificate is the one that is asked about
  std::string at;
  bool json = false;
  bool colored = false;
};

enum class Answer { kYes, kNo, kUnknown };

constexpr const char* kAnswers[] = {"yes", "no", "cannot be told"};

struct Rule {
  const char* question;
  Answer answer;
  std::string because;
};

Answer answer_of(bool holds) { return holds ? Answer::kYes : Answer::kNo; }

class Questions {
 public:
  void ask(const char* question, Answer answer, std::string because) {
    rules_.push_back({question, answer, std::move(because)});
  }
  [[nodiscard]] const std::vector<Rule>& rules() const { return rules_; }

  // No where any rule says so, and yes only where all do.
  [[nodiscard]] Answer verdict() const {
    const auto has = [&](Answer answer) {
      return std::ranges::find(rules_, answer, &Rule::answer) != rules_.end();
    };
    if (has(Answer::kNo)) return Answer::kNo;
    return has(Answer::kUnknown) ? Answer::kUnknown : Answer::kYes;
  }

 private:
  std::vector<Rule> rules_;
};

void ask_deadline(Questions& questions, const char* question, std::uint64_t deadline,
                  std::uint64_t at) {
  questions.ask(question, answer_of(deadline == 0 || at <= deadline), show_time(deadline));
}

void ask_body(Questions& questions, const TqLabelHandle& label, const OPrivilege* rights,
              std::uint64_t at) {
  const bool there = rights != nullptr;
  questions.ask("has an envelope in the body", answer_of(there), "");
  if (there) {
    questions.ask("has the privilege to open", answer_of(rights->priFlag1 != 0), "");
    questions.ask("has readings left",
                  answer_of(rights->priValue1 == 0 || rights->priValue2 < rights->priValue1),
                  rights->priValue1 == 0
                      ? fmt::format("{} so far, no limit", rights->priValue2)
                      : fmt::format("{} of {}", rights->priValue2, rights->priValue1));
  }
  ask_deadline(questions, "not abolished", label.body.content.time3, at);
  ask_deadline(questions, "not expired", label.body.content.time2, at);
  ask_deadline(questions, "not to be destroyed", label.body.content.time4, at);
}

// The body's rules, or that it cannot be looked into.
void ask_sealed(Questions& questions, const Options& options, std::uint64_t at) {
  if (options.access.key.empty()) {
    questions.ask("dates and privileges", Answer::kUnknown, "the body is encrypted: bring --key");
    return;
  }
  const Party party = options.access.recipient();
  SealedFile file(options.access.file, EditFile::Purpose::kRead);
  try {
    file.unlock(party);
    questions.ask("is authentic", Answer::kYes, "head and body");
    ask_body(questions, *file.label(), &envelope_for(party, *file.label()).privilege, at);
    questions.ask("is signed as it was sealed", answer_of(!file.signers().empty()), "");
  } catch (const Failure& failure) {
    if (failure.status != Status::kCrypto) throw;
    questions.ask("opens, is authentic and signed", Answer::kNo, failure.why);
  }
}

void ask_label(Questions& questions, const Options& options, const Party& party, Bytes der,
               std::uint64_t at) {
  const Label shape = label_in(der, options.access.file);
  PeekedHead head;
  if (!head.read(der.data(), static_cast<std::int64_t>(der.size()), PeekedHead::Body::kRequired)) {
    throw Failure{Status::kMalformed, "the head does not decode", options.access.file};
  }
  const ENVELOPE* first = head.head().encryptHead.envelopes;
  questions.ask("has an envelope in the head", answer_of(find_envelope(first, party) != nullptr),
                party.subject);
  if (shape.sealed) return ask_sealed(questions, options, at);
  const LabelOwner label = decode_label(der);
  if (!label) throw Failure{Status::kMalformed, "the body does not decode", options.access.file};
  const BDigitEnvolope* envelope = find_envelope(label->body.bodyEnvelopes, party);
  ask_body(questions, *label, envelope == nullptr ? nullptr : &envelope->privilege, at);
}

void print_json(const Questions& questions) {
  Json rules = Json::array();
  for (const Rule& rule : questions.rules()) {
    rules.push_back({{"rule", rule.question},
                     {"answer", kAnswers[static_cast<int>(rule.answer)]},
                     {"because", rule.because}});
  }
  const Json json = {{"form", "tqlabel/check/1"},
                     {"rules", std::move(rules)},
                     {"verdict", kAnswers[static_cast<int>(questions.verdict())]}};
  fmt::print("{}\n", json.dump(2));
}

std::string show(Answer answer, bool colored) {
  constexpr fmt::terminal_color kColors[] = {fmt::terminal_color::green, fmt::terminal_color::red,
                                             fmt::terminal_color::yellow};
  const auto number = static_cast<std::size_t>(answer);
  return colored ? fmt::format(fmt::fg(kColors[number]), "{}", kAnswers[number]) : kAnswers[number];
}

void print_text(const Questions& questions, bool colored) {
  for (const Rule& rule : questions.rules()) {
    fmt::print("{}: {}{}\n", rule.question, show(rule.answer, colored),
               rule.because.empty() ? "" : " (" + rule.because + ")");
  }
  fmt::print("may open the file: {}\n", show(questions.verdict(), colored));
}

Status check(const Options& options) {
  const std::uint64_t at = options.at.empty() ? static_cast<std::uint64_t>(std::time(nullptr))
                                              : time_argument(options.at, "--at");
  const Party party = read_party(options.access.certificate);
  const LabelFile read = read_settled_label(options.access.file);
  Questions questions;
  questions.ask("certificate in force", answer_of(party.is_in_force(static_cast<std::time_t>(at))),
                show_time(at));
  ask_label(questions, options, party, read.bytes, at);
  options.json ? print_json(questions) : print_text(questions, options.colored);
  return questions.verdict() == Answer::kYes ? Status::kYes : Status::kNo;
}

}  // namespace

void add_check(Program& program) {
  CLI::App* command =
      add_command(program, "check", "Ask whether a certificate may open a file, rule by rule",
                  "tqlabel check report.sealed --as ann.cer --key ann.key --at 2027-01-31");
  auto options = std::make_shared<Options>();
  command->add_option("FILE", options->access.file, "a label or a sealed file")->required();
  command->add_option("--as", options->access.certificate, "the certificate, PEM or DER")
      ->required();
  command->add_option("--key", options->access.key, "its private key, for an encrypted body");
  command->add_option("--pass", options->access.passphrase, "file with the passphrase of the key");
  command->add_option("--at", options->at, "the time in UTC; now if not given");
  on_chosen(program, *command, [&program, options] {
    options->json = program.json;
    options->colored = is_colored(program.color, stdout);
    return check(*options);
  });
}

}  // namespace tq::tool
