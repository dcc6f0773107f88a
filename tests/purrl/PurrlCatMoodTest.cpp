#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "KoviKit/purrl/PurrlCatGrowthRules.h"

namespace kovi {
namespace {

using Mood = PurrlCatMood;
using Reason = PurrlCatMoodReason;

struct MoodCase {
  std::string name;
  PurrlCatMoodInputs inputs;
  Mood mood;
  Reason reason;
  friend void PrintTo(const MoodCase& c, std::ostream* out) { *out << c.name; }
};

PurrlCatMoodInputs at(int hour) { return PurrlCatMoodInputs{.hour = hour}; }

PurrlCatMoodInputs with(PurrlCatMoodInputs inputs, auto change) {
  change(inputs);
  return inputs;
}

class PurrlCatMoodTest : public ::testing::TestWithParam<MoodCase> {};

TEST_P(PurrlCatMoodTest, FollowsTheRulesInOrder) {
  const MoodCase& c = GetParam();
  const PurrlCatMoodResult result = PurrlCatGrowthRules::mood(c.inputs);
  EXPECT_EQ(enumName(result.mood), enumName(c.mood));
  EXPECT_EQ(enumName(result.reason), enumName(c.reason));
}

const auto petted = [](PurrlCatMoodInputs& in) { in.petted = true; };
const auto kept = [](PurrlCatMoodInputs& in) { in.keptRecently = true; };
const auto missed = [](PurrlCatMoodInputs& in) { in.missedRecently = true; };
const auto busy = [](int things) { return [things](PurrlCatMoodInputs& in) { in.things = things; }; };
const auto away = [](int days) { return [days](PurrlCatMoodInputs& in) { in.awayDays = days; }; };

// The waking hours are 6 to 22 inclusive; outside them nothing else counts.
INSTANTIATE_TEST_SUITE_P(
    HourBounds, PurrlCatMoodTest,
    ::testing::Values(
        MoodCase{"hour5", at(5), Mood::sleepy, Reason::night},
        MoodCase{"hour5PettedKeptBusy", with(with(with(at(5), petted), kept), busy(5)), Mood::sleepy, Reason::night},
        MoodCase{"hour6", at(6), Mood::content, Reason::calm},
        MoodCase{"hour17Idle", at(17), Mood::bored, Reason::quietDay},
        MoodCase{"hour22Idle", at(22), Mood::bored, Reason::quietDay},
        MoodCase{"hour22Busy", with(at(22), busy(1)), Mood::happy, Reason::busyDay},
        MoodCase{"hour23", at(23), Mood::sleepy, Reason::night}),
    [](const auto& info) { return info.param.name; });

// Petting moves each waking mood one step towards glowing.
INSTANTIATE_TEST_SUITE_P(
    PettingFromEveryMood, PurrlCatMoodTest,
    ::testing::Values(
        MoodCase{"glowingStaysGlowing", with(with(at(12), busy(3)), petted), Mood::glowing, Reason::busyDay},
        MoodCase{"glowingKeptKeepsReason", with(with(with(at(12), busy(1)), kept), petted), Mood::glowing,
                 Reason::keptKovi},
        MoodCase{"happyBecomesGlowing", with(with(at(12), busy(1)), petted), Mood::glowing, Reason::busyDay},
        MoodCase{"contentBecomesHappy", with(at(12), petted), Mood::happy, Reason::petted},
        MoodCase{"boredQuietBecomesContent", with(at(18), petted), Mood::content, Reason::petted},
        MoodCase{"boredAwayKeepsAway", with(with(at(12), away(3)), petted), Mood::content, Reason::away},
        MoodCase{"sulkyBecomesContent", with(with(at(12), missed), petted), Mood::content, Reason::petted},
        MoodCase{"sleepyStaysSleepy", with(at(3), petted), Mood::sleepy, Reason::night}),
    [](const auto& info) { return info.param.name; });

// Away counts only from two days on; an idle day turns quiet from 17 o'clock.
INSTANTIATE_TEST_SUITE_P(
    AwayDays, PurrlCatMoodTest,
    ::testing::Values(MoodCase{"away1At10", with(at(10), away(1)), Mood::content, Reason::calm},
                      MoodCase{"away1At17", with(at(17), away(1)), Mood::bored, Reason::quietDay},
                      MoodCase{"away3At10", with(at(10), away(3)), Mood::bored, Reason::away},
                      MoodCase{"away3At17", with(at(17), away(3)), Mood::bored, Reason::away},
                      MoodCase{"away2At10", with(at(10), away(2)), Mood::bored, Reason::away},
                      MoodCase{"away3ButBusy", with(with(at(10), away(3)), busy(1)), Mood::happy, Reason::busyDay}),
    [](const auto& info) { return info.param.name; });

// What was done and kept or missed decides the rest.
INSTANTIATE_TEST_SUITE_P(
    DayFacts, PurrlCatMoodTest,
    ::testing::Values(
        MoodCase{"missedNothingDone", with(at(12), missed), Mood::sulky, Reason::missedKovi},
        MoodCase{"missedButBusy", with(with(at(12), missed), busy(1)), Mood::happy, Reason::busyDay},
        MoodCase{"missedAndKeptNothingDone", with(with(at(12), missed), kept), Mood::sulky, Reason::missedKovi},
        MoodCase{"keptNothingDone", with(at(12), kept), Mood::happy, Reason::keptKovi},
        MoodCase{"keptAndBusy", with(with(at(12), kept), busy(1)), Mood::glowing, Reason::keptKovi},
        MoodCase{"oneThing", with(at(12), busy(1)), Mood::happy, Reason::busyDay},
        MoodCase{"threeThings", with(at(12), busy(3)), Mood::glowing, Reason::busyDay},
        MoodCase{"negativeThingsCountAsDone", with(at(12), busy(-1)), Mood::happy, Reason::busyDay}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace kovi
