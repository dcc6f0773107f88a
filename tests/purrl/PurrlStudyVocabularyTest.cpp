#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlFocusDailySet.h"
#include "KoviKit/purrl/PurrlFocusExamCountdown.h"
#include "KoviKit/purrl/PurrlFocusMockCalendar.h"
#include "KoviKit/purrl/PurrlFocusStudyStats.h"
#include "tests/support/TestData.h"
#include "tests/support/Refusal.h"

namespace kovi {
namespace {

TEST(PurrlExamGroupTest, FollowsTheSubjectPrefix) {
  const struct {
    std::string subject;
    std::optional<PurrlFocusExamGroup> group;
  } cases[] = {
      {"tyt_turkce", PurrlFocusExamGroup::tyt}, {"ayt_edebiyat", PurrlFocusExamGroup::ayt},
      {"ydt_dil", PurrlFocusExamGroup::ydt},    {"lgs_ingilizce", PurrlFocusExamGroup::lgs},
      {"paragraf", std::nullopt},               {"TYT_mat", std::nullopt}, {"tyt", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.subject);
    EXPECT_EQ(purrlExamGroup(c.subject), c.group);
  }
  for (const auto& [subject, raw] : EnumNames<PurrlFocusSubject>::table) {
    SCOPED_TRACE(raw);
    EXPECT_EQ(purrlExamGroup(subject), purrlExamGroup(raw));
  }
  EXPECT_EQ(purrlExamGroup(PurrlFocusMockExam::lgsSozel), PurrlFocusExamGroup::lgs);
  EXPECT_EQ(purrlExamGroup(PurrlFocusMockExam::lgsSayisal), PurrlFocusExamGroup::lgs);
}

// The identity is the subject, or for a custom set its label in lower case.
TEST(PurrlDailySetTest, IdentityAndTarget) {
  const struct {
    PurrlFocusDailySet set;
    std::string identity;
  } cases[] = {{{"tyt_mat", "Matematik", 40, 0, false}, "tyt_mat"},
               {{"custom", "ÇÖZÜM ŞIK", 20, 0, false}, "custom:çözüm şik"},
               {{"custom", std::nullopt, 20, 0, false}, "custom:"},
               {{"kpss_gk", "Genel", 10, 0, false}, "kpss_gk"}};
  for (const auto& c : cases) EXPECT_EQ(c.set.identity(), c.identity);
  // Only a known subject becomes a target.
  EXPECT_EQ((PurrlFocusDailySet{"ayt_fizik", std::nullopt, 25, 10, false}.asTarget()),
            (PurrlFocusDailySetTarget{PurrlFocusSubject::aytFizik, std::nullopt, 25}));
  EXPECT_EQ((PurrlFocusDailySet{"custom", "Deneme", 15, 0, false}.asTarget()),
            (PurrlFocusDailySetTarget{PurrlFocusSubject::custom, "Deneme", 15}));
  EXPECT_EQ((PurrlFocusDailySet{"TYT_MAT", std::nullopt, 25, 0, false}.asTarget()), std::nullopt);
  EXPECT_EQ(testing::refusalOf(decodeJsonText<PurrlFocusDailySetTarget>(R"({"subject":"kpss_gk","target":5})")),
            "subject: unknown value \"kpss_gk\"");
}

TEST(PurrlDaysLeftTest, CountsWholeDaysWithoutTheExamDay) {
  const auto berlin = Calendar::inZone("Europe/Berlin").value();
  const struct {
    const char* today;
    const char* exam;
    std::optional<int> daysLeft;
  } cases[] = {
      {"2026-06-20", "2026-06-20", 0},  {"2026-06-19", "2026-06-20", 1},
      {"2026-06-21", "2026-06-20", -1}, {"2026-03-28", "2026-03-30", 2},  // across the spring change
      {"2026-10-24", "2026-10-26", 2},  {"2025-06-20", "2026-06-20", 365},
      {"2026-06-20", "2026-02-30", std::nullopt}, {"today", "2026-06-20", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.today) + " → " + c.exam);
    EXPECT_EQ(purrlDaysLeft(c.today, c.exam, berlin), c.daysLeft);
  }
}

const std::string kStats = testing::testDataFile("purrl", "study-stats.json");

TEST(PurrlStudyStatsTest, DecodesEveryPartAndRoundTrips) {
  const auto stats = decodeJsonText<PurrlFocusStudyStats>(kStats);
  ASSERT_TRUE(stats.has_value()) << stats.error().message();
  EXPECT_EQ(stats->week.subjects[1].exam, PurrlFocusMockExam::tyt);
  EXPECT_FALSE(stats->week.subjects[1].subject.has_value());
  EXPECT_FALSE(stats->mocks[0].endedAt.has_value());
  EXPECT_EQ(stats->mocks[0].result->sections[0].net, 28.0);
  EXPECT_EQ(stats->exam->friends[0].name, "Ece");
  EXPECT_EQ(stats->examWeek->endDay, "2026-06-20");
  EXPECT_EQ(decodeJsonText<PurrlFocusStudyStats>(encodeRecord(*stats).dump()), stats);
}

TEST(PurrlStudyStatsTest, UnknownPaperOrExamFailsTheRecord) {
  struct Case {
    std::string from;
    std::string to;
    std::string error;
  };
  const std::vector<Case> cases{
      {R"("exam": "tyt", "minutes": 165)", R"("exam": "kpss", "minutes": 165)",
       "week.subjects[1].exam: unknown value \"kpss\""},
      {R"("exam": "yks")", R"("exam": "ales")", "exam.exam: unknown value \"ales\""},
      {R"("runId": "run-9", "exam": "tyt")", R"("runId": "run-9", "exam": "TYT")", "mocks[0].exam: unknown value \"TYT\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.to);
    std::string text(kStats);
    const auto at = text.find(c.from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, c.from.size(), c.to);
    EXPECT_EQ(testing::refusalOf(decodeJsonText<PurrlFocusStudyStats>(text)), c.error);
  }
}

TEST(PurrlMockCalendarTest, PastDatesCarryTheirRunAndNet) {
  const auto calendar = decodeJsonText<PurrlFocusMockCalendar>(testing::testDataFile("purrl", "mock-calendar.json"));
  ASSERT_TRUE(calendar.has_value()) << calendar.error().message();
  EXPECT_EQ(calendar->plans[0].repeat, PurrlFocusMockRepeat::weekly);
  EXPECT_EQ(calendar->past[0].runId, "run-3");
  EXPECT_EQ(calendar->past[0].net, 61.25);
  EXPECT_EQ(calendar->past[0].at, 1778310000000);
  EXPECT_FALSE(calendar->past[1].net.has_value());
  EXPECT_EQ(encodeRecord(calendar->past[1]).dump().find("net"), std::string::npos);
  EXPECT_EQ(calendar->friends[0].people[0].id, "u2");
}

}  // namespace
}  // namespace kovi
