#include "KoviKit/working/WorkingRuleSummary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "KoviKit/working/WorkingSummaryFormat.h"
#include "KoviKit/working/WorkingSummaryTexts.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Language = WorkingSummaryLanguage;
using Value = WorkingSummaryValue;
namespace text = workingsummary;

constexpr const char* kAllFixtures[] = {"daily-rules.json", "race-rules.json", "scheduled-rules.json",
                                        "first-to-target-rules.json"};

struct FormatCase { std::int64_t value; std::string turkish; std::string english; std::string french; };

void expectFormats(std::string (*format)(std::int64_t, Language), const std::vector<FormatCase>& cases) {
  for (const FormatCase& expected : cases) {
    SCOPED_TRACE(expected.value);
    EXPECT_EQ(format(expected.value, Language::turkish), expected.turkish);
    EXPECT_EQ(format(expected.value, Language::english), expected.english);
    EXPECT_EQ(format(expected.value, Language::french), expected.french);
  }
}

TEST(WorkingSummaryFormatTest, DurationsPercentagesAndCountsFollowTheLanguage) {
  expectFormats(formatWorkingDuration, {{9000, "2 saat 30 dakika", "2 h 30 min", "2 h 30 min"},
                                        {3661, "1 saat 1 dakika 1 saniye", "1 h 1 min 1 s", "1 h 1 min 1 s"},
                                        {31'622'400, "8.784 saat", "8,784 h", "8\u202f784 h"}});
  expectFormats(formatWorkingPercent, {{2500, "%25", "25%", "25\u00a0%"}, {3333, "%33,33", "33.33%", "33,33\u00a0%"}});
  expectFormats(formatWorkingCount, {{12345, "12.345", "12,345", "12\u202f345"}});
}

// The values a text refers to: "{1}" and "{1, plural, …}" both name value 1.
std::multiset<std::string> placeholders(std::string_view pattern) {
  std::multiset<std::string> found;
  for (std::size_t open = pattern.find('{'); open != std::string_view::npos; open = pattern.find('{', open + 1)) {
    const std::size_t end = pattern.find_first_not_of("0123456789", open + 1);
    if (end > open + 1) found.insert("{" + std::string(pattern.substr(open + 1, end - open - 1)) + "}");
  }
  return found;
}

// Counted words follow each language's plural rules.
TEST(WorkingRuleSummaryTest, CountedWordsFollowThePluralRules) {
  const struct {
    const WorkingSummaryText* text;
    std::vector<Value> values;
    Language language;
    std::string rendered;
  } cases[] = {
      {&text::limitedBypass, {Value::count(1), Value::duration(60)}, Language::english,
       "Limited protection unlock: 1 time per session, 1 min each time."},
      {&text::limitedBypass, {Value::count(2), Value::duration(60)}, Language::english,
       "Limited protection unlock: 2 times per session, 1 min each time."},
      {&text::requiredSomeDays, {Value::count(3), Value::count(1)}, Language::french,
       "Tu dois atteindre l’objectif 1 jour sur 3."},
      {&text::bypassFailsDay, {Value::count(1)}, Language::english,
       "If 1 violation is reached in one Kovi day, that day’s work does not count."},
  };
  for (const auto& example : cases) {
    SCOPED_TRACE(example.rendered);
    EXPECT_EQ((WorkingSummaryLine{example.text, example.values}.render(example.language)), example.rendered);
  }
}

// A translation that drops or invents a value would print a wrong line.
TEST(WorkingRuleSummaryTest, EveryTextHasTheSamePlaceholdersInEveryLanguage) {
  for (const WorkingSummaryText* line : text::all) {
    SCOPED_TRACE(line->turkish);
    EXPECT_FALSE(line->english.empty());
    EXPECT_FALSE(line->french.empty());
    EXPECT_EQ(placeholders(line->english), placeholders(line->turkish));
    EXPECT_EQ(placeholders(line->french), placeholders(line->turkish));
  }
}

TEST(WorkingRuleSummaryTest, EveryLineRendersCompletelyInEveryLanguage) {
  for (const char* file : kAllFixtures) {
    const auto lines = summarizeWorkingRules(testing::workingRules(file));
    EXPECT_EQ(lines.front().text, &text::consentBinding);
    for (const Language language : {Language::turkish, Language::english, Language::french}) {
      for (const std::string& rendered : renderWorkingSummary(lines, language)) {
        SCOPED_TRACE(std::string(file) + ": " + rendered);
        EXPECT_EQ(rendered.find('{'), std::string::npos);
        EXPECT_EQ(rendered.find('}'), std::string::npos);
      }
    }
  }
}

bool contains(const std::vector<std::string>& lines, const std::string& line) {
  return std::ranges::find(lines, line) != lines.end();
}

// summary-lines.json: lines each canonical rule set's summary must hold, by language.
TEST(WorkingRuleSummaryTest, OpenLinesAreCompletedWithTheRuleValues) {
  const std::map<std::string, Language> languages{
      {"turkish", Language::turkish}, {"english", Language::english}, {"french", Language::french}};
  const auto expected = nlohmann::json::parse(testing::workingDataFile("summary-lines.json"));
  ASSERT_EQ(expected.size(), 4U);
  for (const auto& [file, byLanguage] : expected.items()) {
    const auto summary = summarizeWorkingRules(testing::workingRules(file));
    for (const auto& [language, wanted] : byLanguage.items()) {
      const auto lines = renderWorkingSummary(summary, languages.at(language));
      for (const std::string line : wanted) {
        SCOPED_TRACE(file + " (" + language + "): " + line);
        EXPECT_TRUE(contains(lines, line));
      }
    }
  }
}

// Each rule value picks its own lines, and only those.
TEST(WorkingRuleSummaryTest, RuleValuesChooseTheirLines) {
  using Lines = std::vector<const WorkingSummaryText*>;
  const struct { std::string file; nlohmann::json values; Lines present; Lines absent; } cases[] = {
      {"daily-rules.json", {{"/goal/requiredSuccessfulDays", 7}}, {&text::requiredAllDays}, {&text::requiredSomeDays}},
      {"daily-rules.json", {{"/calendar/dayBoundary", "anchored"}}, {&text::anchoredDays}, {&text::calendarDays}},
      {"scheduled-rules.json", {{"/verification/macRequired", false}}, {&text::macNotRequired}, {&text::macVerifies}},
      {"daily-rules.json", {{"/breaks/maximumPerSessionSeconds", nullptr}, {"/breaks/maximumPerDaySeconds", nullptr}},
       {&text::noBreakLimits}, {&text::breakLimits, &text::overrunWarns}},
      {"daily-rules.json", {{"/breaks/overrun", "penalty"}}, {&text::overrunPenalty, &text::overrunPenaltySeparate},
       {&text::overrunWarns}},
      {"daily-rules.json", {{"/blocking/bypass/consequence", "invalidateSession"}}, {&text::bypassInvalidates},
       {&text::bypassExcludesTime}},
      {"daily-rules.json", {{"/blocking/bypass/mode", "none"}, {"/blocking/bypass/emergencyAlwaysAvailable", false}},
       {&text::bypassNeverCounts}, {&text::limitedBypass, &text::emergencyExit}},
      // A funded kovi never takes manual entries, whatever the rule says.
      {"daily-rules.json", {{"/economics/manualEntry", "groupApproval"}}, {&text::manualEntryForbidden},
       {&text::manualEntryGroupApproval}},
      {"race-rules.json", {{"/session/fragmentation", "singleSession"}},
       {&text::measureBestSession, &text::singleSessionOnly}, {&text::measureTotal}},
  };
  for (const auto& choice : cases) {
    SCOPED_TRACE(choice.values.dump());
    std::set<const WorkingSummaryText*> chosen;
    for (const WorkingSummaryLine& line : summarizeWorkingRules(testing::workingRules(choice.file, choice.values))) {
      chosen.insert(line.text);
    }
    for (const WorkingSummaryText* line : choice.present) EXPECT_TRUE(chosen.contains(line)) << line->english;
    for (const WorkingSummaryText* line : choice.absent) EXPECT_FALSE(chosen.contains(line)) << line->english;
  }
}

}  // namespace
}  // namespace kovi
