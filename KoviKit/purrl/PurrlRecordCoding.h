#pragma once

// The JSON form of the cat's and the study's records, written once per record
// as a list of (key, member) pairs from which both directions follow:
//
//   template <> struct PurrlRecordFields<PurrlCatGrowth::Next> {
//     static constexpr auto fields = std::tuple{
//         purrlField("level", &PurrlCatGrowth::Next::level), …};
//   };
//
// Decoding requires every non-optional key, treats an absent or null optional
// key as no value, ignores keys it does not know (a newer service may send
// more) and fails on an unknown enumeration value (the enumerations are
// closed). Encoding writes the keys in declared order and omits optional
// fields without a value. Timestamps (`Date`) travel as floating seconds since
// 2001-01-01T00:00:00Z, the service's default date coding.

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

template <class Record, class Value>
struct PurrlField {
  std::string_view key;
  Value Record::*member;
};

template <class Record, class Value>
constexpr PurrlField<Record, Value> purrlField(std::string_view key, Value Record::*member) {
  return {key, member};
}

template <class T>
struct PurrlRecordFields;

template <class T>
concept PurrlRecord = requires { PurrlRecordFields<T>::fields; };

namespace purrl_coding {

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class T>
struct IsVector : std::false_type {};
template <class T>
struct IsVector<std::vector<T>> : std::true_type {};

template <class T>
Decoded<T> decodeValue(const JsonView& json) {
  if constexpr (std::is_same_v<T, Date>) {
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

// `Owner` is `Record` or one of its bases: a record that extends another
// (the fields of X, then more) lists the base's fields first.
template <class Record, class Owner, class Value>
Decoded<void> decodeField(const JsonView& object, const PurrlField<Owner, Value>& field, Record& record) {
  if constexpr (IsOptional<Value>::value) {
    using Wrapped = typename Value::value_type;
    auto child = object.optionalMember(field.key);
    if (!child) return std::unexpected(child.error());
    if (!*child) {
      record.*field.member = std::nullopt;
      return {};
    }
    auto value = decodeValue<Wrapped>(**child);
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

}  // namespace purrl_coding

template <PurrlRecord T>
struct JsonDecoder<T> {
  static Decoded<T> decode(const JsonView& json) {
    if (auto object = json.requireObject(); !object) return std::unexpected(object.error());
    T record{};
    Decoded<void> outcome;
    std::apply(
        [&](const auto&... field) {
          // Stops at the first failing field so the error names it.
          ((outcome = outcome ? purrl_coding::decodeField(json, field, record) : outcome), ...);
        },
        PurrlRecordFields<T>::fields);
    if (!outcome) return std::unexpected(outcome.error());
    return record;
  }
};

// The JSON form of a record, enumeration, timestamp, list or plain value.
template <class T>
nlohmann::ordered_json purrlJson(const T& value) {
  if constexpr (PurrlRecord<T>) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    std::apply(
        [&](const auto&... field) {
          const auto put = [&](const auto& each) {
            const auto& member = value.*each.member;
            if constexpr (purrl_coding::IsOptional<std::remove_cvref_t<decltype(member)>>::value) {
              if (member) object[std::string(each.key)] = purrlJson(*member);
            } else {
              object[std::string(each.key)] = purrlJson(member);
            }
          };
          (put(field), ...);
        },
        PurrlRecordFields<T>::fields);
    return object;
  } else if constexpr (std::is_same_v<T, Date>) {
    return value.secondsSince2001();
  } else if constexpr (purrl_coding::IsVector<T>::value) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (const auto& element : value) array.push_back(purrlJson(element));
    return array;
  } else {
    return value;
  }
}

}  // namespace kovi
