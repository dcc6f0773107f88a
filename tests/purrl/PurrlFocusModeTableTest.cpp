#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlFocusMode.h"

namespace kovi {
namespace {

using enum PurrlFocusModeID;
using enum PurrlFocusStrictness;
using enum PurrlFocusAppPolicy;

// Each row's columns, its length options and its phone lists.
TEST(FocusModeTable, EachRowHoldsItsColumns) {
  const struct {
    PurrlFocusModeID id;
    int defaultMinutes;
    PurrlFocusStrictness strictness;
    PurrlFocusAppPolicy phoneApps;
    bool lecturePass;
    PurrlFocusAppPolicy macApps;
    std::size_t domainCount;  // social 10, streaming 5, games 6, messaging 3, video 2
    std::size_t macAppCount;
  } rows[] = {{study, 50, committed, allowList, true, allowList, 24, 37},
              {deep, 90, committed, blockList, false, blockList, 26, 9},
              {quick, 25, chill, blockList, false, blockList, 12, 9},
              {reading, 30, chill, allowList, false, allowList, 26, 7},
              {hangout, 240, chill, allowList, false, blockList, 21, 9},
              {couple, 240, chill, blockList, false, blockList, 23, 9},
              {sleep, 480, committed, blockList, false, blockList, 26, 9},
              {gym, 60, chill, blockList, false, blockList, 17, 9},
              {mock, 165, locked, allowList, false, allowList, 26, 3},
              {studyDate, 50, committed, allowList, true, allowList, 24, 38}};
  for (const auto& c : rows) {
    SCOPED_TRACE(enumName(c.id));
    const PurrlFocusModeSpec& row = purrlFocusModeSpec(c.id);
    EXPECT_EQ(std::tuple(row.id, row.defaultMinutes, row.defaultStrictness, row.phoneApps, row.lecturePass, row.macApps,
                         row.blockedDomains.size(), row.macBundleIDs.size()),
              std::tuple(c.id, c.defaultMinutes, c.strictness, c.phoneApps, c.lecturePass, c.macApps, c.domainCount,
                         c.macAppCount));
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
