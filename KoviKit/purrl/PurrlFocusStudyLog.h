#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlFocusMockExam.h"
#include "KoviKit/purrl/PurrlRecordCoding.h"

namespace kovi {

// One section's result in a mock paper.
struct PurrlFocusMockSection {
  std::string id;
  int correct = 0;
  int wrong = 0;
  int blank = 0;
  double net = 0;
  bool operator==(const PurrlFocusMockSection&) const = default;
};

// What a person logs for a finished run. `exam` tags a run spent on a mock
// paper with the paper it was.
struct PurrlFocusStudyLog {
  struct Result {
    std::vector<PurrlFocusMockSection> sections;
    double net = 0;  // the paper's total net
    bool operator==(const Result&) const = default;

    // The result of `exam` from the answers a person counted, before the
    // service has scored it: each section's net and the total. Every section
    // must belong to the paper, appear once, and account for all of its
    // questions (correct + wrong + blank); sections not taken may be left out.
    // The failure is a short English reason naming the section.
    static std::expected<Result, std::string> scored(PurrlFocusMockExam exam,
                                                     const std::vector<PurrlFocusMockSection>& answers);
  };

  std::optional<std::string> subject;  // a subject raw value
  std::optional<std::string> label;    // the person's own name for a custom subject
  int questions = 0;
  std::optional<PurrlFocusMockExam> exam;
  std::optional<Result> result;
  bool operator==(const PurrlFocusStudyLog&) const = default;
};

template <>
struct PurrlRecordFields<PurrlFocusMockSection> {
  using R = PurrlFocusMockSection;
  static constexpr auto fields = std::tuple{purrlField("id", &R::id), purrlField("correct", &R::correct),
                                            purrlField("wrong", &R::wrong), purrlField("blank", &R::blank),
                                            purrlField("net", &R::net)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyLog::Result> {
  using R = PurrlFocusStudyLog::Result;
  static constexpr auto fields = std::tuple{purrlField("sections", &R::sections), purrlField("net", &R::net)};
};

template <>
struct PurrlRecordFields<PurrlFocusStudyLog> {
  using R = PurrlFocusStudyLog;
  static constexpr auto fields =
      std::tuple{purrlField("subject", &R::subject), purrlField("label", &R::label),
                 purrlField("questions", &R::questions), purrlField("exam", &R::exam),
                 purrlField("result", &R::result)};
};

}  // namespace kovi
