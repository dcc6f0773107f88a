#include "KoviKit/foundation/JsonUniqueKeys.h"

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace kovi {
namespace {

// One open object or array while the parser walks the document.
struct OpenContainer {
  bool isObject = false;
  std::size_t elementsSeen = 0;          // arrays: completed elements so far
  std::string currentKey;                // objects: the key being read
  std::unordered_set<std::string> keys;  // objects: every key so far
};

std::string pathOf(const std::vector<OpenContainer>& open) {
  std::string path;
  for (const OpenContainer& container : open) {
    if (container.isObject) {
      if (!path.empty()) path += '.';
      path += container.currentKey;
    } else {
      path += '[' + std::to_string(container.elementsSeen) + ']';
    }
  }
  return path;
}

void valueCompleted(std::vector<OpenContainer>& open) {
  if (!open.empty() && !open.back().isObject) ++open.back().elementsSeen;
}

}  // namespace

Decoded<nlohmann::json> parseJsonWithUniqueKeys(std::string_view text) {
  using Event = nlohmann::json::parse_event_t;
  std::vector<OpenContainer> open;
  std::optional<DecodeError> duplicate;
  const auto watch = [&](int /*depth*/, Event event, nlohmann::json& parsed) {
    switch (event) {
      case Event::object_start: open.push_back({true, 0, {}, {}}); break;
      case Event::array_start: open.push_back({false, 0, {}, {}}); break;
      case Event::key: {
        OpenContainer& object = open.back();
        std::string key = parsed.get<std::string>();
        const bool isNew = object.keys.insert(key).second;
        object.currentKey = std::move(key);
        if (!isNew && !duplicate) duplicate = DecodeError{pathOf(open), "duplicate key"};
        break;
      }
      case Event::object_end:
      case Event::array_end:
        open.pop_back();
        valueCompleted(open);
        break;
      case Event::value: valueCompleted(open); break;
    }
    return true;
  };
  nlohmann::json document = nlohmann::json::parse(text, watch, /*allow_exceptions=*/false);
  if (document.is_discarded()) return std::unexpected(DecodeError{"", "not valid JSON"});
  if (duplicate) return std::unexpected(*duplicate);
  return document;
}

}  // namespace kovi
