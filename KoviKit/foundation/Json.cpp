#include "KoviKit/foundation/Json.h"

#include "KoviKit/foundation/Base64.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <unordered_set>
#include <vector>

namespace kovi {

std::string DecodeError::message() const {
  if (path.empty()) return reason;
  return path + ": " + reason;
}

namespace {

// A document refused by the parse callback: thrown out of the parser and
// caught in `parseStrictly`, never further.
struct ParseRefusal {
  DecodeError error;
};

// Follows the parser through the document to refuse repeated keys and deep
// nesting, keeping the key path of the value being parsed for the error.
class StrictParseGuard {
 public:
  template <class BasicJson>
  bool operator()(int depth, nlohmann::detail::parse_event_t event, BasicJson& parsed) {
    using Event = nlohmann::detail::parse_event_t;
    switch (event) {
      case Event::object_start:
      case Event::array_start:
        if (depth >= kJsonMaximumDepth) {
          throw ParseRefusal{{"", "nested deeper than " + std::to_string(kJsonMaximumDepth) + " levels"}};
        }
        frames_.push_back(Frame{event == Event::object_start, {}, {}, 0});
        break;
      case Event::key: {
        Frame& object = frames_.back();
        object.key = parsed.template get<std::string>();
        if (!object.keys.insert(object.key).second) throw ParseRefusal{{path(), "duplicate key"}};
        break;
      }
      case Event::object_end:
      case Event::array_end:
        frames_.pop_back();
        finishValue();
        break;
      case Event::value: finishValue(); break;
    }
    return true;
  }

 private:
  struct Frame {
    bool isObject = false;
    std::unordered_set<std::string> keys;
    std::string key;          // the member being parsed, in an object
    std::size_t index = 0;    // the element being parsed, in an array
  };

  void finishValue() {
    if (!frames_.empty() && !frames_.back().isObject) ++frames_.back().index;
  }

  std::string path() const {
    std::string text;
    for (const Frame& frame : frames_) {
      if (frame.isObject) {
        if (!text.empty()) text += '.';
        text += frame.key;
      } else {
        text += "[" + std::to_string(frame.index) + "]";
      }
    }
    return text;
  }

  std::vector<Frame> frames_;
};

// The parser's account of the error ("at line 1, column 18: syntax error
// while parsing object key - unexpected end of input; …") without its
// error-number prefix.
std::string syntaxProblem(const nlohmann::json::parse_error& error) {
  std::string_view what = error.what();
  constexpr std::string_view kPrefix = "parse error ";
  if (const auto found = what.find(kPrefix); found != std::string_view::npos) what.remove_prefix(found + kPrefix.size());
  return std::string(what);
}

template <class BasicJson>
Decoded<BasicJson> parseStrictly(std::string_view text) {
  try {
    StrictParseGuard guard;
    return BasicJson::parse(text, std::ref(guard), /*allow_exceptions=*/true);
  } catch (const ParseRefusal& refusal) {
    return std::unexpected(refusal.error);
  } catch (const nlohmann::json::parse_error& error) {
    return std::unexpected(DecodeError{"", "not valid JSON " + syntaxProblem(error)});
  } catch (const nlohmann::json::exception& error) {
    return std::unexpected(DecodeError{"", std::string("not valid JSON: ") + error.what()});
  }
}

}  // namespace

Decoded<nlohmann::json> parseJson(std::string_view text) { return parseStrictly<nlohmann::json>(text); }

Decoded<nlohmann::ordered_json> parseOrderedJson(std::string_view text) {
  return parseStrictly<nlohmann::ordered_json>(text);
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
  JsonView view(value, std::move(path));
  view.integerLiteralsOnly_ = integerLiteralsOnly_;
  return view;
}

JsonView JsonView::element(std::size_t index, const nlohmann::json& value) const {
  JsonView view(value, path_ + "[" + std::to_string(index) + "]");
  view.integerLiteralsOnly_ = integerLiteralsOnly_;
  return view;
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
  // Strict documents spell every count one way: as an integer literal.
  if (value.is_number_float() && !json.integerLiteralsOnly()) {
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
