// Gives a sealed file another key.

#include <ctime>

#include "base/files.h"
#include "commands/arguments.h"
#include "commands/program.h"
#include "sealed/content.h"
#include "sealed/layout.h"
#include "sealed/sealed_file.h"
#include "sealed/sums.h"

namespace tq::tool {
namespace {

// The size of the label with its new envelopes, which are as long as the old ones or nearly so.
std::size_t label_size(const SealedFile& file, const FileKeys& keys) {
  const std::size_t size = file.file().label().size();
  if (!seal_label(file.label(), keys, size).empty()) return size;
  const std::size_t roomy = roomy_size(file.label(), 0);
  if (roomy <= kMostLabel) return roomy;
  throw Failure{Status::kUsage, "the label would become too large", file.file().path()};
}

Status rekey(const Access& access) {
  const Party self = access.recipient();
  SealedFile file(access.file, EditFile::Purpose::kChange);
  file.unlock(self);
  // A file in a folder that can be written can be replaced, whoever may write to it.
  file.file().require_change();
  const FileKeys keys = make_keys();
  rewrap(file.label(), keys.file, access.file);
  append_log(file.label(), Action::kRekey, self, 0);
  SetHeadModifyTime(file.label(), static_cast<std::uint64_t>(std::time(nullptr)));
  const std::size_t size = label_size(file, keys);
  OutputFile out(file.file().path());
  out.seek(size);
  ContentWriter writer(out, keys);
  file.read_content([&](Bytes plain) { writer.write(plain); });
  store_sums(file.label(), writer.finish());
  out.write_at(seal_label(file.label(), keys, size), 0);
  out.commit();
  sync_folder(file.file().path());
  return Status::kYes;
}

}  // namespace

void add_rekey(Program& program) {
  CLI::App* command =
      add_command(program, "rekey", "Seal a file again under another key, for its recipients",
                  "tqlabel rekey report.sealed --key me.key --cert me.cer");
  auto access = std::make_shared<Access>();
  add_access(*command, *access);
  on_chosen(program, *command, [access] { return rekey(*access); });
}

}  // namespace tq::tool
