#ifndef TQLABEL_TOOL_SEALED_SIGNATURES_H
#define TQLABEL_TOOL_SEALED_SIGNATURES_H

// Who vouches for a sealed file. The first signer signs the label, as far as edits leave it alone;
// each of them signs the content and the signatures before his own.

#include <span>
#include <string>
#include <vector>

#include "crypto/party.h"
#include "sealed/format.h"

namespace tq::tool {

// How much a label grows by the signatures.
[[nodiscard]] std::size_t signatures_size(std::span<const Party> signers);

// In place of all signatures. All else must be there already.
void sign_label(TqLabel label, std::span<const Party> signers);

// The signers, the first one first. Throws unless all signatures are theirs and their certificates
// were in force when the label was made.
[[nodiscard]] std::vector<Party> verified_signers(TqLabel label, const std::string& file);

}  // namespace tq::tool

#endif
