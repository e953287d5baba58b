#include "format/path.h"

#include <charconv>

namespace tq::tool {
namespace {

[[noreturn]] void fail(const std::string& path, const char* why) {
  throw Failure{.status = Status::kUsage,
                .why = why,
                .field = path,
                .advice = "tqlabel inspect shows the paths of a label"};
}

// A step to a member, or to an entry.
struct Step {
  std::string name;
  std::size_t number = 0;  // from 1
};

Step take_step(std::string_view& rest, const std::string& path) {
  if (!rest.starts_with('[')) {
    if (rest.starts_with('.')) rest.remove_prefix(1);
    const std::size_t length = std::min(rest.find_first_of(".["), rest.size());
    Step step{.name = std::string(rest.substr(0, length))};
    rest.remove_prefix(length);
    return step;
  }
  Step step;
  const char* const end = rest.data() + rest.size();
  const auto [at, error] = std::from_chars(rest.data() + 1, end, step.number);
  if (error != std::errc() || at == end || *at != ']' || step.number == 0) {
    fail(path, "no number from 1 within brackets");
  }
  rest.remove_prefix(static_cast<std::size_t>(at + 1 - rest.data()));
  return step;
}

Json& follow(Json& json, const Step& step, const std::string& path) {
  if (step.number != 0) {
    if (!json.is_array() || step.number > json.size()) fail(path, "no such entry");
    return json[step.number - 1];
  }
  const auto member = json.is_object() ? json.find(step.name) : json.end();
  if (member == json.end()) fail(path, "no such field");
  return *member;
}

// What the path leads to, and the list or record that has it.
struct Place {
  Json* parent;
  Json* json;
  Step last;
};

Place find(Json& label, const std::string& path) {
  Place place = {nullptr, &label, {}};
  std::string_view rest = path;
  do {
    place.last = take_step(rest, path);
    place.parent = place.json;
    place.json = &follow(*place.json, place.last, path);
  } while (!rest.empty());
  return place;
}

}  // namespace

Json& at_path(Json& label, const std::string& path) { return *find(label, path).json; }

void remove_at(Json& label, const std::string& path) {
  const Place place = find(label, path);
  if (place.last.number == 0) fail(path, "not an entry of a list");
  place.parent->erase(place.last.number - 1);
}

void add_at(Json& label, const std::string& path, Json entry) {
  Json& list = at_path(label, path);
  if (list.is_null()) list = Json::array();
  if (!list.is_array()) fail(path, "not a list");
  list.push_back(std::move(entry));
}

Json typed_value(const Json& before, const std::string& text) {
  Json json = Json::parse(text, nullptr, false);
  const bool is_text =
      json.is_discarded() || (before.is_string() && (json.is_number() || json.is_boolean()));
  return is_text ? Json(text) : json;
}

}  // namespace tq::tool
