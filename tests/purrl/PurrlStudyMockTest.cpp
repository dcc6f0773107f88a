#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlFocusMockCalendar.h"
#include "KoviKit/purrl/PurrlFocusMockReminder.h"
#include "KoviKit/purrl/PurrlFocusStudyLog.h"

namespace kovi {
namespace {

UnixMillis instant(const char* iso) { return parseInstant(iso).value(); }

PurrlFocusMockNext paperAt(UnixMillis at, bool started = false) {
  PurrlFocusMockNext next;
  next.planId = "plan-1";
  next.day = "2026-05-10";
  next.minute = 600;
  next.at = at;
  next.started = started;
  return next;
}

struct WindowCase {
  std::string name;
  const char* now;
  bool canStart;
  friend void PrintTo(const WindowCase& c, std::ostream* out) { *out << c.name; }
};

class PurrlMockStartWindowTest : public ::testing::TestWithParam<WindowCase> {};

// A paper planned for 10:00 opens at 09:45:00.000 and closes after 11:00:00.000.
TEST_P(PurrlMockStartWindowTest, OpensFifteenMinutesBeforeAndClosesAnHourAfter) {
  const UnixMillis at = instant("2026-05-10T10:00:00.000Z");
  const UnixMillis now = instant(GetParam().now);
  EXPECT_EQ(paperAt(at).canStart(now), GetParam().canStart);
  EXPECT_FALSE(paperAt(at, /*started=*/true).canStart(now));
}

INSTANTIATE_TEST_SUITE_P(Bounds, PurrlMockStartWindowTest,
                         ::testing::Values(WindowCase{"oneMilliBeforeOpening", "2026-05-10T09:44:59.999Z", false},
                                           WindowCase{"opening", "2026-05-10T09:45:00.000Z", true},
                                           WindowCase{"closing", "2026-05-10T11:00:00.000Z", true},
                                           WindowCase{"oneMilliAfterClosing", "2026-05-10T11:00:00.001Z", false}),
                         [](const auto& info) { return info.param.name; });

TEST(PurrlMockStartWindowTest, ExtremeInstantsNeitherOverflowNorWrap) {
  constexpr UnixMillis kMin = std::numeric_limits<UnixMillis>::min();
  constexpr UnixMillis kMax = std::numeric_limits<UnixMillis>::max();
  EXPECT_FALSE(paperAt(kMax).canStart(kMin));
  EXPECT_FALSE(paperAt(kMin).canStart(kMax));
  EXPECT_TRUE(paperAt(kMin).canStart(kMin + 3'600'000));
  EXPECT_TRUE(paperAt(kMax).canStart(kMax - 900'000));
  EXPECT_FALSE(paperAt(kMax).canStart(kMax - 900'001));
}

TEST(PurrlMockNextCodingTest, RoundTripsAndRequiresStarted) {
  const auto next = decodeJsonText<PurrlFocusMockNext>(
      R"({"planId":"p","exam":"lgs_sayisal","day":"2026-05-10","minute":600,"at":1778407200000,"started":false})");
  ASSERT_TRUE(next.has_value()) << next.error().message();
  EXPECT_EQ(next->exam, PurrlFocusMockExam::lgsSayisal);
  EXPECT_EQ(decodeJsonText<PurrlFocusMockNext>(encodeRecord(*next).dump()), next);
  const auto missing = decodeJsonText<PurrlFocusMockNext>(
      R"({"planId":"p","exam":"tyt","day":"2026-05-10","minute":600,"at":1778407200000})");
  ASSERT_FALSE(missing.has_value());
  EXPECT_EQ(missing.error().message(), "started: missing key");
}

struct Expected {
  PurrlFocusMockReminderKind kind;
  const char* day;
  const char* fireAt;
  const char* startsAt;
};

void expectReminders(const std::vector<PurrlFocusMockReminder>& reminders, const std::vector<Expected>& expected) {
  ASSERT_EQ(reminders.size(), expected.size());
  for (std::size_t index = 0; index < expected.size(); ++index) {
    SCOPED_TRACE(index);
    EXPECT_EQ(reminders[index].planID, "plan-7");
    EXPECT_EQ(reminders[index].exam, PurrlFocusMockExam::ayt);
    EXPECT_EQ(reminders[index].kind, expected[index].kind);
    EXPECT_EQ(reminders[index].day, expected[index].day);
    EXPECT_EQ(reminders[index].fireAt.unixMillis(), instant(expected[index].fireAt));
    EXPECT_EQ(reminders[index].startsAt.unixMillis(), instant(expected[index].startsAt));
  }
}

class PurrlMockReminderTest : public ::testing::Test {
 protected:
  PurrlFocusMockPlan plan(PurrlFocusMockRepeat repeat) const {
    // Saturday 2026-05-09 at 10:15 in Istanbul.
    return PurrlFocusMockPlan{"plan-7", PurrlFocusMockExam::ayt, "Deneme 3", repeat, "2026-05-09", 615};
  }
  static Date at(const char* iso) { return Date::fromUnixMillis(static_cast<double>(instant(iso))); }
  Calendar istanbul = Calendar::inZone("Europe/Istanbul").value();
};

TEST_F(PurrlMockReminderTest, OncePlanGetsTheEveAndSoonReminders) {
  using enum PurrlFocusMockReminderKind;
  expectReminders(purrlMockReminders(plan(PurrlFocusMockRepeat::once), at("2026-05-01T00:00:00Z"), istanbul),
                  {{eve, "2026-05-09", "2026-05-08T20:00:00+03:00", "2026-05-09T10:15:00+03:00"},
                   {soon, "2026-05-09", "2026-05-09T10:00:00+03:00", "2026-05-09T10:15:00+03:00"}});
}

TEST_F(PurrlMockReminderTest, RemindersAlreadyDueAreLeftOut) {
  using enum PurrlFocusMockReminderKind;
  const auto once = plan(PurrlFocusMockRepeat::once);
  // After the eve reminder: only the soon one is left.
  expectReminders(purrlMockReminders(once, at("2026-05-08T20:00:00+03:00"), istanbul),
                  {{soon, "2026-05-09", "2026-05-09T10:00:00+03:00", "2026-05-09T10:15:00+03:00"}});
  // Inside the start window nothing is left to remind of.
  expectReminders(purrlMockReminders(once, at("2026-05-09T10:00:00+03:00"), istanbul), {});
  expectReminders(purrlMockReminders(once, at("2026-06-01T00:00:00Z"), istanbul), {});
}

TEST_F(PurrlMockReminderTest, WeeklyPlanGetsFourComingWeeks) {
  using enum PurrlFocusMockReminderKind;
  // Long after the plan began, between the eve and the paper of 2027-01-02.
  const auto reminders =
      purrlMockReminders(plan(PurrlFocusMockRepeat::weekly), at("2027-01-01T21:00:00+03:00"), istanbul);
  expectReminders(reminders,
                  {{soon, "2027-01-02", "2027-01-02T10:00:00+03:00", "2027-01-02T10:15:00+03:00"},
                   {eve, "2027-01-09", "2027-01-08T20:00:00+03:00", "2027-01-09T10:15:00+03:00"},
                   {soon, "2027-01-09", "2027-01-09T10:00:00+03:00", "2027-01-09T10:15:00+03:00"},
                   {eve, "2027-01-16", "2027-01-15T20:00:00+03:00", "2027-01-16T10:15:00+03:00"},
                   {soon, "2027-01-16", "2027-01-16T10:00:00+03:00", "2027-01-16T10:15:00+03:00"},
                   {eve, "2027-01-23", "2027-01-22T20:00:00+03:00", "2027-01-23T10:15:00+03:00"},
                   {soon, "2027-01-23", "2027-01-23T10:00:00+03:00", "2027-01-23T10:15:00+03:00"}});
}

TEST_F(PurrlMockReminderTest, WeeklyPlanFollowsTheWallClockAcrossDaylightSaving) {
  using enum PurrlFocusMockReminderKind;
  const auto berlin = Calendar::inZone("Europe/Berlin").value();
  auto weekly = plan(PurrlFocusMockRepeat::weekly);
  weekly.day = "2026-03-21";
  const auto reminders = purrlMockReminders(weekly, at("2026-03-21T12:00:00+01:00"), berlin);
  ASSERT_EQ(reminders.size(), 8U);
  // Summer time begins on 2026-03-29: the paper still starts at 10:15 local.
  EXPECT_EQ(reminders[1].kind, soon);
  EXPECT_EQ(reminders[1].startsAt.unixMillis(), instant("2026-03-28T10:15:00+01:00"));
  EXPECT_EQ(reminders[3].startsAt.unixMillis(), instant("2026-04-04T10:15:00+02:00"));
}

TEST_F(PurrlMockReminderTest, PlanOnNoDayHasNoReminders) {
  auto broken = plan(PurrlFocusMockRepeat::weekly);
  broken.day = "2026-02-30";
  EXPECT_TRUE(purrlMockReminders(broken, at("2026-01-01T00:00:00Z"), istanbul).empty());
}

TEST(PurrlMockReminderMessageTest, NamesThePaper) {
  PurrlFocusMockReminder reminder;
  reminder.exam = PurrlFocusMockExam::lgsSozel;
  reminder.kind = PurrlFocusMockReminderKind::soon;
  EXPECT_EQ(reminder.message(), "LGS Sözel denemen 15 dakika sonra başlıyor. Hazırsan başlayabilirsin.");
  reminder.kind = PurrlFocusMockReminderKind::eve;
  EXPECT_EQ(reminder.message(), "Yarın LGS Sözel denemen var. Kedin de seninle erkenden hazır olacak.");
}

struct ScoreCase {
  std::string name;
  PurrlFocusMockExam exam;
  std::vector<PurrlFocusMockSection> answers;
  std::optional<double> net;  // nullopt: refused
  std::string reason;
  friend void PrintTo(const ScoreCase& c, std::ostream* out) { *out << c.name; }
};

class PurrlMockScoreTest : public ::testing::TestWithParam<ScoreCase> {};

TEST_P(PurrlMockScoreTest, ScoresOrRefusesTheCountedAnswers) {
  const ScoreCase& c = GetParam();
  const auto result = PurrlFocusStudyLog::Result::scored(c.exam, c.answers);
  if (!c.net) {
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), c.reason);
    return;
  }
  ASSERT_TRUE(result.has_value()) << result.error();
  EXPECT_DOUBLE_EQ(result->net, *c.net);
  ASSERT_EQ(result->sections.size(), c.answers.size());
}

INSTANTIATE_TEST_SUITE_P(
    Papers, PurrlMockScoreTest,
    ::testing::Values(
        ScoreCase{"tytFourWrongCancelOne", PurrlFocusMockExam::tyt,
                  {{"turkce", 30, 8, 2, 0}, {"fen", 10, 2, 8, 0}}, (30 - 2.0) + (10 - 0.5), ""},
        ScoreCase{"lgsThreeWrongCancelOne", PurrlFocusMockExam::lgsSayisal,
                  {{"mat", 14, 6, 0, 0}, {"fen", 18, 1, 1, 0}}, (14 - 2.0) + (18 - 1.0 / 3.0), ""},
        ScoreCase{"ydtSingleSection", PurrlFocusMockExam::ydt, {{"dil", 60, 20, 0, 0}}, 55.0, ""},
        ScoreCase{"noSectionsTaken", PurrlFocusMockExam::ayt, {}, 0.0, ""},
        ScoreCase{"sectionOfAnotherPaper", PurrlFocusMockExam::lgsSozel, {{"mat", 10, 0, 10, 0}}, std::nullopt,
                  "section mat is not part of lgs_sozel"},
        ScoreCase{"countsDoNotAddUp", PurrlFocusMockExam::tyt, {{"sosyal", 10, 5, 4, 0}}, std::nullopt,
                  "section sosyal has 20 questions, not 19"},
        ScoreCase{"sectionTwice", PurrlFocusMockExam::ydt, {{"dil", 80, 0, 0, 0}, {"dil", 80, 0, 0, 0}},
                  std::nullopt, "section dil is counted twice"},
        ScoreCase{"negativeCount", PurrlFocusMockExam::tyt, {{"fen", 21, -1, 0, 0}}, std::nullopt,
                  "section fen has a negative count"}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace kovi
