#ifndef TQLABEL_TOOL_SEALED_SUMS_H
#define TQLABEL_TOOL_SEALED_SUMS_H

// What a label says of the content: two extension values, and the sizes of file and alignment.

#include "sealed/content.h"
#include "sealed/format.h"

namespace tq::tool {

// In place of what the label has said so far.
void store_sums(TqLabel label, const ContentSums& sums);

// Throws where the label does not say, or not the same throughout.
[[nodiscard]] ContentSums stored_sums(TqLabel label);

}  // namespace tq::tool

#endif
