#include "KoviKit/foundation/Json.h"

#include "KoviKit/foundation/Base64.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <set>

namespace kovi {

std::string DecodeError::message() const {
  if (path.empty()) return reason;
  return path + ": " + reason;
}

Decoded<nlohmann::json> parseJson(std::string_view text) {
  // Parse without exceptions so a malformed document costs no throw.
  nlohmann::json document = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (document.is_discarded()) return std::unexpected(DecodeError{"", "not valid JSON"});
  return document;
}

Decoded<nlohmann::json> parseSignedJson(std::string_view text) {
  // The keys seen so far in each open object, innermost last.
  std::vector<std::set<std::string, std::less<>>> openObjects;
  std::optional<std::string> duplicate;
  const nlohmann::json::parser_callback_t watch = [&](int, nlohmann::json::parse_event_t event,
                                                      nlohmann::json& parsed) {
    switch (event) {
      case nlohmann::json::parse_event_t::object_start: openObjects.emplace_back(); break;
      case nlohmann::json::parse_event_t::object_end:
        if (!openObjects.empty()) openObjects.pop_back();
        break;
      case nlohmann::json::parse_event_t::key: {
        const auto& key = parsed.get_ref<const std::string&>();
        if (!openObjects.back().insert(key).second && !duplicate) duplicate = key;
        break;
      }
      default: break;
    }
    return true;
  };
  nlohmann::json document;
  try {
    document = nlohmann::json::parse(text, watch);
  } catch (const nlohmann::json::parse_error& error) {
    return std::unexpected(DecodeError{"", "not valid JSON (at byte " + std::to_string(error.byte) + ")"});
  } catch (const nlohmann::json::exception&) {
    return std::unexpected(DecodeError{"", "not valid JSON"});
  }
  if (duplicate) return std::unexpected(DecodeError{"", "duplicate key \"" + *duplicate + "\""});
  return document;
}

std::string describeJsonType(const nlohmann::json& value) {
  switch (value.type()) {
    case nlohmann::json::value_t::null: return "null";
    case nlohmann::json::value_t::object: return "an object";
    case nlohmann::json::value_t::array: return "an array";
    case nlohmann::json::value_t::string: return "a string";
    case nlohmann::json::value_t::boolean: return "a boolean";
    case nlohmann::json::value_t::number_integer:
    case nlohmann::json::value_t::number_unsigned:
    case nlohmann::json::value_t::number_float: return "a number";
    default: return "an unsupported value";
  }
}

namespace {

DecodeError wrongType(const JsonView& json, std::string_view expected) {
  return json.error("expected " + std::string(expected) + ", found " + describeJsonType(json.json()));
}

}  // namespace

Decoded<void> JsonView::requireObject() const {
  if (!value_->is_object()) return std::unexpected(wrongType(*this, "an object"));
  return {};
}

Decoded<void> JsonView::requireOnlyKeys(std::initializer_list<std::string_view> known) const {
  if (auto object = requireObject(); !object) return object;
  for (const auto& [key, value] : value_->items()) {
    if (std::find(known.begin(), known.end(), key) == known.end()) {
      return std::unexpected(child(key, value).error("unknown key"));
    }
  }
  return {};
}

bool JsonView::contains(std::string_view key) const {
  return value_->is_object() && value_->find(key) != value_->end();
}

JsonView JsonView::child(std::string_view key, const nlohmann::json& value) const {
  std::string path;
  path.reserve(path_.size() + 1 + key.size());
  path += path_;
  if (!path.empty()) path += '.';
  path += key;
  return JsonView(value, std::move(path));
}

JsonView JsonView::element(std::size_t index, const nlohmann::json& value) const {
  return JsonView(value, path_ + "[" + std::to_string(index) + "]");
}

Decoded<JsonView> JsonView::member(std::string_view key) const {
  if (auto object = requireObject(); !object) return std::unexpected(object.error());
  const auto found = value_->find(key);
  if (found == value_->end()) return std::unexpected(child(key, *value_).error("missing key"));
  return child(key, *found);
}

Decoded<std::optional<JsonView>> JsonView::optionalMember(std::string_view key) const {
  if (auto object = requireObject(); !object) return std::unexpected(object.error());
  const auto found = value_->find(key);
  if (found == value_->end() || found->is_null()) return std::optional<JsonView>{};
  return std::optional<JsonView>(child(key, *found));
}

Decoded<std::vector<JsonView>> JsonView::elements() const {
  if (!value_->is_array()) return std::unexpected(wrongType(*this, "an array"));
  std::vector<JsonView> items;
  items.reserve(value_->size());
  for (std::size_t index = 0; index < value_->size(); ++index) items.push_back(element(index, (*value_)[index]));
  return items;
}

Decoded<bool> JsonDecoder<bool>::decode(const JsonView& json) {
  if (!json.json().is_boolean()) return std::unexpected(wrongType(json, "a boolean"));
  return json.json().get<bool>();
}

Decoded<std::int64_t> JsonDecoder<std::int64_t>::decode(const JsonView& json) {
  const nlohmann::json& value = json.json();
  if (value.is_number_integer() && !value.is_number_unsigned()) return value.get<std::int64_t>();
  if (value.is_number_unsigned()) {
    const auto raw = value.get<std::uint64_t>();
    if (raw > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      return std::unexpected(json.error("integer out of range"));
    }
    return static_cast<std::int64_t>(raw);
  }
  if (value.is_number_float()) {
    const double raw = value.get<double>();
    // 2^63 is the first double past the int64 range.
    if (!std::isfinite(raw) || std::trunc(raw) != raw) return std::unexpected(wrongType(json, "an integer"));
    if (raw < -9223372036854775808.0 || raw >= 9223372036854775808.0) {
      return std::unexpected(json.error("integer out of range"));
    }
    return static_cast<std::int64_t>(raw);
  }
  return std::unexpected(wrongType(json, "an integer"));
}

Decoded<int> JsonDecoder<int>::decode(const JsonView& json) {
  auto wide = JsonDecoder<std::int64_t>::decode(json);
  if (!wide) return std::unexpected(wide.error());
  if (*wide < std::numeric_limits<int>::min() || *wide > std::numeric_limits<int>::max()) {
    return std::unexpected(json.error("integer out of range"));
  }
  return static_cast<int>(*wide);
}

Decoded<double> JsonDecoder<double>::decode(const JsonView& json) {
  if (!json.json().is_number()) return std::unexpected(wrongType(json, "a number"));
  return json.json().get<double>();
}

Decoded<std::string> JsonDecoder<std::string>::decode(const JsonView& json) {
  if (!json.json().is_string()) return std::unexpected(wrongType(json, "a string"));
  return json.json().get<std::string>();
}

Decoded<std::vector<std::uint8_t>> JsonDecoder<std::vector<std::uint8_t>>::decode(const JsonView& json) {
  auto text = json.as<std::string>();
  if (!text) return std::unexpected(text.error());
  auto bytes = base64Decode(*text);
  if (!bytes) return std::unexpected(json.error("expected canonical base64"));
  return std::move(*bytes);
}

}  // namespace kovi
