#include "KoviMacHolds/MacHoldsTimeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "KoviMacHolds/MacHoldsSchedule.h"
#include "tests/holds/HoldsTestSnapshots.h"

namespace kovi::holds {
namespace {

using namespace testing;
using Kind = MacHoldsDue::Kind;

struct Change {
  const char* from;  // ISO instant at which `kind` begins
  Kind kind;
};

struct TimelineCase {
  const char* name;
  const char* zone;
  MacHoldsSnapshot snapshot;
  const char* day;
  std::vector<Change> changes;  // the segments' starts and kinds; each ends where the next begins
  const char* dayEnd;
};

Kind kindAt(const MacHoldsSnapshot& snapshot, UnixMillis instant, const Calendar& calendar) {
  return MacHoldsSchedule::due(snapshot, Date::fromUnixMillis(static_cast<double>(instant)), calendar).kind;
}

// The expected segments run from each change to the next and the last to the
// day's end, so they cover the day without gap or overlap; each must also
// agree with the due hold at its edges and in between.
void expectSplitsTheDayWhereTheDueHoldChanges(const TimelineCase& c) {
  SCOPED_TRACE(c.name);
  const Calendar calendar = calendarIn(c.zone);
  const auto segments = macHoldsTimeline(c.snapshot, c.day, calendar);
  ASSERT_TRUE(segments.has_value());
  ASSERT_EQ(segments->size(), c.changes.size());
  for (std::size_t index = 0; index < c.changes.size(); ++index) {
    const MacHoldsSegment& segment = (*segments)[index];
    SCOPED_TRACE(index);
    const char* to = index + 1 < c.changes.size() ? c.changes[index + 1].from : c.dayEnd;
    EXPECT_EQ(segment.from, millisAt(c.changes[index].from));
    EXPECT_EQ(segment.to, millisAt(to));
    EXPECT_EQ(enumName(segment.kind), enumName(c.changes[index].kind));
    ASSERT_LT(segment.from, segment.to);
    EXPECT_EQ(kindAt(c.snapshot, segment.to - 1, calendar), segment.kind);
    // And nowhere in between: sample every seven minutes and a bit.
    for (UnixMillis instant = segment.from; instant < segment.to; instant += 7 * kMinute + 13) {
      ASSERT_EQ(kindAt(c.snapshot, instant, calendar), segment.kind) << instant;
    }
  }
}

// An exam day of examWeekSnapshot(), the Social hours taking `social` and
// `extra` changes inserted in time order.
std::vector<Change> examDay(Kind social = Kind::social, std::vector<Change> extra = {}) {
  std::vector<Change> changes{{"2026-11-22T00:00:00+03:00", Kind::sleep},  {"2026-11-22T07:00:00+03:00", social},
                              {"2026-11-22T09:00:00+03:00", Kind::study},  {"2026-11-22T11:30:00+03:00", social},
                              {"2026-11-22T14:00:00+03:00", Kind::study},  {"2026-11-22T16:30:00+03:00", Kind::social},
                              {"2026-11-22T23:00:00+03:00", Kind::sleep}};
  for (const Change& change : extra) {
    changes.insert(std::ranges::find_if(changes, [&](const Change& c) { return millisAt(c.from) > millisAt(change.from); }),
                   change);
  }
  return changes;
}

const char* const istanbul = "Europe/Istanbul";
const char* const newYork = "America/New_York";

TEST(TimelineTest, SplitsTheDayWhereTheDueHoldChanges) {
  for (const TimelineCase& c : {
        TimelineCase{"ExamDay", istanbul, examWeekSnapshot(), "2026-11-22", examDay(), "2026-11-23T00:00:00+03:00"},
        // A span recorded as opening at 11:40:00.500 with 20 minutes and 1 ms
        // of 45 used runs out at 12:05:00.499, off the minute; before 11:40 it
        // has used nothing yet, so it counts as open.
        TimelineCase{"OpenSpanRunsOutOffTheMinute", istanbul,
                     withAllowance(examWeekSnapshot(), "2026-11-22", 20 * kMinute + 1, "2026-11-22T11:40:00.500+03:00"),
                     "2026-11-22", examDay(Kind::socialOpen, {{"2026-11-22T12:05:00.499+03:00", Kind::social}}),
                     "2026-11-23T00:00:00+03:00"},
        TimelineCase{"AnotherDaysAllowanceRecord", istanbul,
                     withAllowance(examWeekSnapshot(), "2026-11-21", 0, "2026-11-22T11:40:00+03:00"), "2026-11-22",
                     examDay(), "2026-11-23T00:00:00+03:00"},
        TimelineCase{"FirstExamDay", istanbul, examWeekSnapshot(), "2026-11-20",
                     {{"2026-11-20T00:00:00+03:00", Kind::social},
                      {"2026-11-20T09:00:00+03:00", Kind::study}, {"2026-11-20T11:30:00+03:00", Kind::social},
                      {"2026-11-20T14:00:00+03:00", Kind::study}, {"2026-11-20T16:30:00+03:00", Kind::social},
                      {"2026-11-20T23:00:00+03:00", Kind::sleep}},
                     "2026-11-21T00:00:00+03:00"},
        TimelineCase{"DayAfterTheExamWeek", istanbul, examWeekSnapshot(), "2026-11-27",
                     {{"2026-11-27T00:00:00+03:00", Kind::sleep}, {"2026-11-27T07:00:00+03:00", Kind::none}},
                     "2026-11-28T00:00:00+03:00"},
        TimelineCase{"Stopped", istanbul, with(examWeekSnapshot(), [](MacHoldsSnapshot& s) { s.stopped = true; }), "2026-11-22",
                     {{"2026-11-22T00:00:00+03:00", Kind::none}}, "2026-11-23T00:00:00+03:00"},
        // Last night's and tonight's 24-hour nights meet at 22:00: one sleep all day.
        TimelineCase{"EqualStartAndEnd", istanbul, sleepSnapshot(1320, 1320), "2026-11-22",
                     {{"2026-11-22T00:00:00+03:00", Kind::sleep}}, "2026-11-23T00:00:00+03:00"},
        // A 23-hour day: the night meant for 02:30 starts at 03:00.
        TimelineCase{"SpringForward", newYork, sleepSnapshot(150, 420), "2026-03-08",
                     {{"2026-03-08T00:00:00-05:00", Kind::none},
                      {"2026-03-08T03:00:00-04:00", Kind::sleep}, {"2026-03-08T07:00:00-04:00", Kind::none}},
                     "2026-03-09T00:00:00-04:00"},
        // A 25-hour day: the night starts at the first 01:30.
        TimelineCase{"FallBack", newYork, sleepSnapshot(90, 420), "2026-11-01",
                     {{"2026-11-01T00:00:00-04:00", Kind::none},
                      {"2026-11-01T01:30:00-04:00", Kind::sleep}, {"2026-11-01T07:00:00-05:00", Kind::none}},
                     "2026-11-02T00:00:00-05:00"}})
    expectSplitsTheDayWhereTheDueHoldChanges(c);
}

TEST(Timeline, RefusesADayThatDoesNotExist) {
  EXPECT_FALSE(macHoldsTimeline(examWeekSnapshot(), "2026-02-30", calendarIn(istanbul)).has_value());
  EXPECT_FALSE(macHoldsTimeline(examWeekSnapshot(), "22.11.2026", calendarIn(istanbul)).has_value());
}

}  // namespace
}  // namespace kovi::holds
