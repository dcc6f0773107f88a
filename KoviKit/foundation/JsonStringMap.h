#pragma once

#include <map>
#include <string>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// A JSON object read as a map from its keys to values of one type, such as
// claim times by window id. Each value's error names its key.
template <class T>
struct JsonDecoder<std::map<std::string, T>> {
  static Decoded<std::map<std::string, T>> decode(const JsonView& json) {
    if (auto object = json.requireObject(); !object) return std::unexpected(object.error());
    std::map<std::string, T> values;
    for (const auto& [key, value] : json.json().items()) {
      auto decoded = json.child(key, value).template as<T>();
      if (!decoded) return std::unexpected(decoded.error());
      values.emplace(key, std::move(*decoded));
    }
    return values;
  }
};

}  // namespace kovi
