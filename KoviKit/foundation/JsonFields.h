#pragma once

#include <optional>
#include <string_view>
#include <type_traits>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// Decoding a record field by field without repeating the error plumbing:
//
//   WalkingDayWindow window;
//   auto read = readFields(json, field("start", window.start), field("end", window.end));
//   if (!read) return std::unexpected(read.error());
//
// A std::optional field may be absent or null; any other field must be
// present. The first failure stops the reading and names its key path.
template <class T>
struct JsonField {
  std::string_view key;
  T* target;
};

template <class T>
JsonField<T> field(std::string_view key, T& target) {
  return {key, &target};
}

namespace json_fields {

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class T>
Decoded<void> read(const JsonView& json, const JsonField<T>& field) {
  if constexpr (IsOptional<T>::value) {
    auto value = json.getOptional<typename T::value_type>(field.key);
    if (!value) return std::unexpected(value.error());
    *field.target = std::move(*value);
  } else {
    auto value = json.get<T>(field.key);
    if (!value) return std::unexpected(value.error());
    *field.target = std::move(*value);
  }
  return {};
}

}  // namespace json_fields

template <class... T>
Decoded<void> readFields(const JsonView& json, const JsonField<T>&... fields) {
  if (auto object = json.requireObject(); !object) return object;
  Decoded<void> result;
  // Left to right, stopping at the first field that fails.
  (void)((result = json_fields::read(json, fields), result.has_value()) && ...);
  return result;
}

}  // namespace kovi
