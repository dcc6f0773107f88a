#include <gtest/gtest.h>

#include <string>

#include "KoviKit/purrl/PurrlCatGrowthRules.h"

namespace kovi {
namespace {

using Mood = PurrlCatMood;
using Reason = PurrlCatMoodReason;

PurrlCatMoodInputs at(int hour) { return PurrlCatMoodInputs{.hour = hour}; }

PurrlCatMoodInputs with(PurrlCatMoodInputs inputs, auto change) {
  change(inputs);
  return inputs;
}

const auto petted = [](PurrlCatMoodInputs& in) { in.petted = true; };
const auto kept = [](PurrlCatMoodInputs& in) { in.keptRecently = true; };
const auto missed = [](PurrlCatMoodInputs& in) { in.missedRecently = true; };
const auto busy = [](int things) { return [things](PurrlCatMoodInputs& in) { in.things = things; }; };
const auto away = [](int days) { return [days](PurrlCatMoodInputs& in) { in.awayDays = days; }; };

TEST(PurrlCatMoodTest, FollowsTheRulesInOrder) {
  const struct {
    std::string name;
    PurrlCatMoodInputs inputs;
    Mood mood;
    Reason reason;
  } cases[] = {
      // The waking hours are 6 to 22 inclusive; outside them nothing else counts.
      {"hour 5", at(5), Mood::sleepy, Reason::night},
      {"hour 5 petted, kept, busy", with(with(with(at(5), petted), kept), busy(5)), Mood::sleepy, Reason::night},
      {"hour 6", at(6), Mood::content, Reason::calm}, {"hour 22 idle", at(22), Mood::bored, Reason::quietDay},
      {"hour 22 busy", with(at(22), busy(1)), Mood::happy, Reason::busyDay},
      {"hour 23", at(23), Mood::sleepy, Reason::night},
      // Petting moves each waking mood one step towards glowing.
      {"glowing stays glowing", with(with(at(12), busy(3)), petted), Mood::glowing, Reason::busyDay},
      {"glowing kept keeps its reason", with(with(with(at(12), busy(1)), kept), petted), Mood::glowing,
       Reason::keptKovi},
      {"happy becomes glowing", with(with(at(12), busy(1)), petted), Mood::glowing, Reason::busyDay},
      {"content becomes happy", with(at(12), petted), Mood::happy, Reason::petted},
      {"bored quiet becomes content", with(at(18), petted), Mood::content, Reason::petted},
      {"bored away keeps away", with(with(at(12), away(3)), petted), Mood::content, Reason::away},
      {"sulky becomes content", with(with(at(12), missed), petted), Mood::content, Reason::petted},
      {"sleepy stays sleepy", with(at(3), petted), Mood::sleepy, Reason::night},
      // Away counts only from two days on; an idle day turns quiet from 17 o'clock.
      {"away 1 at 10", with(at(10), away(1)), Mood::content, Reason::calm},
      {"away 1 at 17", with(at(17), away(1)), Mood::bored, Reason::quietDay},
      {"away 2 at 10", with(at(10), away(2)), Mood::bored, Reason::away},
      {"away 3 but busy", with(with(at(10), away(3)), busy(1)), Mood::happy, Reason::busyDay},
      // What was done and kept or missed decides the rest.
      {"missed, nothing done", with(at(12), missed), Mood::sulky, Reason::missedKovi},
      {"missed but busy", with(with(at(12), missed), busy(1)), Mood::happy, Reason::busyDay},
      {"missed and kept, nothing done", with(with(at(12), missed), kept), Mood::sulky, Reason::missedKovi},
      {"kept, nothing done", with(at(12), kept), Mood::happy, Reason::keptKovi},
      {"kept and busy", with(with(at(12), kept), busy(1)), Mood::glowing, Reason::keptKovi},
      {"three things", with(at(12), busy(3)), Mood::glowing, Reason::busyDay},
      {"negative things count as done", with(at(12), busy(-1)), Mood::happy, Reason::busyDay},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const PurrlCatMoodResult result = PurrlCatGrowthRules::mood(c.inputs);
    EXPECT_EQ(std::pair(enumName(result.mood), enumName(result.reason)),
              std::pair(enumName(c.mood), enumName(c.reason)));
  }
}

}  // namespace
}  // namespace kovi
