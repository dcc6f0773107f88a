#include "KoviKit/foundation/JsonUniqueKeys.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kovi {

Decoded<nlohmann::json> parseJsonWithUniqueKeys(std::string_view text) {
  // One key set per object still open; the parser reports every key before
  // its value, so a repeat is seen the moment it is read.
  std::vector<std::set<std::string, std::less<>>> openObjects;
  std::optional<std::string> repeated;
  const nlohmann::json::parser_callback_t watch = [&](int, nlohmann::json::parse_event_t event,
                                                      nlohmann::json& parsed) {
    using Event = nlohmann::json::parse_event_t;
    if (event == Event::object_start) {
      openObjects.emplace_back();
    } else if (event == Event::object_end) {
      if (!openObjects.empty()) openObjects.pop_back();
    } else if (event == Event::key && !openObjects.empty() && !repeated) {
      const auto& key = parsed.get_ref<const std::string&>();
      if (!openObjects.back().insert(key).second) repeated = key;
    }
    return true;
  };
  nlohmann::json document;
  try {
    document = nlohmann::json::parse(text, watch);
  } catch (const nlohmann::json::parse_error& error) {
    return std::unexpected(DecodeError{"", "not valid JSON (at byte " + std::to_string(error.byte) + ")"});
  }
  if (repeated) return std::unexpected(DecodeError{"", "the key \"" + *repeated + "\" appears twice in one object"});
  return document;
}

}  // namespace kovi
