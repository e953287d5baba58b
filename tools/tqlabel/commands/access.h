#ifndef TQLABEL_TOOL_COMMANDS_ACCESS_H
#define TQLABEL_TOOL_COMMANDS_ACCESS_H

// The arguments of commands that open a sealed file as one of its recipients.

#include <CLI/CLI.hpp>
#include <string>

#include "crypto/party.h"

namespace tq::tool {

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

}  // namespace tq::tool

#endif
