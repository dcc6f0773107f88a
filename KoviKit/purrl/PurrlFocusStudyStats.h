#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlFocusMockExam.h"
#include "KoviKit/purrl/PurrlFocusStudyLog.h"
#include "KoviKit/purrl/PurrlFocusSubject.h"
#include "KoviKit/purrl/PurrlRecordCoding.h"

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
struct PurrlRecordFields<PurrlFocusStudyStats::Today> {
  using R = PurrlFocusStudyStats::Today;
  static constexpr auto fields =
      std::tuple{purrlField("day", &R::day), purrlField("minutes", &R::minutes), purrlField("questions", &R::questions)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::SubjectWeek> {
  using R = PurrlFocusStudyStats::SubjectWeek;
  static constexpr auto fields =
      std::tuple{purrlField("subject", &R::subject), purrlField("label", &R::label), purrlField("exam", &R::exam),
                 purrlField("minutes", &R::minutes), purrlField("questions", &R::questions), purrlField("runs", &R::runs)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::Week> {
  using R = PurrlFocusStudyStats::Week;
  static constexpr auto fields =
      std::tuple{purrlField("start", &R::start), purrlField("end", &R::end), purrlField("minutes", &R::minutes),
                 purrlField("questions", &R::questions), purrlField("subjects", &R::subjects)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::HeatDay> {
  using R = PurrlFocusStudyStats::HeatDay;
  static constexpr auto fields =
      std::tuple{purrlField("day", &R::day), purrlField("minutes", &R::minutes), purrlField("questions", &R::questions)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::Heat> {
  using R = PurrlFocusStudyStats::Heat;
  static constexpr auto fields =
      std::tuple{purrlField("from", &R::from), purrlField("to", &R::to), purrlField("days", &R::days)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::Mock> {
  using R = PurrlFocusStudyStats::Mock;
  static constexpr auto fields =
      std::tuple{purrlField("runId", &R::runId),         purrlField("exam", &R::exam),
                 purrlField("day", &R::day),             purrlField("startedAt", &R::startedAt),
                 purrlField("endedAt", &R::endedAt),     purrlField("endReason", &R::endReason),
                 purrlField("result", &R::result)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::Friend> {
  using R = PurrlFocusStudyStats::Friend;
  static constexpr auto fields = std::tuple{purrlField("id", &R::id), purrlField("name", &R::name)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::Exam> {
  using R = PurrlFocusStudyStats::Exam;
  static constexpr auto fields =
      std::tuple{purrlField("exam", &R::exam), purrlField("label", &R::label), purrlField("day", &R::day),
                 purrlField("daysLeft", &R::daysLeft), purrlField("friends", &R::friends)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats::ExamWeek> {
  using R = PurrlFocusStudyStats::ExamWeek;
  static constexpr auto fields = std::tuple{purrlField("startDay", &R::startDay), purrlField("endDay", &R::endDay)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyStats> {
  using R = PurrlFocusStudyStats;
  static constexpr auto fields =
      std::tuple{purrlField("now", &R::now),     purrlField("today", &R::today), purrlField("week", &R::week),
                 purrlField("heat", &R::heat),   purrlField("mocks", &R::mocks), purrlField("exam", &R::exam),
                 purrlField("examWeek", &R::examWeek)};
};

}  // namespace kovi
