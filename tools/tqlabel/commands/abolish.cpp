// Puts a sealed file out of force.

#include "commands/access.h"
#include "commands/program.h"
#include "sealed/recipients.h"
#include "sealed/sealed_file.h"

namespace tq::tool {
namespace {

Status abolish(const Access& access) {
  const Party self = access.recipient();
  SealedFile file(access.file, EditFile::Purpose::kChange);
  file.unlock(self);
  if (AbolishSF(file.label()) != 0)
    throw Failure{Status::kMalformed, "not to be abolished", access.file};
  append_log(file.label(), Action::kAbolish, self, 0);
  file.save();
  return Status::kYes;
}

}  // namespace

void add_abolish(Program& program) {
  CLI::App* command =
      add_command(program, "abolish", "Put a sealed file out of force: open refuses it from now on",
                  "tqlabel abolish report.sealed --key me.key --cert me.cer");
  auto access = std::make_shared<Access>();
  add_access(*command, *access);
  command->callback([&program, access] { program.run = [access] { return abolish(*access); }; });
}

}  // namespace tq::tool
