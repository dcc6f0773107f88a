#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlFocusMockExam.h"
#include "KoviKit/purrl/PurrlFocusStudyStats.h"
#include "KoviKit/purrl/PurrlRecordCoding.h"

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
struct PurrlRecordFields<PurrlFocusMockPlan> {
  using R = PurrlFocusMockPlan;
  static constexpr auto fields =
      std::tuple{purrlField("id", &R::id),         purrlField("exam", &R::exam), purrlField("label", &R::label),
                 purrlField("repeat", &R::repeat), purrlField("day", &R::day),   purrlField("minute", &R::minute)};
};

template <>
struct PurrlRecordFields<PurrlFocusMockDate> {
  using R = PurrlFocusMockDate;
  static constexpr auto fields =
      std::tuple{purrlField("planId", &R::planId), purrlField("exam", &R::exam), purrlField("label", &R::label),
                 purrlField("day", &R::day),       purrlField("minute", &R::minute), purrlField("at", &R::at)};
};

template <>
struct PurrlRecordFields<PurrlFocusMockPastDate> {
  using R = PurrlFocusMockPastDate;
  static constexpr auto fields = std::tuple_cat(
      PurrlRecordFields<PurrlFocusMockDate>::fields,
      std::tuple{purrlField("runId", &R::runId), purrlField("net", &R::net)});
};

template <>
struct PurrlRecordFields<PurrlFocusMockFriendDay> {
  using R = PurrlFocusMockFriendDay;
  static constexpr auto fields =
      std::tuple{purrlField("day", &R::day), purrlField("exam", &R::exam), purrlField("people", &R::people)};
};

template <>
struct PurrlRecordFields<PurrlFocusMockCalendar> {
  using R = PurrlFocusMockCalendar;
  static constexpr auto fields =
      std::tuple{purrlField("now", &R::now), purrlField("plans", &R::plans), purrlField("upcoming", &R::upcoming),
                 purrlField("past", &R::past), purrlField("friends", &R::friends)};
};

template <>
struct PurrlRecordFields<PurrlFocusMockNext> {
  using R = PurrlFocusMockNext;
  static constexpr auto fields =
      std::tuple_cat(PurrlRecordFields<PurrlFocusMockDate>::fields, std::tuple{purrlField("started", &R::started)});
};

}  // namespace kovi
