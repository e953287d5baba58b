// Puts a sealed file out of force.

#include "commands/arguments.h"
#include "commands/program.h"
#include "sealed/sealed_file.h"

namespace tq::tool {
namespace {

Status abolish(const Access& access) {
  change_sealed(access.file, access.recipient(), Action::kAbolish, {}, [&](SealedFile& file) {
    if (AbolishSF(file.label()) == 0) return 0U;
    throw Failure{Status::kMalformed, "not to be abolished", access.file};
  });
  return Status::kYes;
}

}  // namespace

void add_abolish(Program& program) {
  CLI::App* command =
      add_command(program, "abolish", "Put a sealed file out of force: open refuses it from now on",
                  "tqlabel abolish report.sealed --key me.key --cert me.cer");
  auto access = std::make_shared<Access>();
  add_access(*command, *access);
  on_chosen(program, *command, [access] { return abolish(*access); });
}

}  // namespace tq::tool
