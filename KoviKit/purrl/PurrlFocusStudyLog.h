#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/purrl/PurrlFocusMockExam.h"

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
struct JsonRecordFields<PurrlFocusMockSection> : LenientJsonRecord {
  using R = PurrlFocusMockSection;
  static constexpr auto fields = std::tuple{field("id", &R::id), field("correct", &R::correct),
                                            field("wrong", &R::wrong), field("blank", &R::blank),
                                            field("net", &R::net)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyLog::Result> : LenientJsonRecord {
  using R = PurrlFocusStudyLog::Result;
  static constexpr auto fields = std::tuple{field("sections", &R::sections), field("net", &R::net)};
};

template <>
struct JsonRecordFields<PurrlFocusStudyLog> : LenientJsonRecord {
  using R = PurrlFocusStudyLog;
  static constexpr auto fields =
      std::tuple{field("subject", &R::subject), field("label", &R::label),
                 field("questions", &R::questions), field("exam", &R::exam),
                 field("result", &R::result)};
};

}  // namespace kovi
