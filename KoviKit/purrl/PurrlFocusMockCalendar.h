#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlFocusMockExam.h"
#include "KoviKit/purrl/PurrlFocusStudyStats.h"

namespace kovi {

enum class PurrlFocusMockRepeat { once, weekly };

template <>
struct EnumNames<PurrlFocusMockRepeat> {
  static constexpr std::array table{
      std::pair{PurrlFocusMockRepeat::once, std::string_view("once")},
      std::pair{PurrlFocusMockRepeat::weekly, std::string_view("weekly")},
  };
};

// A mock exam the person has planned: a paper on a day at a minute of the
// day, once or every week from that day on.
struct PurrlFocusMockPlan {
  std::string id;
  PurrlFocusMockExam exam = PurrlFocusMockExam::tyt;
  std::optional<std::string> label;
  PurrlFocusMockRepeat repeat = PurrlFocusMockRepeat::once;
  std::string day;
  int minute = 0;
  bool operator==(const PurrlFocusMockPlan&) const = default;
};

// One planned paper date.
struct PurrlFocusMockDate {
  std::string planId;
  PurrlFocusMockExam exam = PurrlFocusMockExam::tyt;
  std::optional<std::string> label;
  std::string day;
  int minute = 0;
  UnixMillis at = 0;  // the planned start
  bool operator==(const PurrlFocusMockDate&) const = default;
};

// A planned paper date that has passed, with the run it was taken in and its net.
struct PurrlFocusMockPastDate : PurrlFocusMockDate {
  std::optional<std::string> runId;
  std::optional<double> net;
  bool operator==(const PurrlFocusMockPastDate&) const = default;
};

// Friends taking the same paper on the same day.
struct PurrlFocusMockFriendDay {
  std::string day;
  PurrlFocusMockExam exam = PurrlFocusMockExam::tyt;
  std::vector<PurrlFocusStudyStats::Friend> people;
  bool operator==(const PurrlFocusMockFriendDay&) const = default;
};

// The mock-exam calendar the service returns.
struct PurrlFocusMockCalendar {
  Date now;
  std::vector<PurrlFocusMockPlan> plans;
  std::vector<PurrlFocusMockDate> upcoming;
  std::vector<PurrlFocusMockPastDate> past;
  std::vector<PurrlFocusMockFriendDay> friends;
  bool operator==(const PurrlFocusMockCalendar&) const = default;
};

// The next planned paper, and whether its run has started.
struct PurrlFocusMockNext : PurrlFocusMockDate {
  bool started = false;
  bool operator==(const PurrlFocusMockNext&) const = default;

  // How early and how late a planned paper can be started. The window is
  // lopsided on purpose: a little warm-up before, a generous hour after.
  static constexpr UnixMillis kEarliestBeforeMillis = 900'000;    // 15 minutes
  static constexpr UnixMillis kLatestAfterMillis = 3'600'000;     // 1 hour

  // Whether the paper can be started at `now` (Unix milliseconds): not yet
  // started, and from 15 minutes before `at` to one hour after it, both ends
  // included.
  bool canStart(UnixMillis now) const;
};

template <>
struct JsonRecordFields<PurrlFocusMockPlan> : LenientJsonRecord {
  using R = PurrlFocusMockPlan;
  static constexpr auto fields =
      std::tuple{field("id", &R::id),         field("exam", &R::exam), field("label", &R::label),
                 field("repeat", &R::repeat), field("day", &R::day),   field("minute", &R::minute)};
};

template <>
struct JsonRecordFields<PurrlFocusMockDate> : LenientJsonRecord {
  using R = PurrlFocusMockDate;
  static constexpr auto fields =
      std::tuple{field("planId", &R::planId), field("exam", &R::exam), field("label", &R::label),
                 field("day", &R::day),       field("minute", &R::minute), field("at", &R::at)};
};

template <>
struct JsonRecordFields<PurrlFocusMockPastDate> : LenientJsonRecord {
  using R = PurrlFocusMockPastDate;
  static constexpr auto fields = std::tuple_cat(
      JsonRecordFields<PurrlFocusMockDate>::fields,
      std::tuple{field("runId", &R::runId), field("net", &R::net)});
};

template <>
struct JsonRecordFields<PurrlFocusMockFriendDay> : LenientJsonRecord {
  using R = PurrlFocusMockFriendDay;
  static constexpr auto fields =
      std::tuple{field("day", &R::day), field("exam", &R::exam), field("people", &R::people)};
};

template <>
struct JsonRecordFields<PurrlFocusMockCalendar> : LenientJsonRecord {
  using R = PurrlFocusMockCalendar;
  static constexpr auto fields =
      std::tuple{field("now", &R::now), field("plans", &R::plans), field("upcoming", &R::upcoming),
                 field("past", &R::past), field("friends", &R::friends)};
};

template <>
struct JsonRecordFields<PurrlFocusMockNext> : LenientJsonRecord {
  using R = PurrlFocusMockNext;
  static constexpr auto fields =
      std::tuple_cat(JsonRecordFields<PurrlFocusMockDate>::fields, std::tuple{field("started", &R::started)});
};

}  // namespace kovi
