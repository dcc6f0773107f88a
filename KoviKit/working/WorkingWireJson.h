#pragma once

// JSON coding shared by the records of the remote working wire: parts whose
// shape the service keeps to itself travel as JSON values, account names as
// a string map, and a rule set nested in a record encodes through its own
// canonical coding.

#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi {

// A part of a service answer that the client passes on without reading it
// (the coordinator and protection states, presence entries, break warnings).
// Its object keys come back sorted: the parser does not keep their order.
using WorkingOpaqueJson = nlohmann::ordered_json;

// How deep an opaque part may nest; copying it walks it recursively.
inline constexpr std::size_t kWorkingOpaqueJsonDepthLimit = 32;

// Takes the value as it is, after checking it nests no deeper than the limit.
template <>
struct JsonDecoder<WorkingOpaqueJson> {
  static Decoded<WorkingOpaqueJson> decode(const JsonView& json);
};

// An object whose values are all strings, such as account ids to names.
template <>
struct JsonDecoder<std::map<std::string, std::string>> {
  static Decoded<std::map<std::string, std::string>> decode(const JsonView& json) {
    if (auto object = json.requireObject(); !object) return std::unexpected(object.error());
    std::map<std::string, std::string> values;
    for (const auto& [key, value] : json.json().items()) {
      auto text = json.child(key, value).as<std::string>();
      if (!text) return std::unexpected(text.error());
      values.emplace(key, std::move(*text));
    }
    return values;
  }
};

}  // namespace kovi

namespace nlohmann {
template <>
struct adl_serializer<kovi::WorkingRules> {
  template <class BasicJson>
  static void to_json(BasicJson& json, const kovi::WorkingRules& rules) {
    json = kovi::encodeWorkingRules(rules);
  }
};
}  // namespace nlohmann
