#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlFocusMode.h"

namespace kovi {
namespace {

using enum PurrlFocusModeID;
using enum PurrlFocusStrictness;
using enum PurrlFocusAppPolicy;

struct RowCase {
  friend void PrintTo(const RowCase& c, std::ostream* out) { *out << enumName(c.id); }
  PurrlFocusModeID id;
  int defaultMinutes;
  PurrlFocusStrictness strictness;
  PurrlFocusAppPolicy phoneApps;
  bool lecturePass;
  PurrlFocusAppPolicy macApps;
  std::size_t domainCount;  // social 10, streaming 5, games 6, messaging 3, video 2
  std::size_t macAppCount;
};

class FocusModeRowTest : public ::testing::TestWithParam<RowCase> {};

TEST_P(FocusModeRowTest, HoldsItsColumns) {
  const RowCase& c = GetParam();
  const PurrlFocusModeSpec& row = purrlFocusModeSpec(c.id);
  EXPECT_EQ(row.id, c.id);
  EXPECT_EQ(row.defaultMinutes, c.defaultMinutes);
  EXPECT_EQ(row.defaultStrictness, c.strictness);
  EXPECT_EQ(row.phoneApps, c.phoneApps);
  EXPECT_EQ(row.lecturePass, c.lecturePass);
  EXPECT_EQ(row.macApps, c.macApps);
  EXPECT_EQ(row.blockedDomains.size(), c.domainCount);
  EXPECT_EQ(row.macBundleIDs.size(), c.macAppCount);
}

TEST_P(FocusModeRowTest, OffersItsDefaultLengthAmongAscendingOptions) {
  const PurrlFocusModeSpec& row = purrlFocusModeSpec(GetParam().id);
  EXPECT_TRUE(std::ranges::is_sorted(row.minuteOptions));
  EXPECT_GT(row.minuteOptions.front(), 0);
  EXPECT_NE(std::ranges::find(row.minuteOptions, row.defaultMinutes), row.minuteOptions.end());
}

TEST_P(FocusModeRowTest, PhoneColumnsNameRealApplications) {
  const PurrlFocusModeSpec& row = purrlFocusModeSpec(GetParam().id);
  ASSERT_FALSE(row.phoneSuggestions.empty());
  std::set<std::string> ids;
  for (const PurrlFocusSuggestion& suggestion : row.phoneSuggestions) {
    EXPECT_TRUE(ids.insert(suggestion.id).second) << "repeated suggestion " << suggestion.id;
    EXPECT_FALSE(suggestion.symbol.empty()) << suggestion.id;
    EXPECT_NE(suggestion.brand, std::optional<std::string>("")) << suggestion.id;
  }
  ASSERT_FALSE(row.hideBundleIDs.empty());
  for (const std::string& bundleID : row.hideBundleIDs) {
    EXPECT_GE(std::ranges::count(bundleID, '.'), 1) << bundleID;
  }
}

INSTANTIATE_TEST_SUITE_P(
    FocusModes, FocusModeRowTest,
    ::testing::Values(RowCase{study, 50, committed, allowList, true, allowList, 24, 37},
                      RowCase{deep, 90, committed, blockList, false, blockList, 26, 9},
                      RowCase{quick, 25, chill, blockList, false, blockList, 12, 9},
                      RowCase{reading, 30, chill, allowList, false, allowList, 26, 7},
                      RowCase{hangout, 240, chill, allowList, false, blockList, 21, 9},
                      RowCase{couple, 240, chill, blockList, false, blockList, 23, 9},
                      RowCase{sleep, 480, committed, blockList, false, blockList, 26, 9},
                      RowCase{gym, 60, chill, blockList, false, blockList, 17, 9},
                      RowCase{mock, 165, locked, allowList, false, allowList, 26, 3},
                      RowCase{studyDate, 50, committed, allowList, true, allowList, 24, 38}),
    [](const auto& info) { return std::string(enumName(info.param.id)); });

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

TEST(FocusModeTable, DomainListsJoinInTheirOrder) {
  const auto& study = purrlFocusModeSpec(PurrlFocusModeID::study).blockedDomains;
  const auto& sleep = purrlFocusModeSpec(PurrlFocusModeID::sleep).blockedDomains;
  const auto& gym = purrlFocusModeSpec(PurrlFocusModeID::gym).blockedDomains;
  const auto& quick = purrlFocusModeSpec(PurrlFocusModeID::quick).blockedDomains;
  // Sleep is study's lists followed by the two video domains.
  ASSERT_EQ(sleep.size(), study.size() + 2);
  EXPECT_TRUE(std::equal(study.begin(), study.end(), sleep.begin()));
  const std::vector<std::string> video(sleep.end() - 2, sleep.end());
  // Gym keeps social and streaming, drops games and messaging, ends with video.
  ASSERT_EQ(gym.size(), 17u);
  EXPECT_TRUE(std::equal(study.begin(), study.begin() + 15, gym.begin()));
  EXPECT_EQ(std::vector<std::string>(gym.end() - 2, gym.end()), video);
  for (auto game = study.begin() + 15; game != study.end(); ++game) {
    EXPECT_EQ(std::ranges::find(gym, *game), gym.end()) << *game;
  }
  // Quick is social then video.
  EXPECT_TRUE(std::equal(study.begin(), study.begin() + 10, quick.begin()));
  EXPECT_EQ(std::vector<std::string>(quick.end() - 2, quick.end()), video);
  // The two video domains are one service, desktop and mobile.
  EXPECT_EQ(video[1], "m." + video[0]);
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

TEST(FocusModeTable, EnumerationsUseTheirRawNames) {
  struct NameCase {
    PurrlFocusModeID id;
    std::string_view name;
  };
  for (const NameCase c : {NameCase{study, "study"}, NameCase{gym, "gym"}, NameCase{studyDate, "studyDate"}}) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(enumName(c.id), c.name);
    EXPECT_EQ(enumFromName<PurrlFocusModeID>(c.name), c.id);
  }
  EXPECT_EQ(static_cast<int>(gym), 7);
  EXPECT_EQ(enumName(allowList), "allowList");
  EXPECT_EQ(enumFromName<PurrlFocusStrictness>("locked"), locked);
  EXPECT_FALSE(enumFromName<PurrlFocusAppPolicy>("denyList").has_value());
}

}  // namespace
}  // namespace kovi
