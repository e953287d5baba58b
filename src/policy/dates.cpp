// Deadlines against the clock.

#include <ctime>

#include "core/model/records.h"

namespace {

std::uint64_t now() { return static_cast<std::uint64_t>(std::time(nullptr)); }

// 0 is no deadline; one that is this very second has not passed.
bool has_passed(std::uint64_t deadline) { return deadline != 0 && now() > deadline; }

}  // namespace

std::int32_t CheckAbolishDate(TqLabel label) {
  std::uint64_t deadline = 0;
  return GetAbolishTime(label, &deadline) != 0 || has_passed(deadline) ? -1 : 0;
}

std::int32_t CheckDestroyDate(TqLabel label) {
  std::uint64_t deadline = 0;
  return GetDestroyTime(label, &deadline) != 0 || has_passed(deadline) ? -1 : 0;
}

// The destruction time is a question of its own.
std::int32_t CheckLabelDate(TqLabel label) {
  std::uint64_t deadline = 0;
  if (GetExpired(label, &deadline) != 0 || has_passed(deadline)) return -1;
  return CheckAbolishDate(label);
}

std::int32_t AbolishSF(TqLabel label) {
  if (label == nullptr) return -1;
  label->body.content.time3 = now() - 1;
  return 0;
}
