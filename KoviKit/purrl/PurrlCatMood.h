#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// The cat's mood. The order matters: petting moves a mood one step towards
// the front (`glowing`).
enum class PurrlCatMood { glowing, happy, content, bored, sulky, sleepy };

enum class PurrlCatMoodReason { night, missedKovi, away, quietDay, petted, keptKovi, busyDay, calm };

template <>
struct EnumNames<PurrlCatMood> {
  static constexpr std::array table{
      std::pair{PurrlCatMood::glowing, std::string_view("glowing")},
      std::pair{PurrlCatMood::happy, std::string_view("happy")},
      std::pair{PurrlCatMood::content, std::string_view("content")},
      std::pair{PurrlCatMood::bored, std::string_view("bored")},
      std::pair{PurrlCatMood::sulky, std::string_view("sulky")},
      std::pair{PurrlCatMood::sleepy, std::string_view("sleepy")},
  };
};

template <>
struct EnumNames<PurrlCatMoodReason> {
  static constexpr std::array table{
      std::pair{PurrlCatMoodReason::night, std::string_view("night")},
      std::pair{PurrlCatMoodReason::missedKovi, std::string_view("missed_kovi")},
      std::pair{PurrlCatMoodReason::away, std::string_view("away")},
      std::pair{PurrlCatMoodReason::quietDay, std::string_view("quiet_day")},
      std::pair{PurrlCatMoodReason::petted, std::string_view("petted")},
      std::pair{PurrlCatMoodReason::keptKovi, std::string_view("kept_kovi")},
      std::pair{PurrlCatMoodReason::busyDay, std::string_view("busy_day")},
      std::pair{PurrlCatMoodReason::calm, std::string_view("calm")},
  };
};

// The facts of the moment the mood is computed from; never stored.
struct PurrlCatMoodInputs {
  int hour = 0;  // local hour of day, 0-23
  bool petted = false;
  int things = 0;  // things the person has done today
  bool keptRecently = false;
  bool missedRecently = false;
  int awayDays = 0;  // whole days since the person last came to the cat
  bool operator==(const PurrlCatMoodInputs&) const = default;
};

// A mood with the reason for it.
struct PurrlCatMoodResult {
  PurrlCatMood mood = PurrlCatMood::content;
  PurrlCatMoodReason reason = PurrlCatMoodReason::calm;
  bool operator==(const PurrlCatMoodResult&) const = default;
};

// The last computed mood, kept so widgets and the agent can show it. `day` is
// the local calendar day ("2026-03-14") the mood belongs to.
struct PurrlCatMoodSnapshot {
  PurrlCatMood mood = PurrlCatMood::content;
  PurrlCatMoodReason reason = PurrlCatMoodReason::calm;
  std::string day;
  Date updatedAt;
  bool operator==(const PurrlCatMoodSnapshot&) const = default;
};

template <>
struct JsonRecordFields<PurrlCatMoodSnapshot> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("mood", &PurrlCatMoodSnapshot::mood),
      field("reason", &PurrlCatMoodSnapshot::reason),
      field("day", &PurrlCatMoodSnapshot::day),
      field("updatedAt", &PurrlCatMoodSnapshot::updatedAt),
  };
};

}  // namespace kovi
