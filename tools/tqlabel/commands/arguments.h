#ifndef TQLABEL_TOOL_COMMANDS_ARGUMENTS_H
#define TQLABEL_TOOL_COMMANDS_ARGUMENTS_H

// Arguments that several commands have.

#include <CLI/CLI.hpp>
#include <string>

#include "base/failure.h"
#include "crypto/party.h"
#include "format/parse.h"

namespace tq::tool {

// To open a sealed file as one of its recipients.
struct Access {
  std::string file;
  std::string key;
  std::string certificate;
  std::string passphrase;

  enum class Needed { kAlways, kForEncrypted };

  [[nodiscard]] Party recipient() const {
    return read_party(certificate, key, read_passphrase(passphrase));
  }
};

inline void add_access(CLI::App& command, Access& access,
                       Access::Needed needed = Access::Needed::kAlways) {
  const bool always = needed == Access::Needed::kAlways;
  command.add_option("FILE", access.file, "the sealed file")->required();
  command.add_option("--key", access.key, "your private key, PEM or DER")->required(always);
  command.add_option("--cert", access.certificate, "your certificate, PEM or DER")
      ->required(always);
  command.add_option("--pass", access.passphrase, "file with the passphrase of the key");
}

// A time in UTC, in seconds.
inline std::uint64_t time_argument(const std::string& text, const char* option) {
  std::uint64_t seconds = 0;
  if (parse_time(text, seconds)) return seconds;
  throw Failure{.status = Status::kUsage,
                .why = "not a time",
                .field = option,
                .advice = "write 2027-01-31 or 2027-01-31T12:00:00Z"};
}

}  // namespace tq::tool

#endif
