#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KoviKit/working/WorkingSummaryText.h"

namespace kovi {

struct WorkingSummaryValue;

// One line of the consent summary: a text and the values that fill its
// placeholders, kept apart so the same line renders in every language.
struct WorkingSummaryLine {
  const WorkingSummaryText* text = nullptr;
  std::vector<WorkingSummaryValue> values;

  // The text in `language` with {0}, {1}, … replaced by the formatted values.
  std::string render(WorkingSummaryLanguage language) const;
  bool operator==(const WorkingSummaryLine&) const;
};

// A value inside a line, formatted when the line is rendered.
struct WorkingSummaryValue {
  enum class Kind {
    duration,  // `number` seconds
    count,     // `number`
    percent,   // `number` basis points
    instant,   // `number` Unix milliseconds, shown in the time zone `text`
    text,      // `text` as it is (a time zone name)
    phrases,   // `phrases` rendered and joined with ", "
  };
  Kind kind = Kind::text;
  std::int64_t number = 0;
  std::string text;
  std::vector<WorkingSummaryLine> phrases;

  static WorkingSummaryValue duration(std::int64_t seconds);
  static WorkingSummaryValue count(std::int64_t count);
  static WorkingSummaryValue percent(std::int64_t basisPoints);
  static WorkingSummaryValue instant(std::int64_t unixMillis, std::string zoneID);
  static WorkingSummaryValue verbatim(std::string text);
  static WorkingSummaryValue phraseList(std::vector<WorkingSummaryLine> phrases);

  std::string render(WorkingSummaryLanguage language) const;
  bool operator==(const WorkingSummaryValue&) const = default;
};

}  // namespace kovi
