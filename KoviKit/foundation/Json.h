#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <expected>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kovi {

// Why a JSON document did not decode: where (a key path such as
// "examWeek.startDay" or "members[2].role"; empty for the document itself)
// and why ("missing key", "expected a string", "unknown value \"x\"").
struct DecodeError {
  std::string path;
  std::string reason;

  // "examWeek.startDay: missing key", or the reason alone for the document.
  std::string message() const;
  bool operator==(const DecodeError&) const = default;
};

template <class T>
using Decoded = std::expected<T, DecodeError>;

// How many objects and arrays a parsed document may nest inside each other.
// Deeper documents are refused while parsing, so no walk over a parsed
// document (decoding, dumping, checking) can exhaust the stack however it is
// written; real documents nest fewer than ten levels.
inline constexpr int kJsonMaximumDepth = 128;

// Parses JSON text strictly: a syntax error names its line and column, an
// object that repeats a key is refused with the key path of the repeat (with
// duplicates, what a document means and what it hashes to would depend on
// which copy a reader keeps), and nesting deeper than `kJsonMaximumDepth` is
// refused. Every document Kovi reads goes through here.
Decoded<nlohmann::json> parseJson(std::string_view text);
// The same, keeping each object's keys in document order.
Decoded<nlohmann::ordered_json> parseOrderedJson(std::string_view text);

// Enumerations name their raw values once, in declaration order:
//
//   template <> struct EnumNames<PurrlFocusStrictness> {
//     static constexpr std::array table{
//         std::pair{PurrlFocusStrictness::gentle, std::string_view("gentle")}, ...};
//   };
template <class E>
struct EnumNames;

template <class E>
concept NamedEnum = std::is_enum_v<E> && requires { EnumNames<E>::table; };

template <NamedEnum E>
constexpr std::string_view enumName(E value) {
  for (const auto& [candidate, name] : EnumNames<E>::table) {
    if (candidate == value) return name;
  }
  return {};
}

template <NamedEnum E>
constexpr std::optional<E> enumFromName(std::string_view name) {
  for (const auto& [candidate, candidateName] : EnumNames<E>::table) {
    if (candidateName == name) return candidate;
  }
  return std::nullopt;
}

class JsonView;

// How a type decodes from JSON. Specialised here for bool, integers, double,
// strings, vectors, optionals and named enumerations; records specialise it
// next to their definition:
//
//   template <> struct JsonDecoder<MacFocus4Allowance> {
//     static Decoded<MacFocus4Allowance> decode(const JsonView& json);
//   };
template <class T>
struct JsonDecoder;

// A position inside a parsed document: the value and the key path that leads
// to it, so every error names where it happened.
class JsonView {
 public:
  explicit JsonView(const nlohmann::json& value, std::string path = {}) : value_(&value), path_(std::move(path)) {}

  const nlohmann::json& json() const { return *value_; }
  const std::string& path() const { return path_; }
  DecodeError error(std::string reason) const { return DecodeError{path_, std::move(reason)}; }

  bool isNull() const { return value_->is_null(); }

  // The same position, where integers (here and in everything below) must be
  // integer literals: 1.0 and 1e3 are refused.
  JsonView withIntegerLiteralsOnly() const {
    JsonView view = *this;
    view.integerLiteralsOnly_ = true;
    return view;
  }
  bool integerLiteralsOnly() const { return integerLiteralsOnly_; }

  // Objects. `requireObject` checks the shape; `requireOnlyKeys` also rejects
  // any key outside `known` (strict records carry exactly their keys).
  Decoded<void> requireObject() const;
  Decoded<void> requireOnlyKeys(std::initializer_list<std::string_view> known) const;
  // A present key, even with a null value.
  bool contains(std::string_view key) const;
  Decoded<JsonView> member(std::string_view key) const;
  // Absent and null both count as no value.
  Decoded<std::optional<JsonView>> optionalMember(std::string_view key) const;

  // Arrays.
  Decoded<std::vector<JsonView>> elements() const;

  template <class T>
  Decoded<T> as() const {
    return JsonDecoder<T>::decode(*this);
  }

  template <class T>
  Decoded<T> get(std::string_view key) const {
    auto child = member(key);
    if (!child) return std::unexpected(child.error());
    return child->template as<T>();
  }

  template <class T>
  Decoded<std::optional<T>> getOptional(std::string_view key) const {
    auto child = optionalMember(key);
    if (!child) return std::unexpected(child.error());
    if (!*child) return std::optional<T>{};
    auto value = (*child)->template as<T>();
    if (!value) return std::unexpected(value.error());
    return std::optional<T>(std::move(*value));
  }

  JsonView child(std::string_view key, const nlohmann::json& value) const;
  JsonView element(std::size_t index, const nlohmann::json& value) const;

 private:
  const nlohmann::json* value_;
  std::string path_;
  bool integerLiteralsOnly_ = false;
};

// The JSON type name of a value, for error reasons ("a string", "null").
std::string describeJsonType(const nlohmann::json& value);

template <>
struct JsonDecoder<bool> {
  static Decoded<bool> decode(const JsonView& json);
};

// Integers accept JSON numbers with an integral value inside the type's range
// (1.0 and 1e3 read as 1 and 1000, as the apps' own decoders read them);
// 1.5 and 2^63 are refused. Below a view marked `integerLiteralsOnly`, only
// integer literals are integers, so a strict document spells every count one
// way.
template <>
struct JsonDecoder<std::int64_t> {
  static Decoded<std::int64_t> decode(const JsonView& json);
};

template <>
struct JsonDecoder<int> {
  static Decoded<int> decode(const JsonView& json);
};

template <>
struct JsonDecoder<double> {
  static Decoded<double> decode(const JsonView& json);
};

template <>
struct JsonDecoder<std::string> {
  static Decoded<std::string> decode(const JsonView& json);
};

template <class T>
struct JsonDecoder<std::vector<T>> {
  static Decoded<std::vector<T>> decode(const JsonView& json) {
    auto items = json.elements();
    if (!items) return std::unexpected(items.error());
    std::vector<T> values;
    values.reserve(items->size());
    for (const JsonView& item : *items) {
      auto value = item.template as<T>();
      if (!value) return std::unexpected(value.error());
      values.push_back(std::move(*value));
    }
    return values;
  }
};

// Bytes travel as canonical padded base64 text (keys, signatures,
// attestation objects); any other spelling is refused.
template <>
struct JsonDecoder<std::vector<std::uint8_t>> {
  static Decoded<std::vector<std::uint8_t>> decode(const JsonView& json);
};

template <NamedEnum E>
struct JsonDecoder<E> {
  static Decoded<E> decode(const JsonView& json) {
    auto raw = json.template as<std::string>();
    if (!raw) return std::unexpected(raw.error());
    if (auto value = enumFromName<E>(*raw)) return *value;
    return std::unexpected(json.error("unknown value \"" + *raw + "\""));
  }
};

// Parses `text` and decodes it as T in one step.
template <class T>
Decoded<T> decodeJsonText(std::string_view text) {
  auto document = parseJson(text);
  if (!document) return std::unexpected(document.error());
  return JsonView(*document).as<T>();
}

}  // namespace kovi

// Lets nlohmann::json and ordered_json write a named enumeration as its raw value.
namespace nlohmann {
template <kovi::NamedEnum E>
struct adl_serializer<E> {
  template <class BasicJson>
  static void to_json(BasicJson& json, E value) {
    json = std::string(kovi::enumName(value));
  }
};
}  // namespace nlohmann
