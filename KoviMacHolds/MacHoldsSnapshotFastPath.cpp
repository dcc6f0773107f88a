#include "KoviMacHolds/MacHoldsSnapshotFastPath.h"

#include <simdjson.h>

#include <bitset>
#include <cmath>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <limits>
#include <vector>

namespace kovi::holds {
namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

// Integers as the strict decoder reads them: a JSON integer, or a number with
// an integral value (1.0), inside the range of T.
template <class T>
bool readInteger(element value, T& out) {
  std::int64_t whole = 0;
  if (value.type() == element_type::INT64) {
    whole = value.get_int64().value_unsafe();
  } else if (value.type() == element_type::DOUBLE) {
    const double number = value.get_double().value_unsafe();
    if (!std::isfinite(number) || std::trunc(number) != number || number < -9223372036854775808.0 ||
        number >= 9223372036854775808.0) {
      return false;
    }
    whole = static_cast<std::int64_t>(number);
  } else {
    return false;  // an unsigned beyond int64 or not a number: the strict decoder says which
  }
  if (whole < std::numeric_limits<T>::min() || whole > std::numeric_limits<T>::max()) return false;
  out = static_cast<T>(whole);
  return true;
}

bool readString(element value, std::string& out) {
  if (value.type() != element_type::STRING) return false;
  out = std::string(value.get_string().value_unsafe());
  return true;
}

bool readBool(element value, bool& out) {
  if (value.type() != element_type::BOOL) return false;
  out = value.get_bool().value_unsafe();
  return true;
}

bool readNumber(element value, double& out) {
  switch (value.type()) {
    case element_type::INT64: out = static_cast<double>(value.get_int64().value_unsafe()); return true;
    case element_type::UINT64: out = static_cast<double>(value.get_uint64().value_unsafe()); return true;
    case element_type::DOUBLE: out = value.get_double().value_unsafe(); return true;
    default: return false;
  }
}

template <class T, class Read>
auto optional(std::optional<T>& target, Read read) {
  return [&target, read](element value) {
    T decoded{};
    if (!read(value, decoded)) return false;
    target = std::move(decoded);
    return true;
  };
}

struct Field {
  std::string_view key;
  bool required;
  std::function<bool(element)> read;
};

// Reads an object of known keys. A null optional counts as absent; a missing
// required key, a repeated key or a value of the wrong kind fails. So does an
// unknown key: the strict decoder ignores it, but only after checking how
// deep its value nests and that no key repeats inside it, which this reader
// does not do.
bool readObject(element value, std::initializer_list<Field> fields) {
  if (value.type() != element_type::OBJECT) return false;
  std::bitset<16> seen;
  const simdjson::dom::object object = value.get_object().value_unsafe();
  for (const auto field : object) {
    const auto known = std::ranges::find(fields, field.key, &Field::key);
    if (known == fields.end()) return false;
    const auto index = static_cast<std::size_t>(known - fields.begin());
    if (seen[index]) return false;
    seen[index] = true;
    if (field.value.type() == element_type::NULL_VALUE && !known->required) continue;
    if (!known->read(field.value)) return false;
  }
  for (std::size_t index = 0; index < fields.size(); ++index) {
    if ((fields.begin() + index)->required && !seen[index]) return false;
  }
  return true;
}

bool readExamWeek(element value, MacHoldsSnapshot::ExamWeek& week) {
  return readObject(value, {
                               {"startDay", true, [&](element v) { return readString(v, week.startDay); }},
                               {"endDay", true, [&](element v) { return readString(v, week.endDay); }},
                               {"days", true, [&](element v) { return readInteger(v, week.days); }},
                               {"firstMinute", true, [&](element v) { return readInteger(v, week.firstMinute); }},
                               {"secondMinute", true, [&](element v) { return readInteger(v, week.secondMinute); }},
                               {"blockMinutes", true, [&](element v) { return readInteger(v, week.blockMinutes); }},
                               {"sleepStart", false, optional(week.sleepStart, readInteger<int>)},
                               {"sleepEnd", false, optional(week.sleepEnd, readInteger<int>)},
                               {"socialMinutes", true, [&](element v) { return readInteger(v, week.socialMinutes); }},
                               {"strictness", true, [&](element v) { return readString(v, week.strictness); }},
                           });
}

bool readSleep(element value, MacHoldsSnapshot::Sleep& sleep) {
  return readObject(value, {
                               {"startMinute", true, [&](element v) { return readInteger(v, sleep.startMinute); }},
                               {"endMinute", true, [&](element v) { return readInteger(v, sleep.endMinute); }},
                               {"strictness", true, [&](element v) { return readString(v, sleep.strictness); }},
                           });
}

bool readAllowance(element value, MacFocus4Allowance& allowance) {
  return readObject(value, {
                               {"day", true, [&](element v) { return readString(v, allowance.day); }},
                               {"usedMS", true, [&](element v) { return readInteger(v, allowance.usedMS); }},
                               {"since", false, optional(allowance.since, readInteger<std::int64_t>)},
                           });
}

bool readSnapshot(element value, MacHoldsSnapshot& snapshot) {
  double syncedAt = 0;
  const bool read = readObject(
      value, {
                 {"version", true, [&](element v) { return readInteger(v, snapshot.version); }},
                 {"stopped", true, [&](element v) { return readBool(v, snapshot.stopped); }},
                 {"accountScope", false, optional(snapshot.accountScope, readString)},
                 {"syncedAt", true, [&](element v) { return readNumber(v, syncedAt); }},
                 {"examWeek", false, optional(snapshot.examWeek, readExamWeek)},
                 {"sleep", false, optional(snapshot.sleep, readSleep)},
                 {"keepCommunication", true, [&](element v) { return readBool(v, snapshot.keepCommunication); }},
                 {"allowance", false, optional(snapshot.allowance, readAllowance)},
             });
  snapshot.syncedAt = Date::fromSecondsSince2001(syncedAt);
  return read;
}

}  // namespace

std::optional<MacHoldsSnapshot> decodeMacHoldsSnapshotFast(std::string_view bytes) {
  // One parser and one padded buffer per thread, reused: simdjson reads a
  // little past the end of its input.
  thread_local simdjson::dom::parser parser;
  thread_local std::vector<char> padded;
  padded.resize(bytes.size() + simdjson::SIMDJSON_PADDING);
  std::memcpy(padded.data(), bytes.data(), bytes.size());

  element document;
  if (parser.parse(padded.data(), bytes.size(), false).get(document) != simdjson::SUCCESS) return std::nullopt;
  MacHoldsSnapshot snapshot;
  if (!readSnapshot(document, snapshot) || snapshot.version != kMacHoldsSnapshotVersion) return std::nullopt;
  return snapshot;
}

}  // namespace kovi::holds
