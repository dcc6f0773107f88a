#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "KoviMacHolds/MacHoldsShield.h"
#include "KoviMacHolds/MacPurrlCat.h"
#include "KoviMacHolds/PurrlFontStore.h"
#include "tests/holds_agent/MacHoldsFakes.h"

namespace kovi::holds::testing {
namespace {

const Date kUntil = Date::fromUnixMillis(1'795'427'400'000);  // 2026-11-23T12:50+03:00

constexpr const char* kScheduleFootnote =
    "Kovi is closed, so this Mac follows your last synced schedule. Nothing was closed.";
constexpr const char* kExamWeekFootnote =
    "Kovi is closed, so this Mac follows your last synced exam week. To use your Social allowance, open Kovi. "
    "Nothing was closed.";

struct TextCase {
  const char* name;
  MacHoldsDue::Kind kind;
  std::optional<std::string> appName;
  const char* label;
  const char* headline;
  const char* footnote;
};

const TextCase kTexts[] = {
    {"studyNamed", MacHoldsDue::Kind::study, "Discord", "Study", "Discord is resting during Study", kScheduleFootnote},
    {"sleepNamed", MacHoldsDue::Kind::sleep, "Steam", "Sleep wind-down", "Steam is resting during Sleep wind-down",
     kScheduleFootnote},
    {"socialNamed", MacHoldsDue::Kind::social, "Telegram", "Exam week", "Telegram is resting during exam week",
     kExamWeekFootnote},
    {"socialOpenUnnamed", MacHoldsDue::Kind::socialOpen, std::nullopt, "Exam week",
     "This app is resting during exam week", kExamWeekFootnote},
};

TEST(MacHoldsShieldText, SaysWhatIsHeldAndWhy) {
  for (const TextCase& text : kTexts) {
    SCOPED_TRACE(text.name);
    const MacHoldsShieldView view{.due = {text.kind, kUntil}, .appName = text.appName, .openKovi = {}, .back = {},
                                  .catStage = std::nullopt};
    EXPECT_EQ(view.holdLabel(), text.label);
    EXPECT_EQ(view.headline(), text.headline);
    EXPECT_EQ(view.footnote(), text.footnote);
    EXPECT_EQ(view.caption(), "it can wait.");
    const std::string time = view.timeLine(istanbulCalendar());
    EXPECT_EQ(time.rfind("Held until ", 0), 0u) << time;
    // 12:50 in the zone's wall clock, whatever the locale's hour style.
    EXPECT_NE(time.find("12:50"), std::string::npos) << time;
  }
}

// What the buttons do is the guard's test.
TEST(MacHoldsShieldView, ButtonsAreOpenKoviThenBackToFocusWhichIsTheDefault) {
  const MacHoldsShieldView view{.due = MacHoldsDue::study(kUntil), .appName = std::nullopt, .openKovi = {},
                                .back = {}, .catStage = "kitten"};
  const auto buttons = view.buttons();
  EXPECT_EQ(buttons[0].title, "Open Kovi");
  EXPECT_EQ(buttons[0].symbol, "arrow.up.forward.app");
  EXPECT_FALSE(buttons[0].isDefault);
  EXPECT_EQ(buttons[1].title, "Back to focus");
  EXPECT_TRUE(buttons[1].isDefault);
  EXPECT_TRUE(buttons[1].style.primary);
  EXPECT_EQ(MacHoldsShieldView::title(), "Kovi focus");
  EXPECT_EQ(view.cat(), (MacPurrlCat{MacPurrlCatPose::sleepy, "kitten", false}));
  EXPECT_EQ(view.cat().stillImageName(), "mascot_still_sleepy");
}

// Preferences held in memory.
class MemoryPreferences final : public KeyValueStore {
 public:
  explicit MemoryPreferences(nlohmann::json values) : values_(std::move(values)) {}
  std::expected<nlohmann::json, KeyValueStoreError> values() const override { return values_; }
  std::expected<void, KeyValueStoreError> update(const std::function<void(nlohmann::json&)>& change) override {
    change(values_);
    return {};
  }

 private:
  nlohmann::json values_;
};

struct FontCase {
  const char* name;
  nlohmann::json values;
  PurrlFontHeading heading;
  PurrlFontHand hand;
  std::optional<std::string> headingFace;
  std::optional<std::string> handFace;
};

const FontCase kFonts[] = {
    {"nothingStored", nlohmann::json::object(), PurrlFontHeading::kovi, PurrlFontHand::shantell, "Nunito-ExtraBold",
     "ShantellSans-SemiBold"},
    {"classicAndCaveat", {{"kovi.fonts.heading", "classic"}, {"kovi.fonts.hand", "caveat"}},
     PurrlFontHeading::classic, PurrlFontHand::caveat, std::nullopt, "Caveat-Bold"},
    {"systemHeading", {{"kovi.fonts.heading", "system"}}, PurrlFontHeading::system, PurrlFontHand::shantell,
     std::nullopt, "ShantellSans-SemiBold"},
    {"unknownNamesFallBack", {{"kovi.fonts.heading", "comic"}, {"kovi.fonts.hand", "Caveat"}},
     PurrlFontHeading::kovi, PurrlFontHand::shantell, "Nunito-ExtraBold", "ShantellSans-SemiBold"},
    {"nonStringsFallBack", {{"kovi.fonts.heading", 2}, {"kovi.fonts.hand", nullptr}}, PurrlFontHeading::kovi,
     PurrlFontHand::shantell, "Nunito-ExtraBold", "ShantellSans-SemiBold"},
};

TEST(PurrlFontStoreChoice, ReadsTheChoicesFromPreferences) {
  for (const FontCase& font : kFonts) {
    SCOPED_TRACE(font.name);
    const MemoryPreferences preferences(font.values);
    const PurrlFontStore store(preferences);
    EXPECT_EQ(store.heading(), font.heading);
    EXPECT_EQ(store.hand(), font.hand);
    EXPECT_EQ(store.headingFace().postScriptName, font.headingFace);
    EXPECT_EQ(store.handFace().postScriptName, font.handFace);
  }
}

TEST(PurrlFontStore, KoviHeadingHasABoldWeightOfItsOwn) {
  const PurrlFontStore store;
  EXPECT_EQ(store.headingFace(true).postScriptName, "Nunito-Bold");
  EXPECT_LT(store.headingFace(true).weight, store.headingFace(false).weight);
}

TEST(PurrlCatStage, FollowsTheStoredLevelClampedLikeTheApp) {
  const std::pair<nlohmann::json, std::optional<std::string>> cases[] = {
      {nlohmann::json::object(), std::nullopt}, {{{"purrl.cat.level", "2"}}, std::nullopt},
      {{{"purrl.cat.level", -3}}, "kitten"}, {{{"purrl.cat.level", 0}}, "kitten"},
      {{{"purrl.cat.level", 1}}, "young"}, {{{"purrl.cat.level", 2}}, "grown"}, {{{"purrl.cat.level", 9}}, "grown"},
  };
  for (const auto& [values, stage] : cases) {
    SCOPED_TRACE(values.dump());
    EXPECT_EQ(purrlCatStage(MemoryPreferences(values)), stage);
  }
}

TEST(MacPurrlCat, OnlyTheKittenStageLooksYounger) {
  EXPECT_TRUE((MacPurrlCat{MacPurrlCatPose::idle, "kitten", false}.isKitten()));
  for (const std::optional<std::string>& stage : {std::optional<std::string>("young"),
                                                  std::optional<std::string>("grown"), std::optional<std::string>()}) {
    EXPECT_FALSE((MacPurrlCat{MacPurrlCatPose::idle, stage, false}.isKitten())) << stage.value_or("none");
  }
}

}  // namespace
}  // namespace kovi::holds::testing
