// Bytes as the label of a sealed file: as it stands in the file, and as it is once its body has
// been decrypted. Who sealed a file knows its keys, so that nothing in there is to be trusted
// either.

#include "base/failure.h"
#include "sealed/layout.h"
#include "sealed/recipients.h"
#include "sealed/signatures.h"
#include "sealed/sums.h"
#include "support.h"

namespace {

using namespace tq;

// Saying what is wrong is an answer, too.
template <class Action>
void attempt(Action action) {
  try {
    action();
  } catch (const tool::Failure&) {
    // and what it says is not looked at
  }
}

void check_sealed(tool::Bytes bytes) {
  const tool::SealedLabel sealed = tool::read_sealed_label(bytes, "");
  const auto inside = [&](const std::uint8_t* at) {
    return at >= bytes.data() && at <= bytes.data() + bytes.size();
  };
  fuzz::require(inside(sealed.head.data()) && inside(sealed.head.data() + sealed.head.size()),
                "the head is within the label");
}

void check_opened(TqLabel label) {
  attempt([&] { static_cast<void>(tool::stored_sums(label)); });
  attempt([&] { static_cast<void>(tool::verified_signers(label, "")); });
  attempt([&] { tool::rewrap(label, tool::Secret(32), ""); });
  attempt([&] {
    const std::vector<tool::Party> recipients = tool::recipients_of(*label, "");
    for (const tool::Party& recipient : recipients) {
      fuzz::require(tool::find_envelope(label->body.bodyEnvelopes, recipient) != nullptr,
                    "who is listed has an envelope");
    }
    for (const tool::Party& recipient : recipients) {
      attempt([&] { tool::remove_recipient(label, recipient); });
    }
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  attempt([&] { check_sealed({data, size}); });
  if (const LabelOwner label = tool::decode_label({data, size})) check_opened(label.get());
  return 0;
}
