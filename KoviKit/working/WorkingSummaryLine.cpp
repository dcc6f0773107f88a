#include "KoviKit/working/WorkingSummaryLine.h"

#include <unicode/msgfmt.h>

#include "KoviKit/foundation/Trap.h"

#include "KoviKit/working/WorkingSummaryFormat.h"

namespace kovi {

bool WorkingSummaryLine::operator==(const WorkingSummaryLine& other) const {
  return text == other.text && values == other.values;
}

namespace {

// A text whose wording follows a count ("1 time", "2 times") is an ICU
// message pattern, "{0, plural, one {# time} other {# times}}", so each
// language's own plural rules choose the form. Counts go in as numbers for
// the rules to read; every other value goes in already formatted.
std::string renderWithPlurals(std::string_view pattern, const std::vector<WorkingSummaryValue>& values,
                              WorkingSummaryLanguage language) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::MessageFormat format(icu::UnicodeString::fromUTF8(icu::StringPiece(pattern.data(),
                                                                                 static_cast<int32_t>(pattern.size()))),
                                  icu::Locale(std::string(workingSummaryLocale(language)).c_str()), status);
  std::vector<icu::Formattable> arguments;
  arguments.reserve(values.size());
  for (const WorkingSummaryValue& value : values) {
    if (value.kind == WorkingSummaryValue::Kind::count) {
      arguments.emplace_back(static_cast<int64_t>(value.number));
    } else {
      arguments.emplace_back(icu::UnicodeString::fromUTF8(value.render(language)));
    }
  }
  icu::UnicodeString rendered;
  icu::FieldPosition position;
  format.format(arguments.data(), static_cast<int32_t>(arguments.size()), rendered, position, status);
  // The patterns are this program's own constants; one ICU cannot read is a
  // programming error.
  if (U_FAILURE(status)) trap("a summary text is not a valid ICU message pattern");
  std::string text;
  rendered.toUTF8String(text);
  return text;
}

}  // namespace

std::string WorkingSummaryLine::render(WorkingSummaryLanguage language) const {
  const std::string_view pattern = text->in(language);
  if (pattern.find(", plural,") != std::string_view::npos) return renderWithPlurals(pattern, values, language);
  std::string out;
  out.reserve(pattern.size() + 16);
  for (std::size_t index = 0; index < pattern.size(); ++index) {
    // A placeholder is "{" digit "}"; texts hold at most ten values.
    const bool placeholder = pattern[index] == '{' && index + 2 < pattern.size() && pattern[index + 2] == '}' &&
                             pattern[index + 1] >= '0' && pattern[index + 1] <= '9';
    if (!placeholder) {
      out += pattern[index];
      continue;
    }
    const auto position = static_cast<std::size_t>(pattern[index + 1] - '0');
    if (position < values.size()) out += values[position].render(language);
    index += 2;
  }
  return out;
}

namespace {

WorkingSummaryValue makeValue(WorkingSummaryValue::Kind kind, std::int64_t number, std::string text = {},
                              std::vector<WorkingSummaryLine> phrases = {}) {
  WorkingSummaryValue value;
  value.kind = kind;
  value.number = number;
  value.text = std::move(text);
  value.phrases = std::move(phrases);
  return value;
}

}  // namespace

WorkingSummaryValue WorkingSummaryValue::duration(std::int64_t seconds) { return makeValue(Kind::duration, seconds); }

WorkingSummaryValue WorkingSummaryValue::count(std::int64_t count) { return makeValue(Kind::count, count); }

WorkingSummaryValue WorkingSummaryValue::percent(std::int64_t basisPoints) {
  return makeValue(Kind::percent, basisPoints);
}

WorkingSummaryValue WorkingSummaryValue::instant(std::int64_t unixMillis, std::string zoneID) {
  return makeValue(Kind::instant, unixMillis, std::move(zoneID));
}

WorkingSummaryValue WorkingSummaryValue::verbatim(std::string text) { return makeValue(Kind::text, 0, std::move(text)); }

WorkingSummaryValue WorkingSummaryValue::phraseList(std::vector<WorkingSummaryLine> phrases) {
  return makeValue(Kind::phrases, 0, {}, std::move(phrases));
}

std::string WorkingSummaryValue::render(WorkingSummaryLanguage language) const {
  switch (kind) {
    case Kind::duration: return formatWorkingDuration(number, language);
    case Kind::count: return formatWorkingCount(number, language);
    case Kind::percent: return formatWorkingPercent(number, language);
    case Kind::instant: return formatWorkingInstant(number, text, language);
    case Kind::text: return text;
    case Kind::phrases: break;
  }
  std::string joined;
  for (const WorkingSummaryLine& phrase : phrases) {
    if (!joined.empty()) joined += ", ";
    joined += phrase.render(language);
  }
  return joined;
}

}  // namespace kovi
