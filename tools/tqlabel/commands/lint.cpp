// Says what is wrong with labels, or may go wrong.

#include <fmt/color.h>

#include "base/color.h"
#include "base/files.h"
#include "commands/each_file.h"
#include "commands/program.h"
#include "format/json.h"
#include "lint/rules.h"
#include "sealed/edit.h"

namespace tq::tool {
namespace {

constexpr const char* kForm = "tqlabel/lint/1";

struct Options {
  std::vector<std::string> paths;
  std::string explain;  // a code, or "all"
  bool json = false;
  bool colored = false;
};

Severity severity_of(Code code) { return explanation_of(code).severity; }

fmt::text_style style_of(Severity severity, bool colored) {
  if (!colored || severity == Severity::kNote) return {};
  return fmt::fg(severity == Severity::kError ? fmt::terminal_color::red
                                              : fmt::terminal_color::yellow);
}

Status status_of(const Findings& findings) {
  if (findings.list().empty()) return Status::kYes;
  return findings.list().front().code <= Code::kVersion ? Status::kMalformed : Status::kNo;
}

class Linting {
 public:
  explicit Linting(const Options& options) : options_(options) {}

  Status run() {
    const Status worst =
        for_each_file(options_.paths, [&](const std::string& path) { return file(path); });
    if (!options_.json) return worst;
    const Json json = {
        {"form", kForm}, {"findings", std::move(findings_)}, {"more", std::move(more_)}};
    fmt::print("{}\n", json.dump(2));
    return worst;
  }

 private:
  Status file(const std::string& path) {
    const LabelFile read = read_settled_label(path);
    const Findings findings = lint(read.bytes);
    const std::string name = escaped_path(path);
    for (const Finding& finding : findings.list()) {
      options_.json ? add(name, finding) : print(name, finding);
    }
    for (const auto& [code, count] : findings.counts()) {
      if (count > Findings::kMost) rest(name, code, count - Findings::kMost);
    }
    return status_of(findings);
  }

  void print(const std::string& name, const Finding& finding) const {
    const Severity severity = severity_of(finding.code);
    fmt::print("{}:0x{:X} {} {} {}: {}\n", name, finding.at,
               finding.path.empty() ? "label" : finding.path, name_of(finding.code),
               fmt::styled(name_of(severity), style_of(severity, options_.colored)),
               finding.message);
  }

  void add(const std::string& name, const Finding& finding) {
    findings_.push_back({{"file", name},
                         {"at", finding.at},
                         {"path", finding.path},
                         {"code", name_of(finding.code)},
                         {"severity", name_of(severity_of(finding.code))},
                         {"message", finding.message}});
  }

  // What was found beyond the number that is kept.
  void rest(const std::string& name, Code code, std::size_t count) {
    if (options_.json) {
      more_.push_back({{"file", name}, {"code", name_of(code)}, {"count", count}});
    } else {
      fmt::print("{}: and {} more {}\n", name, count, name_of(code));
    }
  }

  const Options& options_;
  Json findings_ = Json::array();
  Json more_ = Json::array();
};

Status explain(const Options& options) {
  Json pages = Json::array();
  for (const Explanation& page : explanations()) {
    const std::string code = name_of(page.code);
    if (options.explain != "all" && options.explain != code) continue;
    pages.push_back({{"code", code},
                     {"severity", name_of(page.severity)},
                     {"title", page.title},
                     {"page", page.page + 1}});
    if (options.json) continue;
    fmt::print("{}{} {}: {}\n{}\n", pages.size() == 1 ? "" : "\n", code, name_of(page.severity),
               page.title, page.page);
  }
  if (pages.empty()) {
    throw Failure{.status = Status::kUsage,
                  .why = "no such code: " + escaped_path(options.explain),
                  .advice = "\"tqlabel lint --explain all\" prints all of them"};
  }
  const Json json = {{"form", kForm}, {"explanations", std::move(pages)}};
  if (options.json) fmt::print("{}\n", json.dump(2));
  return Status::kYes;
}

}  // namespace

void add_lint(Program& program) {
  CLI::App* command = add_command(program, "lint", "Find what is wrong or may go wrong in labels",
                                  "tqlabel lint report.label; tqlabel lint --explain TQ012");
  auto options = std::make_shared<Options>();
  CLI::Option* files =
      command->add_option("FILE", options->paths, "labels in DER, - for standard input");
  command->add_option("--explain", options->explain, "Print what a code means, or all of them")
      ->option_text("CODE|all")
      ->excludes(files);
  command->callback([&program, options] {
    if (options->paths.empty() && options->explain.empty()) throw CLI::RequiredError("FILE");
    program.run = [&program, options] {
      options->json = program.json;
      options->colored = is_colored(program.color, stdout);
      return options->explain.empty() ? Linting(*options).run() : explain(*options);
    };
  });
}

}  // namespace tq::tool
