#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/purrl/PurrlFocusMode.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

using enum PurrlFocusModeID;
using enum PurrlFocusStrictness;
using enum PurrlFocusAppPolicy;

// Each row's columns as the table's own names (domains: social 10, streaming
// 5, games 6, messaging 3, video 2; counted, like the Mac applications), its
// length options and its phone lists.
TEST(FocusModeTable, EachRowHoldsItsColumns) {
  const auto rows = parseJson(testing::testDataFile("purrl", "focus-modes.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 10) << "focus-modes.json";
  for (const nlohmann::json& c : *rows) {
    SCOPED_TRACE(c.dump());
    const PurrlFocusModeSpec& row =
        purrlFocusModeSpec(enumFromName<PurrlFocusModeID>(c.at("id").get_ref<const std::string&>()).value());
    EXPECT_EQ(nlohmann::json({{"id", enumName(row.id)}, {"defaultMinutes", row.defaultMinutes},
                              {"defaultStrictness", enumName(row.defaultStrictness)},
                              {"phoneApps", enumName(row.phoneApps)}, {"lecturePass", row.lecturePass},
                              {"macApps", enumName(row.macApps)}, {"blockedDomains", row.blockedDomains.size()},
                              {"macBundleIDs", row.macBundleIDs.size()}}),
              c);
    // The default length is among the ascending options.
    EXPECT_TRUE(std::ranges::is_sorted(row.minuteOptions));
    EXPECT_GT(row.minuteOptions.front(), 0);
    EXPECT_NE(std::ranges::find(row.minuteOptions, row.defaultMinutes), row.minuteOptions.end());
    // The phone columns name real applications, each once.
    ASSERT_FALSE(row.phoneSuggestions.empty());
    std::set<std::string> ids;
    for (const PurrlFocusSuggestion& suggestion : row.phoneSuggestions) {
      EXPECT_TRUE(ids.insert(suggestion.id).second) << "repeated suggestion " << suggestion.id;
      EXPECT_FALSE(suggestion.symbol.empty()) << suggestion.id;
      EXPECT_NE(suggestion.brand, std::optional<std::string>("")) << suggestion.id;
    }
    ASSERT_FALSE(row.hideBundleIDs.empty());
    for (const std::string& bundleID : row.hideBundleIDs) EXPECT_GE(std::ranges::count(bundleID, '.'), 1) << bundleID;
  }
}

TEST(FocusModeTable, HoldsOneRowPerIdInIdOrder) {
  const auto table = purrlFocusModeTable();
  ASSERT_EQ(table.size(), 10u);
  for (int index = 0; index < 10; ++index) {
    const auto id = static_cast<PurrlFocusModeID>(index);
    EXPECT_EQ(table[index].id, id);
    // Look-up and the table hand out the same row, built once.
    EXPECT_EQ(&purrlFocusModeSpec(id), &table[index]);
  }
}

TEST(FocusModeTable, StudyListsShareOneJoinedMacList) {
  const auto& study = purrlFocusModeSpec(PurrlFocusModeID::study).macBundleIDs;
  const auto& studyDate = purrlFocusModeSpec(PurrlFocusModeID::studyDate).macBundleIDs;
  EXPECT_EQ(study.front(), "com.apple.Safari");
  EXPECT_EQ(study.back(), "com.apple.systempreferences");
  ASSERT_EQ(studyDate.size(), study.size() + 1);
  EXPECT_TRUE(std::equal(study.begin(), study.end(), studyDate.begin()));
  EXPECT_EQ(studyDate.back(), "com.apple.FaceTime");
}

TEST(FocusModeTable, DomainsAreDistinctBareHostNames) {
  // The sleep row holds all five lists once each.
  const auto& domains = purrlFocusModeSpec(PurrlFocusModeID::sleep).blockedDomains;
  EXPECT_EQ(std::set<std::string>(domains.begin(), domains.end()).size(), domains.size());
  for (const std::string& domain : domains) {
    EXPECT_TRUE(std::ranges::all_of(domain, [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '-'; }))
        << domain;
    EXPECT_NE(domain.find('.'), std::string::npos) << domain;
    EXPECT_NE(domain.front(), '.') << domain;
    EXPECT_NE(domain.back(), '.') << domain;
  }
}

// Modes and policies are written by their raw names.
TEST(FocusModeTable, EnumerationsUseTheirRawNames) {
  EXPECT_EQ(enumName(studyDate), "studyDate");
  EXPECT_EQ(enumFromName<PurrlFocusModeID>("studyDate"), studyDate);
  EXPECT_EQ(enumFromName<PurrlFocusStrictness>("locked"), locked);
  EXPECT_FALSE(enumFromName<PurrlFocusAppPolicy>("denyList").has_value());
}

}  // namespace
}  // namespace kovi
