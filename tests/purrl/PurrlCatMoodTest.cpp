#include <gtest/gtest.h>

#include <string>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/purrl/PurrlCatGrowthRules.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

// The waking hours are 6 to 22 inclusive and outside them nothing else counts;
// petting moves each waking mood one step towards glowing; away counts only
// from two days on and an idle day turns quiet from 17 o'clock; what was done
// and kept or missed decides the rest. Unnamed inputs keep their defaults.
TEST(PurrlCatMoodTest, FollowsTheRulesInOrder) {
  const auto rows = parseJson(testing::testDataFile("purrl", "cat-moods.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 25) << "cat-moods.json";
  for (const nlohmann::json& row : *rows) {
    SCOPED_TRACE(row.at("name").get<std::string>());
    const PurrlCatMoodResult result = PurrlCatGrowthRules::mood(
        {row.at("hour"), row.value("petted", false), row.value("things", 0), row.value("keptRecently", false),
         row.value("missedRecently", false), row.value("awayDays", 0)});
    EXPECT_EQ(std::pair(enumName(result.mood), enumName(result.reason)),
              std::pair(std::string_view(row.at("mood").get_ref<const std::string&>()),
                        std::string_view(row.at("reason").get_ref<const std::string&>())));
  }
}

}  // namespace
}  // namespace kovi
