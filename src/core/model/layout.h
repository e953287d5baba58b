#ifndef TQ_CORE_MODEL_LAYOUT_H
#define TQ_CORE_MODEL_LAYOUT_H

// Format versions: how a version text becomes a layout, and the only tests on it.

#include <cstdint>
#include <cstring>

#include "core/model/records.h"

namespace tq {

inline constexpr std::size_t kVersionLength = 3;

// What a label's version decides about its records. Computed once per call from the handle.
struct Layout {
  bool v60 = false;         // "6.0"
  bool v11 = false;         // "1.1", "1.1.1" and "1.1.2"
  bool aligned = false;     // "1.1.1" and "1.1.2": file align attributes
  bool multi_sign = false;  // "1.1.2": multi-signature and tagged optional markings

  [[nodiscard]] constexpr bool known() const { return v60 || v11; }
};

inline Layout layout_of(const TqLabelHandle& label) {
  Layout layout;
  layout.v60 = std::memcmp(label.version, "6.0", kVersionLength) == 0;
  layout.v11 = std::memcmp(label.version, "1.1", kVersionLength) == 0;
  layout.aligned = layout.v11 && label.subVersion != 0;
  layout.multi_sign = layout.v11 && label.subVersion > '1';
  return layout;
}

// Parses a NUL-terminated version text. The forms of three characters leave the handle's
// sub-version alone.
std::int32_t LBParseVersion(const char* text, char* version, TqLabelHandle* label);

// Parses the version text of a head as it stands in a label: all of it, so that a NUL within is no
// end. The handle is unchanged when it fails.
[[nodiscard]] bool read_version_text(const ANYBUF& text, TqLabelHandle& label);

// Whether a label with this head would be read back in the layout that it is written in.
[[nodiscard]] bool version_text_agrees(const TqLabelHandle& label, const ANYBUF& text);

}  // namespace tq

#endif
