// Whether the library writes a label as it has read it.

#include <fmt/format.h>
#include <tqlabel/label.h>

#include "format/handle.h"
#include "lint/rules.h"

namespace tq::tool {
namespace {

// What of the rules for elements keeps the bytes from coming back.
constexpr Code kKnown[] = {Code::kUnwritableName, Code::kNoCertificate, Code::kIgnored,
                           Code::kMarkingTwice,   Code::kLogsTag,       Code::kWrittenOtherwise};

LabelOwner decode(const Label& label) {
  const Bytes bytes = label.bytes();
  if (!label.sealed) return decode_label(bytes);
  TqLabel handle = nullptr;
  std::vector<std::uint8_t> body(label.body().content().size() + 1);
  auto length = static_cast<std::uint32_t>(body.size());
  static_cast<void>(DecodeLabelEncrypted(bytes.data(), static_cast<std::uint32_t>(bytes.size()),
                                         body.data(), &length, &handle));
  return LabelOwner(handle);
}

// Head and body as the library writes them, or nothing where it does not.
std::vector<std::uint8_t> encode(const Label& label, TqLabel handle) {
  const Bytes body = label.body().content();
  const auto write = [&](std::uint8_t* buffer, std::uint32_t* length) {
    return label.sealed
               ? EncodeLabelEncrypted(handle, body.data(), static_cast<std::uint32_t>(body.size()),
                                      buffer, length)
               : EncodeLabel(handle, buffer, length);
  };
  std::uint32_t length = 0;
  if (write(nullptr, &length) != 0) return {};
  std::vector<std::uint8_t> bytes(length);
  return write(bytes.data(), &length) == 0 ? bytes : std::vector<std::uint8_t>();
}

// The innermost element around a byte.
Place innermost(const Label& label, const std::uint8_t* at) {
  Place found{{}, &label.root};
  walk(label.root, [&](const std::string& path, const Item& item) {
    if (item.element.start == nullptr || at < item.element.start) return;
    if (at - item.element.start < std::ssize(item.bytes())) found = {path, &item};
  });
  return found;
}

}  // namespace

void check_encoding(const Label& label, Findings& out) {
  if (std::ranges::any_of(kKnown, [&](Code code) { return out.has(code); })) return;
  const LabelOwner handle = decode(label);
  if (!handle) return;
  const std::vector<std::uint8_t> written = encode(label, handle.get());
  der::Element whole;
  if (!der::read_outermost(written.data(), written.size(), der::kSequence, whole)) {
    out.add(Code::kDoesNotEncode, {{}, &label.root}, "it decodes, but does not encode again");
    return;
  }
  const Bytes read(label.head().element.start,
                   label.body().bytes().data() + label.body().bytes().size());
  const auto* const differs = std::mismatch(read.data(), read.data() + read.size(), whole.content(),
                                            whole.content() + whole.length)
                                  .first;
  if (differs == read.data() + read.size()) return;
  out.add(Code::kWrittenOtherwise, innermost(label, differs), differs,
          "from here on the library writes other bytes than it has read");
}

}  // namespace tq::tool
