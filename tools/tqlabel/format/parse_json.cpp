#include <set>

#include "format/json.h"

namespace tq::tool {
namespace {

// Deeper than any label, and not so deep that it could matter.
constexpr int kDeepest = 32;
// More than any record has; to find a key takes time in proportion.
constexpr std::size_t kMostKeys = 64;

}  // namespace

Json parse_json(Bytes text, const std::string& file) {
  std::vector<std::set<std::string>> keys;
  const auto check = [&](int depth, Json::parse_event_t event, Json& parsed) {
    if (depth > kDeepest) throw Failure{Status::kUsage, "nested too deeply", file};
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && keys.back().size() > kMostKeys) {
      throw Failure{Status::kUsage, "an object with too many keys", file};
    }
    if (event == Json::parse_event_t::key && !keys.back().insert(parsed).second) {
      throw Failure{Status::kUsage, "the key comes twice", file, parsed.get<std::string>()};
    }
    return true;
  };
  try {
    return Json::parse(text.begin(), text.end(), check);
  } catch (const Json::parse_error& error) {
    throw Failure{.status = Status::kUsage,
                  .why = "not JSON",
                  .file = file,
                  .at = error.byte,
                  .advice = "check the syntax there"};
  } catch (const Json::out_of_range&) {
    throw Failure{Status::kUsage, "a number that is out of range", file};
  }
}

}  // namespace tq::tool
