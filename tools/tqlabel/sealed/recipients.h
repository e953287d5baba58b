#ifndef TQLABEL_TOOL_SEALED_RECIPIENTS_H
#define TQLABEL_TOOL_SEALED_RECIPIENTS_H

// Who may open a sealed file, what else he may do, and what he has done.

#include <string>
#include <vector>

#include "crypto/party.h"
#include "crypto/recipients.h"
#include "crypto/secret.h"
#include "sealed/format.h"

namespace tq::tool {

struct Rights {
  bool print = false;
  bool copy = false;
  bool edit = false;
  std::uint32_t reads = 0;  // how often he may open the file; 0 for any number
  std::vector<PrivilegeEntry> more = {};
};

// Texts such as "print", "reads=3" or, for what other programs know, "7=100".
[[nodiscard]] Rights parse_rights(const std::vector<std::string>& texts);

// Adds envelopes with the file key to head and body. Throws where the library would take them for
// those of a recipient who is there already.
void add_recipient(TqLabel label, const Party& recipient, const Secret& file_key,
                   const Rights& rights);

// Whether an envelope is this party's, and not of one who has more attributes or others, whom a
// lookup of the library would find as well.
[[nodiscard]] bool is_envelope_of(const ENVELOPE& envelope, const Party& party);

// The party's envelope in a list of the head or of the body, or null.
template <class Node>
[[nodiscard]] Node* find_envelope(Node* first, const Party& party) {
  while (first != nullptr && !is_envelope_of(envelope_of(*first), party)) first = first->next;
  return first;
}

// The file key from the recipient's envelope in the head. Throws if there is none.
[[nodiscard]] Secret file_key_for(const Party& recipient, const TqLabelHandle& label);

// The recipient's envelope in the body with his rights. Throws if there is none.
[[nodiscard]] BDigitEnvolope& envelope_for(const Party& recipient, TqLabelHandle& label);

// What is to be found in a log.
enum class Action : std::uint32_t { kOpen = 1, kAdd, kRemove, kRekey, kAbolish, kNote };

// The value is the number of the reading, or of those who were added or removed.
void append_log(TqLabel label, Action action, const Party& who, std::uint32_t value,
                const std::string& note = {});

// Takes a recipient out of head and body. Throws if he is not there.
void remove_recipient(TqLabel label, const Party& recipient);

// Those who have envelopes in the body, in the order of the list. Throws where a certificate is not
// the one that its envelope is for.
[[nodiscard]] std::vector<Party> recipients_of(const TqLabelHandle& label, const std::string& file);

// Gives another file key to all recipients, in place of the one they have.
void rewrap(TqLabel label, const Secret& file_key, const std::string& file);

}  // namespace tq::tool

#endif
