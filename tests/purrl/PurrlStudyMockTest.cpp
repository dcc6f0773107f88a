#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlFocusMockCalendar.h"
#include "KoviKit/purrl/PurrlFocusMockReminder.h"
#include "KoviKit/purrl/PurrlFocusStudyLog.h"
#include "tests/support/Refusal.h"
#include "tests/support/TestData.h"

namespace kovi {

void PrintTo(const PurrlFocusMockReminder& r, std::ostream* out) {
  *out << r.planID << ' ' << r.day << " kind " << static_cast<int>(r.kind) << " fires " << r.fireAt.unixMillis()
       << " starts " << r.startsAt.unixMillis();
}

namespace {

UnixMillis instant(const char* iso) { return parseInstant(iso).value(); }
Date dateAt(const char* iso) { return Date::fromUnixMillis(static_cast<double>(instant(iso))); }

PurrlFocusMockNext paperAt(UnixMillis at, bool started = false) {
  PurrlFocusMockNext next;
  next.planId = "plan-1";
  next.day = "2026-05-10";
  next.minute = 600;
  next.at = at;
  next.started = started;
  return next;
}

// A paper planned for 10:00 opens at 09:45:00.000 and closes after 11:00:00.000.
TEST(PurrlMockStartWindowTest, OpensFifteenMinutesBeforeAndClosesAnHourAfter) {
  const UnixMillis at = instant("2026-05-10T10:00:00.000Z");
  const struct {
    const char* now;
    bool canStart;
  } cases[] = {{"2026-05-10T09:44:59.999Z", false}, {"2026-05-10T09:45:00.000Z", true},
               {"2026-05-10T11:00:00.000Z", true}, {"2026-05-10T11:00:00.001Z", false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.now);
    EXPECT_EQ(paperAt(at).canStart(instant(c.now)), c.canStart);
    EXPECT_FALSE(paperAt(at, /*started=*/true).canStart(instant(c.now)));
  }
  // Extreme instants neither overflow nor wrap.
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
  EXPECT_EQ(testing::refusalOf(decodeJsonText<PurrlFocusMockNext>(
      R"({"planId":"p","exam":"tyt","day":"2026-05-10","minute":600,"at":1778407200000})")),
            "started: missing key");
}

using enum PurrlFocusMockReminderKind;

struct Expected {
  PurrlFocusMockReminderKind kind;
  const char* day;
  const char* fireAt;
  const char* startsAt;
};

void expectReminders(const std::vector<PurrlFocusMockReminder>& reminders, const std::vector<Expected>& expected) {
  std::vector<PurrlFocusMockReminder> records;
  for (const Expected& e : expected) {
    records.push_back({"plan-7", PurrlFocusMockExam::ayt, e.day, e.kind, dateAt(e.fireAt), dateAt(e.startsAt)});
  }
  EXPECT_EQ(reminders, records);
}

class PurrlMockReminderTest : public ::testing::Test {
 protected:
  PurrlFocusMockPlan plan(PurrlFocusMockRepeat repeat) const {
    // Saturday 2026-05-09 at 10:15 in Istanbul.
    return PurrlFocusMockPlan{"plan-7", PurrlFocusMockExam::ayt, "Deneme 3", repeat, "2026-05-09", 615};
  }
  Calendar istanbul = Calendar::inZone("Europe/Istanbul").value();
};

// A single paper gets the eve and the soon reminder; those already due are left out.
TEST_F(PurrlMockReminderTest, OncePlanGetsTheRemindersNotYetDue) {
  const Expected theEve{eve, "2026-05-09", "2026-05-08T20:00:00+03:00", "2026-05-09T10:15:00+03:00"};
  const Expected soonAfter{soon, "2026-05-09", "2026-05-09T10:00:00+03:00", "2026-05-09T10:15:00+03:00"};
  const struct {
    const char* now;
    std::vector<Expected> reminders;
  } cases[] = {{"2026-05-01T00:00:00Z", {theEve, soonAfter}},
               {"2026-05-08T20:00:00+03:00", {soonAfter}},
               // Inside the start window nothing is left to remind of.
               {"2026-05-09T10:00:00+03:00", {}},
               {"2026-06-01T00:00:00Z", {}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.now);
    expectReminders(purrlMockReminders(plan(PurrlFocusMockRepeat::once), dateAt(c.now), istanbul), c.reminders);
  }
  auto onNoDay = plan(PurrlFocusMockRepeat::weekly);
  onNoDay.day = "2026-02-30";
  EXPECT_TRUE(purrlMockReminders(onNoDay, dateAt("2026-01-01T00:00:00Z"), istanbul).empty());
}

TEST_F(PurrlMockReminderTest, WeeklyPlanGetsFourComingWeeks) {
  // Long after the plan began, between the eve and the paper of 2027-01-02.
  const auto reminders =
      purrlMockReminders(plan(PurrlFocusMockRepeat::weekly), dateAt("2027-01-01T21:00:00+03:00"), istanbul);
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
  const auto berlin = Calendar::inZone("Europe/Berlin").value();
  auto weekly = plan(PurrlFocusMockRepeat::weekly);
  weekly.day = "2026-03-21";
  const auto reminders = purrlMockReminders(weekly, dateAt("2026-03-21T12:00:00+01:00"), berlin);
  ASSERT_EQ(reminders.size(), 8U);
  // Summer time begins on 2026-03-29: the paper still starts at 10:15 local.
  EXPECT_EQ(reminders[1].kind, soon);
  EXPECT_EQ(reminders[1].startsAt.unixMillis(), instant("2026-03-28T10:15:00+01:00"));
  EXPECT_EQ(reminders[3].startsAt.unixMillis(), instant("2026-04-04T10:15:00+02:00"));
}

TEST(PurrlMockReminderMessageTest, NamesThePaper) {
  PurrlFocusMockReminder reminder;
  reminder.exam = PurrlFocusMockExam::lgsSozel;
  reminder.kind = soon;
  EXPECT_EQ(reminder.message(), "LGS Sözel denemen 15 dakika sonra başlıyor. Hazırsan başlayabilirsin.");
  reminder.kind = eve;
  EXPECT_EQ(reminder.message(), "Yarın LGS Sözel denemen var. Kedin de seninle erkenden hazır olacak.");
}

// Each row counts [section, correct, wrong, blank] on a paper and expects
// its net or the reason it is refused.
TEST(PurrlMockScoreTest, ScoresOrRefusesTheCountedAnswers) {
  const auto rows = parseJson(testing::testDataFile("purrl", "mock-scores.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 8) << "mock-scores.json";
  for (const nlohmann::json& c : *rows) {
    SCOPED_TRACE(c.at("name").get<std::string>());
    std::vector<PurrlFocusMockSection> answers;
    for (const nlohmann::json& section : c.at("answers")) {
      answers.push_back(
          {section[0].get<std::string>(), section[1].get<int>(), section[2].get<int>(), section[3].get<int>(), 0});
    }
    const auto exam = enumFromName<PurrlFocusMockExam>(c.at("exam").get<std::string>());
    ASSERT_TRUE(exam.has_value());
    const auto result = PurrlFocusStudyLog::Result::scored(*exam, answers);
    if (c.contains("refused")) {
      ASSERT_FALSE(result.has_value());
      EXPECT_EQ(result.error(), c.at("refused").get<std::string>());
      continue;
    }
    ASSERT_TRUE(result.has_value()) << result.error();
    EXPECT_DOUBLE_EQ(result->net, c.at("net").get<double>());
    EXPECT_EQ(result->sections.size(), answers.size());
  }
}

}  // namespace
}  // namespace kovi
