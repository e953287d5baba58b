#ifndef TQ_DER_SCHEMA_PART_H
#define TQ_DER_SCHEMA_PART_H

// Some writers are handed parts of their record as nodes. The schema of the whole record serves
// them too: the order of the parts stands nowhere else.

#include "der/schema/schema.h"

namespace tq {

// Parts that the caller of a writer may have encoded already; the schema says where each stands.
enum class Part : std::size_t {
  kHeadSignNode,
  kEncryptHeadNode,
  kHeadEnvelopesNode,
  kBodyEnvelopesNode,
  kStampNode,
  kWaterMarkNode,
  kFingerPrintNode,
  kFileCreatorNode,
  kContentNode,
  kExtendsNode,
  kLogsNode,
  kCount
};

struct ReadyParts {
  const ANYBUF* nodes[static_cast<std::size_t>(Part::kCount)] = {};
  const ANYBUF*& operator[](Part part) { return nodes[static_cast<std::size_t>(part)]; }
  const ANYBUF* operator[](Part part) const { return nodes[static_cast<std::size_t>(part)]; }
};

// A field that is copied from its ready part where parts are given; a missing one adds nothing.
template <Part Which, class Inner>
struct Ready : Inner {
  using Record = typename Inner::Record;

  [[nodiscard]] static bool plan(const Record& record, const Scope& scope, der::Plan& plan) {
    if (scope.ready == nullptr) return Inner::plan(record, scope, plan);
    const ANYBUF* node = (*scope.ready)[Which];
    if (node == nullptr) return true;
    plan.add_whole(node->length);
    return has_its_bytes(*node);
  }
  static der::Writer write(const Record& record, const Scope& scope, der::Writer out) {
    if (scope.ready == nullptr) return Inner::write(record, scope, out);
    const ANYBUF* node = (*scope.ready)[Which];
    if (node != nullptr) out.octets(node->data, node->length);
    return out;
  }
};

template <Part Which, class Inner>
consteval auto ready(Inner /*field*/) {
  return Ready<Which, Inner>{};
}

}  // namespace tq

#endif
