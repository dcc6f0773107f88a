#include "KoviMacHolds/MacHoldsSchedule.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/holds/HoldsTestSnapshots.h"

namespace kovi::holds {
namespace {

using namespace testing;
using Kind = MacHoldsDue::Kind;

struct DueCase {
  const char* name;
  const char* zone;
  MacHoldsSnapshot snapshot;
  const char* now;
  Kind kind;
  std::optional<const char*> until;
  std::vector<const char*> windowStarts;  // every window containing now, in the order found
};

void expectDue(const DueCase& c) {
  SCOPED_TRACE(c.name);
  const Calendar calendar = calendarIn(c.zone);
  const MacHoldsDue due = MacHoldsSchedule::due(c.snapshot, at(c.now), calendar);
  EXPECT_EQ(enumName(due.kind), enumName(c.kind));
  EXPECT_EQ(due.until.transform(&Date::unixMillis), c.until.transform(millisAt));

  std::vector<UnixMillis> starts;
  for (const auto& window : MacHoldsSchedule::windows(c.snapshot, at(c.now), calendar)) {
    starts.push_back(window.start.unixMillis());
    EXPECT_LE(window.start, at(c.now));
    EXPECT_LT(at(c.now), window.end);
  }
  std::vector<UnixMillis> expected;
  for (const char* start : c.windowStarts) expected.push_back(millisAt(start));
  EXPECT_EQ(starts, expected);
}

const char* const istanbul = "Europe/Istanbul";
const char* const newYork = "America/New_York";

TEST(MacHoldsScheduleTest, FindsTheHoldAndItsEnd) {
  const DueCase cases[] = {
        // A night 23:00–07:00: after midnight it is last night's, before midnight tonight's.
        {"NightAfterMidnightIsLastNights", istanbul, examWeekSnapshot(), "2026-11-22T02:00:00+03:00",
                Kind::sleep, "2026-11-22T07:00:00+03:00", {"2026-11-21T23:00:00+03:00"}},
        {"NightBeforeMidnightEndsTomorrow", istanbul, examWeekSnapshot(), "2026-11-22T23:30:00+03:00",
                Kind::sleep, "2026-11-23T07:00:00+03:00", {"2026-11-22T23:00:00+03:00"}},
        {"NightEndIsExclusive", istanbul, examWeekSnapshot(), "2026-11-22T07:00:00+03:00", Kind::social,
                "2026-11-23T00:00:00+03:00", {}},
        // Equal start and end is a full day, not an empty night.
        {"EqualStartAndEndLastsADay", istanbul, sleepSnapshot(1320, 1320), "2026-11-22T12:00:00+03:00",
                Kind::sleep, "2026-11-22T22:00:00+03:00", {"2026-11-21T22:00:00+03:00"}},
        {"EqualStartAndEndAtItsStart", istanbul, sleepSnapshot(1320, 1320), "2026-11-22T22:00:00+03:00",
                Kind::sleep, "2026-11-23T22:00:00+03:00", {"2026-11-22T22:00:00+03:00"}},
        {"StudyBlock", istanbul, examWeekSnapshot(), "2026-11-22T10:00:00+03:00", Kind::study,
                "2026-11-22T11:30:00+03:00", {"2026-11-22T09:00:00+03:00"}},
        // Overlapping windows: the one that began first decides.
        {"StudyInsideANightFollowsTheNight", istanbul,
                with(examWeekSnapshot(),
                     [](MacHoldsSnapshot& s) {
                       s.examWeek->sleepStart = 20 * 60;
                       s.examWeek->secondMinute = 21 * 60;
                       s.examWeek->blockMinutes = 60;
                     }),
                "2026-11-22T21:30:00+03:00", Kind::sleep, "2026-11-23T07:00:00+03:00",
                {"2026-11-22T21:00:00+03:00", "2026-11-22T20:00:00+03:00"}},
        {"NightInsideAStudyBlockFollowsTheBlock", istanbul,
                with(examWeekSnapshot(),
                     [](MacHoldsSnapshot& s) {
                       s.examWeek->sleepStart.reset();
                       s.examWeek->secondMinute = 21 * 60;
                       s.examWeek->blockMinutes = 120;
                       s.sleep = MacHoldsSnapshot::Sleep{22 * 60, 7 * 60, "chill"};
                     }),
                "2026-11-22T22:30:00+03:00", Kind::study, "2026-11-22T23:00:00+03:00",
                {"2026-11-22T21:00:00+03:00", "2026-11-22T22:00:00+03:00"}},
        // After the exam week: the last exam night is seen through, later nights are not.
        {"LastExamNightCarriesIntoTheNextDay", istanbul, examWeekSnapshot(), "2026-11-27T01:00:00+03:00",
                Kind::sleep, "2026-11-27T07:00:00+03:00", {"2026-11-26T23:00:00+03:00"}},
        {"NightAfterTheExamWeekHoldsNothing", istanbul, examWeekSnapshot(), "2026-11-27T23:30:00+03:00",
                Kind::none, std::nullopt, {}},
        {"BeforeTheExamWeekHoldsNothing", istanbul, examWeekSnapshot(), "2026-11-19T12:00:00+03:00",
                Kind::none, std::nullopt, {}},
        {"StoppedHoldsNothing", istanbul, with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.stopped = true; }),
                "2026-11-22T10:00:00+03:00", Kind::none, std::nullopt, {"2026-11-22T09:00:00+03:00"}},
        {"UnparsableStartDayNeverMatches", istanbul,
                with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.examWeek->startDay = "2026-02-30"; }),
                "2026-11-22T10:00:00+03:00", Kind::none, std::nullopt, {}},
        {"UnparsableEndDayNeverMatches", istanbul,
                with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.examWeek->endDay = "2026-11-3x"; }),
                "2026-11-22T10:00:00+03:00", Kind::none, std::nullopt, {}},
        // The Social allowance: an open span keeps Social open while at least 1 ms is left.
        {"OneMillisecondLeftKeepsSocialOpen", istanbul,
                withAllowance(examWeekSnapshot(), "2026-11-22", 20 * kMinute, "2026-11-22T11:35:00.001+03:00"),
                "2026-11-22T12:00:00+03:00", Kind::socialOpen, "2026-11-22T12:00:00.001+03:00", {}},
        {"NothingLeftHoldsSocial", istanbul,
                withAllowance(examWeekSnapshot(), "2026-11-22", 20 * kMinute, "2026-11-22T11:35:00+03:00"),
                "2026-11-22T12:00:00+03:00", Kind::social, "2026-11-23T00:00:00+03:00", {}},
        {"ZeroAllowanceHoldsSocialDespiteAnOpenSpan", istanbul,
                withAllowance(with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.examWeek->socialMinutes = 0; }),
                              "2026-11-22", 0, "2026-11-22T11:59:00+03:00"),
                "2026-11-22T12:00:00+03:00", Kind::social, "2026-11-23T00:00:00+03:00", {}},
        {"OpenSpanEndsAtMidnightAtTheLatest", istanbul,
                withAllowance(with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.examWeek->sleepStart.reset(); }),
                              "2026-11-22", 0, "2026-11-22T23:50:00+03:00"),
                "2026-11-22T23:50:00+03:00", Kind::socialOpen, "2026-11-23T00:00:00+03:00", {}},
        {"SpanStartingLaterHasUsedNothingYet", istanbul,
                withAllowance(examWeekSnapshot(), "2026-11-22", 20 * kMinute, "2026-11-22T12:10:00+03:00"),
                "2026-11-22T12:00:00+03:00", Kind::socialOpen, "2026-11-22T12:25:00+03:00", {}},
        // Daylight saving in New York: 02:30 does not exist on 2026-03-08, so
        // the night starts at 03:00; a block across the repeated hour of
        // 2026-11-01 lasts two real hours.
        {"NightStartingInTheSpringGap", newYork, sleepSnapshot(150, 420), "2026-03-08T03:10:00-04:00",
                Kind::sleep, "2026-03-08T07:00:00-04:00", {"2026-03-08T03:00:00-04:00"}},
        {"StudyBlockAcrossTheRepeatedHourLastsTwoHours", newYork,
                with(examWeekSnapshot(),
                     [](MacHoldsSnapshot& s) {
                       s.examWeek->startDay = "2026-10-30";
                       s.examWeek->endDay = "2026-11-02";
                       s.examWeek->firstMinute = 60;
                       s.examWeek->blockMinutes = 60;
                       s.examWeek->sleepStart.reset();
                     }),
                "2026-11-01T01:45:00-05:00", Kind::study, "2026-11-01T02:00:00-05:00", {"2026-11-01T01:00:00-04:00"}}};
  for (const auto& c : cases) expectDue(c);
}

TEST(MacHoldsScheduleTest, CountsOnlyTodaysAllowanceRecord) {
  const struct {
    const char* name;
    MacHoldsSnapshot snapshot;
    MacHoldsSchedule::AllowanceToday expected;
  } cases[] = {
        {"NoRecord", examWeekSnapshot(), {"2026-11-22", 0, std::nullopt}},
        {"ClosedSpans", withAllowance(examWeekSnapshot(), "2026-11-22", 20 * kMinute),
                      {"2026-11-22", 20 * kMinute, std::nullopt}},
        {"OneMillisecondLeftStaysOpen",
                      withAllowance(examWeekSnapshot(), "2026-11-22", 20 * kMinute, "2026-11-22T11:35:00.001+03:00"),
                      {"2026-11-22", 20 * kMinute, millisAt("2026-11-22T11:35:00.001+03:00")}},
        {"SpentBudgetClosesTheSpan",
                      withAllowance(examWeekSnapshot(), "2026-11-22", 20 * kMinute, "2026-11-22T11:35:00+03:00"),
                      {"2026-11-22", 45 * kMinute, std::nullopt}},
        {"OverspentIsCappedAtTheBudget",
                      withAllowance(examWeekSnapshot(), "2026-11-22", 40 * kMinute, "2026-11-22T10:00:00+03:00"),
                      {"2026-11-22", 45 * kMinute, std::nullopt}},
        {"YesterdaysRecord",
                      withAllowance(examWeekSnapshot(), "2026-11-21", 30 * kMinute, "2026-11-22T11:50:00+03:00"),
                      {"2026-11-22", 0, std::nullopt}},
        {"NoExamWeekMeansNoBudget",
                      withAllowance(sleepSnapshot(1380, 420), "2026-11-22", 5 * kMinute, "2026-11-22T11:50:00+03:00"),
                      {"2026-11-22", 0, std::nullopt}}};
  for (const auto& c : cases) {
    EXPECT_EQ(MacHoldsSchedule::allowanceToday(c.snapshot, at("2026-11-22T12:00:00+03:00"), calendarIn(istanbul)),
              c.expected) << c.name;
  }
}

TEST(MacHoldsScheduleTest, KeepsTheAgentOnlyWhileSomethingIsLeft) {
  const struct {
    const char* name;
    std::optional<MacHoldsSnapshot> snapshot;
    const char* now;
    bool active;
  } cases[] = {
        {"NoSnapshot", std::nullopt, "2026-11-22T12:00:00+03:00", false},
        {"Stopped", with(sleepSnapshot(1380, 420), [](MacHoldsSnapshot& s) { s.stopped = true; }),
                   "2026-11-22T23:30:00+03:00", false},
        {"NeitherExamWeekNorSleep", MacHoldsSnapshot{}, "2026-11-22T12:00:00+03:00", false},
        {"BeforeTheExamWeek", examWeekSnapshot(), "2026-11-10T12:00:00+03:00", true},
        {"LastExamNightAfterMidnight", examWeekSnapshot(), "2026-11-27T06:59:59.999+03:00", true},
        {"UnparsableEndDay",
                   with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.examWeek->endDay = "2026-11-3x"; }),
                   "2026-11-22T10:00:00+03:00", false},
        // The start day counts on its own: with the end still ahead the agent
        // stands by, though the week's range never matches.
        {"UnparsableStartDayWithTheEndAhead",
                   with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.examWeek->startDay = "2026-02-30"; }),
                   "2026-11-22T10:00:00+03:00", true},
        {"AfterTheLastExamNight", examWeekSnapshot(), "2026-11-27T07:00:00+03:00", false},
        {"AfterTheExamWeekWithEverydaySleep",
                   with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.sleep = MacHoldsSnapshot::Sleep{1380, 420, ""}; }),
                   "2026-11-30T12:00:00+03:00", true}};
  for (const auto& c : cases) {
    const MacHoldsSnapshot* snapshot = c.snapshot ? &*c.snapshot : nullptr;
    EXPECT_EQ(MacHoldsSchedule::isActive(snapshot, at(c.now), calendarIn(istanbul)), c.active) << c.name;
  }
}

}  // namespace
}  // namespace kovi::holds
