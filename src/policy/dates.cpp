// Deadlines against the clock.

#include <ctime>

#include "core/model/records.h"

namespace {

std::uint64_t now() { return static_cast<std::uint64_t>(std::time(nullptr)); }

// 0 is no deadline; one that is this very second has not passed.
bool has_passed(std::uint64_t deadline, std::uint64_t time) {
  return deadline != 0 && time > deadline;
}

}  // namespace

std::int32_t CheckAbolishDate(TqLabel label) {
  std::uint64_t deadline = 0;
  return GetAbolishTime(label, &deadline) != 0 || has_passed(deadline, now()) ? -1 : 0;
}

std::int32_t CheckDestroyDate(TqLabel label) {
  std::uint64_t deadline = 0;
  return GetDestroyTime(label, &deadline) != 0 || has_passed(deadline, now()) ? -1 : 0;
}

// The destruction time is a question of its own.
std::int32_t CheckLabelDate(TqLabel label) {
  std::uint64_t expiry = 0;
  std::uint64_t abolition = 0;
  if (GetExpired(label, &expiry) != 0 || GetAbolishTime(label, &abolition) != 0) return -1;
  const std::uint64_t time = now();
  return has_passed(expiry, time) || has_passed(abolition, time) ? -1 : 0;
}

std::int32_t AbolishSF(TqLabel label) {
  if (label == nullptr) return -1;
  label->body.content.time3 = now() - 1;
  return 0;
}
