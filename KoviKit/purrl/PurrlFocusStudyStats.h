#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlFocusMockExam.h"
#include "KoviKit/purrl/PurrlFocusStudyLog.h"
#include "KoviKit/purrl/PurrlFocusSubject.h"

namespace kovi {

// The study statistics the service computes for a person. Days are local day
// strings ("2026-03-14").
struct PurrlFocusStudyStats {
  struct Today {
    std::string day;
    int minutes = 0;
    int questions = 0;
    bool operator==(const Today&) const = default;
  };

  // One subject's (or one mock paper's) share of the week. `exam` tags the
  // rows of runs spent on a mock paper.
  struct SubjectWeek {
    std::optional<std::string> subject;
    std::optional<std::string> label;
    std::optional<PurrlFocusMockExam> exam;
    int minutes = 0;
    int questions = 0;
    int runs = 0;
    bool operator==(const SubjectWeek&) const = default;
  };

  struct Week {
    std::string start;
    std::string end;
    int minutes = 0;
    int questions = 0;
    std::vector<SubjectWeek> subjects;
    bool operator==(const Week&) const = default;
  };

  struct HeatDay {
    std::string day;
    int minutes = 0;
    int questions = 0;
    bool operator==(const HeatDay&) const = default;
  };

  // A heat map of study days.
  struct Heat {
    std::string from;
    std::string to;
    std::vector<HeatDay> days;
    bool operator==(const Heat&) const = default;
  };

  // One mock exam taken.
  struct Mock {
    std::string runId;
    PurrlFocusMockExam exam = PurrlFocusMockExam::tyt;
    std::string day;
    Date startedAt;
    std::optional<Date> endedAt;
    std::optional<std::string> endReason;
    std::optional<PurrlFocusStudyLog::Result> result;
    bool operator==(const Mock&) const = default;
  };

  struct Friend {
    std::string id;
    std::string name;
    bool operator==(const Friend&) const = default;
  };

  // The person's exam countdown, with the friends preparing for it.
  struct Exam {
    PurrlFocusExamKind exam = PurrlFocusExamKind::other;
    std::optional<std::string> label;
    std::string day;
    int daysLeft = 0;
    std::vector<Friend> friends;
    bool operator==(const Exam&) const = default;
  };

  // The exam week the person has planned, first and last day inclusive.
  struct ExamWeek {
    std::string startDay;
    std::string endDay;
    bool operator==(const ExamWeek&) const = default;
  };

  Date now;
  Today today;
  Week week;
  Heat heat;
  std::vector<Mock> mocks;
  std::optional<Exam> exam;
  std::optional<ExamWeek> examWeek;
  bool operator==(const PurrlFocusStudyStats&) const = default;
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::Today> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::Today;
  static constexpr auto fields =
      std::tuple{field("day", &R::day), field("minutes", &R::minutes), field("questions", &R::questions)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::SubjectWeek> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::SubjectWeek;
  static constexpr auto fields =
      std::tuple{field("subject", &R::subject), field("label", &R::label), field("exam", &R::exam),
                 field("minutes", &R::minutes), field("questions", &R::questions), field("runs", &R::runs)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::Week> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::Week;
  static constexpr auto fields =
      std::tuple{field("start", &R::start), field("end", &R::end), field("minutes", &R::minutes),
                 field("questions", &R::questions), field("subjects", &R::subjects)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::HeatDay> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::HeatDay;
  static constexpr auto fields =
      std::tuple{field("day", &R::day), field("minutes", &R::minutes), field("questions", &R::questions)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::Heat> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::Heat;
  static constexpr auto fields =
      std::tuple{field("from", &R::from), field("to", &R::to), field("days", &R::days)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::Mock> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::Mock;
  static constexpr auto fields =
      std::tuple{field("runId", &R::runId),         field("exam", &R::exam),
                 field("day", &R::day),             field("startedAt", &R::startedAt),
                 field("endedAt", &R::endedAt),     field("endReason", &R::endReason),
                 field("result", &R::result)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::Friend> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::Friend;
  static constexpr auto fields = std::tuple{field("id", &R::id), field("name", &R::name)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::Exam> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::Exam;
  static constexpr auto fields =
      std::tuple{field("exam", &R::exam), field("label", &R::label), field("day", &R::day),
                 field("daysLeft", &R::daysLeft), field("friends", &R::friends)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats::ExamWeek> : LenientJsonRecord {
  using R = PurrlFocusStudyStats::ExamWeek;
  static constexpr auto fields = std::tuple{field("startDay", &R::startDay), field("endDay", &R::endDay)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyStats> : LenientJsonRecord {
  using R = PurrlFocusStudyStats;
  static constexpr auto fields =
      std::tuple{field("now", &R::now),     field("today", &R::today), field("week", &R::week),
                 field("heat", &R::heat),   field("mocks", &R::mocks), field("exam", &R::exam),
                 field("examWeek", &R::examWeek)};
};

}  // namespace kovi
