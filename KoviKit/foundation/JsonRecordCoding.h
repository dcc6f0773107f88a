#pragma once

// JSON coding of plain records from one field list per record, so the decoder
// and the encoder can never disagree on a key or its order:
//
//   template <>
//   struct JsonRecordFields<WorkingRules::Pomodoro> : StrictJsonRecord {
//     static constexpr auto fields = std::tuple{
//         field("workSeconds", &WorkingRules::Pomodoro::workSeconds),
//         field("breakSeconds", &WorkingRules::Pomodoro::breakSeconds)};
//   };
//
// Decoding requires every non-optional key, reads an absent or null optional
// as no value and stops at the first failing field, whose key path the error
// names. Encoding writes the keys in declared order. A `Date` travels as
// floating seconds since 2001-01-01T00:00:00Z, its JSON form throughout, and
// bytes (`std::vector<std::uint8_t>`) as canonical padded base64.
// A record that extends another lists the base record's fields first
// (`std::tuple_cat` of the base's list and its own).
//
// A field of type `nlohmann::json` passes a value through as it is (a summary
// the service shares but Kovi does not read); absent reads as null. A field
// list may also give the checks that tie fields together, run once every
// field has decoded:
//
//   static Decoded<void> validate(const WalkingKoviRules& rules, const JsonView& json);

#include <cmath>
#include <charconv>
#include <concepts>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// What a record does with keys outside its field list and with optionals that
// hold no value; each field list states one.
enum class JsonRecordPolicy {
  // Documents Kovi writes and checks itself: exactly the listed keys, so an
  // unknown key fails decoding, and an optional without a value is written as
  // null.
  strict,
  // Service answers a newer service may add to: unknown keys are ignored, and
  // an optional without a value is left out.
  lenient,
};

struct StrictJsonRecord {
  static constexpr JsonRecordPolicy policy = JsonRecordPolicy::strict;
};

struct LenientJsonRecord {
  static constexpr JsonRecordPolicy policy = JsonRecordPolicy::lenient;
};

// `Record` is the record itself or one of its bases.
template <class Record, class Value>
struct JsonRecordField {
  std::string_view key;
  Value Record::*member;
};

template <class Record, class Value>
constexpr JsonRecordField<Record, Value> field(std::string_view key, Value Record::*member) {
  return {key, member};
}

// Specialised next to each record with its `fields` and its `policy`.
template <class Record>
struct JsonRecordFields;

template <class Record>
concept JsonRecord = requires {
  JsonRecordFields<Record>::fields;
  { JsonRecordFields<Record>::policy } -> std::convertible_to<JsonRecordPolicy>;
};

namespace json_record {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;

// Maps travel as JSON objects; a key is the map's string key or, for an
// integral key, its decimal digits with no sign, padding or spaces ("0", "12").
template <class T>
inline constexpr bool isMap = false;
template <class K, class V>
inline constexpr bool isMap<std::map<K, V>> = true;

template <class Key>
std::optional<Key> mapKey(const std::string& text) {
  if constexpr (std::is_same_v<Key, std::string>) {
    return text;
  } else {
    static_assert(std::is_integral_v<Key>, "map keys are strings or integers");
    Key key{};
    const char* end = text.data() + text.size();
    if (text.empty() || (text.size() > 1 && text.front() == '0')) return std::nullopt;
    const auto parsed = std::from_chars(text.data(), end, key);
    if (parsed.ec != std::errc() || parsed.ptr != end || text.front() == '-') return std::nullopt;
    return key;
  }
}

template <class T>
Decoded<T> decodeValue(const JsonView& json);

template <class Map>
Decoded<Map> decodeMap(const JsonView& json) {
  if (auto object = json.requireObject(); !object) return std::unexpected(object.error());
  Map map;
  for (const auto& [text, item] : json.json().items()) {
    const JsonView child = json.child(text, item);
    auto key = mapKey<typename Map::key_type>(text);
    if (!key) return std::unexpected(child.error("not a valid key"));
    auto value = decodeValue<typename Map::mapped_type>(child);
    if (!value) return std::unexpected(value.error());
    map.emplace(std::move(*key), std::move(*value));
  }
  return map;
}

template <class T>
Decoded<T> decodeValue(const JsonView& json) {
  if constexpr (std::is_same_v<T, nlohmann::json>) {
    return json.json();
  } else if constexpr (isMap<T>) {
    return decodeMap<T>(json);
  } else if constexpr (std::is_same_v<T, Date>) {
    // Far enough for any real instant, near enough that the instant still
    // converts to Unix milliseconds.
    constexpr double kTimestampLimitSeconds = 9e15;
    auto seconds = json.as<double>();
    if (!seconds) return std::unexpected(seconds.error());
    if (!(std::fabs(*seconds) <= kTimestampLimitSeconds)) return std::unexpected(json.error("timestamp out of range"));
    return Date::fromSecondsSince2001(*seconds);
  } else {
    return json.as<T>();
  }
}

template <JsonRecord Record>
bool isListedKey(std::string_view key) {
  return std::apply([&](const auto&... entries) { return ((entries.key == key) || ...); },
                    JsonRecordFields<Record>::fields);
}

template <JsonRecord Record>
Decoded<void> rejectUnlistedKeys(const JsonView& json) {
  for (const auto& [key, value] : json.json().items()) {
    if (!isListedKey<Record>(key)) return std::unexpected(json.child(key, value).error("unknown key"));
  }
  return {};
}

template <class Record, class Owner, class Value>
Decoded<void> decodeField(const JsonView& object, const JsonRecordField<Owner, Value>& field, Record& record) {
  if constexpr (std::is_same_v<Value, nlohmann::json>) {
    auto child = object.optionalMember(field.key);
    if (!child) return std::unexpected(child.error());
    record.*field.member = *child ? (*child)->json() : nlohmann::json();
  } else if constexpr (isOptional<Value>) {
    auto child = object.optionalMember(field.key);
    if (!child) return std::unexpected(child.error());
    if (!*child) {
      record.*field.member = std::nullopt;
      return {};
    }
    auto value = decodeValue<typename Value::value_type>(**child);
    if (!value) return std::unexpected(value.error());
    record.*field.member = std::move(*value);
  } else {
    auto child = object.member(field.key);
    if (!child) return std::unexpected(child.error());
    auto value = decodeValue<Value>(*child);
    if (!value) return std::unexpected(value.error());
    record.*field.member = std::move(*value);
  }
  return {};
}

template <class Record>
concept ValidatedJsonRecord = requires(const Record& record, const JsonView& json) {
  { JsonRecordFields<Record>::validate(record, json) } -> std::same_as<Decoded<void>>;
};

}  // namespace json_record

// Every field of `Record` in declared order. Under the strict policy a key the
// record does not list fails first, before any field is read, and integers
// must be integer literals.
template <JsonRecord Record>
Decoded<Record> decodeRecord(const JsonView& view) {
  if (auto object = view.requireObject(); !object) return std::unexpected(object.error());
  constexpr bool strict = JsonRecordFields<Record>::policy == JsonRecordPolicy::strict;
  // A strict record also takes its integers, and those of everything inside
  // it, only as integer literals.
  const JsonView json = strict ? view.withIntegerLiteralsOnly() : view;
  if constexpr (strict) {
    if (auto listed = json_record::rejectUnlistedKeys<Record>(json); !listed) return std::unexpected(listed.error());
  }
  Record record{};
  Decoded<void> outcome;
  std::apply(
      [&](const auto&... fields) {
        // Stops at the first failing field so the error names it.
        ((outcome = outcome ? json_record::decodeField(json, fields, record) : outcome), ...);
      },
      JsonRecordFields<Record>::fields);
  if (!outcome) return std::unexpected(outcome.error());
  if constexpr (json_record::ValidatedJsonRecord<Record>) {
    if (auto valid = JsonRecordFields<Record>::validate(record, json); !valid) return std::unexpected(valid.error());
  }
  return record;
}

// Records with a field list decode through `decodeRecord` wherever they nest.
template <JsonRecord Record>
struct JsonDecoder<Record> {
  static Decoded<Record> decode(const JsonView& json) { return decodeRecord<Record>(json); }
};

// The JSON form of a record, timestamp, list, optional or plain value.
template <class Value>
nlohmann::ordered_json encodeValue(const Value& value);

template <JsonRecord Record>
nlohmann::ordered_json encodeRecord(const Record& record) {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  const auto put = [&](const auto& field) {
    const auto& value = record.*field.member;
    using Value = std::remove_cvref_t<decltype(value)>;
    if constexpr (json_record::isOptional<Value> || std::is_same_v<Value, nlohmann::json>) {
      const bool hasValue = [&] {
        if constexpr (std::is_same_v<Value, nlohmann::json>) {
          return !value.is_null();
        } else {
          return value.has_value();
        }
      }();
      if (!hasValue && JsonRecordFields<Record>::policy == JsonRecordPolicy::lenient) return;
    }
    object[std::string(field.key)] = encodeValue(value);
  };
  std::apply([&](const auto&... fields) { (put(fields), ...); }, JsonRecordFields<Record>::fields);
  return object;
}

template <class Value>
nlohmann::ordered_json encodeValue(const Value& value) {
  if constexpr (JsonRecord<Value>) {
    return encodeRecord(value);
  } else if constexpr (std::is_same_v<Value, Date>) {
    return value.secondsSince2001();
  } else if constexpr (std::is_same_v<Value, nlohmann::json>) {
    return nlohmann::ordered_json(value);
  } else if constexpr (json_record::isOptional<Value>) {
    return value ? encodeValue(*value) : nlohmann::ordered_json(nullptr);
  } else if constexpr (std::is_same_v<Value, std::vector<std::uint8_t>>) {
    return base64Encode(value);
  } else if constexpr (json_record::isVector<Value>) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const auto& item : value) array.push_back(encodeValue(item));
    return array;
  } else if constexpr (json_record::isMap<Value>) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (const auto& [key, item] : value) {
      if constexpr (std::is_same_v<typename Value::key_type, std::string>) {
        object[key] = encodeValue(item);
      } else {
        object[std::to_string(key)] = encodeValue(item);
      }
    }
    return object;
  } else {
    return nlohmann::ordered_json(value);
  }
}

}  // namespace kovi
