#pragma once

// JSON coding of plain working records from one field list per record, so the
// decoder and the encoder can never disagree on a key or its order:
//
//   template <> struct RecordFields<WorkingRules::Pomodoro> {
//     static constexpr auto fields = std::tuple{
//         field("workSeconds", &WorkingRules::Pomodoro::workSeconds),
//         field("breakSeconds", &WorkingRules::Pomodoro::breakSeconds)};
//   };
//
// Optional members decode from null or an absent key and encode as null; a
// key outside the list fails decoding.

#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include "KoviKit/foundation/Json.h"

namespace kovi::workingcoding {

template <class Record, class Value>
struct RecordField {
  std::string_view key;
  Value Record::*member;
};

template <class Record, class Value>
constexpr RecordField<Record, Value> field(std::string_view key, Value Record::*member) {
  return {key, member};
}

template <class Record>
struct RecordFields;

template <class Record>
concept CodedRecord = requires { RecordFields<Record>::fields; };

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;

template <class Value>
Decoded<Value> decodeMember(const JsonView& json, std::string_view key) {
  if constexpr (isOptional<Value>) {
    return json.template getOptional<typename Value::value_type>(key);
  } else {
    return json.template get<Value>(key);
  }
}

template <CodedRecord Record>
bool isRecordKey(std::string_view key) {
  return std::apply([&](const auto&... entries) { return ((entries.key == key) || ...); },
                    RecordFields<Record>::fields);
}

// Every field of `Record`, in declared order; a key the record does not know
// and the first field that fails are errors.
template <CodedRecord Record>
Decoded<Record> decodeRecord(const JsonView& json) {
  if (auto object = json.requireObject(); !object) return std::unexpected(object.error());
  for (const auto& [key, value] : json.json().items()) {
    if (!isRecordKey<Record>(key)) return std::unexpected(json.child(key, value).error("unknown key"));
  }
  Record record{};
  std::optional<DecodeError> failure;
  auto decodeOne = [&](const auto& entry) {
    if (failure) return;
    using Value = std::remove_cvref_t<decltype(record.*(entry.member))>;
    auto value = decodeMember<Value>(json, entry.key);
    if (value) {
      record.*(entry.member) = std::move(*value);
    } else {
      failure = std::move(value.error());
    }
  };
  std::apply([&](const auto&... entries) { (decodeOne(entries), ...); }, RecordFields<Record>::fields);
  if (failure) return std::unexpected(std::move(*failure));
  return record;
}

template <class Value>
nlohmann::ordered_json encodeValue(const Value& value);

template <CodedRecord Record>
nlohmann::ordered_json encodeRecord(const Record& record) {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  std::apply([&](const auto&... entries) { ((object[std::string(entries.key)] = encodeValue(record.*(entries.member))), ...); },
             RecordFields<Record>::fields);
  return object;
}

template <class Value>
nlohmann::ordered_json encodeValue(const Value& value) {
  if constexpr (CodedRecord<Value>) {
    return encodeRecord(value);
  } else if constexpr (isOptional<Value>) {
    return value ? encodeValue(*value) : nlohmann::ordered_json(nullptr);
  } else if constexpr (isVector<Value>) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const auto& item : value) array.push_back(encodeValue(item));
    return array;
  } else {
    return nlohmann::ordered_json(value);
  }
}

}  // namespace kovi::workingcoding

namespace kovi {

// Records with a field list decode through `decodeRecord` wherever they nest.
template <workingcoding::CodedRecord Record>
struct JsonDecoder<Record> {
  static Decoded<Record> decode(const JsonView& json) { return workingcoding::decodeRecord<Record>(json); }
};

}  // namespace kovi
