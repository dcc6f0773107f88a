#include <gtest/gtest.h>

#include <cmath>

#include "KoviMacHolds/MacHoldsShieldLayout.h"

namespace kovi::holds {
namespace {

using Layout = MacHoldsShieldLayout;

// A stand-in text engine: every character is half the point size wide, a
// line is 1.25 point sizes high, and wrapped texts break into as many lines
// as their width needs.
MacHoldsShieldSize fakeMeasure(const MacHoldsShieldText& text) {
  const double natural = 0.5 * text.style.pointSize * static_cast<double>(text.text.size());
  const double lineHeight = 1.25 * text.style.pointSize;
  if (text.style.wrapWidth && natural > *text.style.wrapWidth) {
    return {*text.style.wrapWidth, lineHeight * std::ceil(natural / *text.style.wrapWidth)};
  }
  return {natural, lineHeight};
}

MacHoldsShieldView shield(MacHoldsDue due, std::optional<std::string> appName) {
  return {.due = due, .appName = std::move(appName), .openKovi = {}, .back = {}, .catStage = std::nullopt};
}

Calendar utc() { return *Calendar::inZone("UTC"); }

const Date kUntil = Date::fromUnixMillis(1'780'000'000'000.0);

Layout place(const MacHoldsShieldView& view) {
  const auto texts = MacHoldsShieldTexts::of(view, PurrlFontStore(), utc());
  return Layout::place(view.buttons(), MacHoldsShieldMeasures::of(texts, fakeMeasure));
}

void expectInsidePanel(const MacHoldsShieldRect& rect, const Layout& layout, std::string_view what) {
  SCOPED_TRACE(what);
  EXPECT_GE(rect.x, 0);
  EXPECT_LE(rect.maxX(), layout.size.width);
  EXPECT_GE(rect.y, 0);
  EXPECT_LE(rect.maxY(), layout.size.height);
}

void expectCentred(double left, double right, std::string_view what) {
  SCOPED_TRACE(what);
  EXPECT_NEAR(left, Layout::width - right, 1e-9);
}

void expectStackedAndCentred(const MacHoldsShieldView& view) {
  const Layout layout = place(view);
  EXPECT_EQ(layout.size.width, Layout::width);
  EXPECT_GE(layout.size.height, Layout::minimumHeight);

  const std::vector<std::pair<std::string_view, MacHoldsShieldRect>> stack{
      {"cat", layout.cat},       {"label", layout.label},       {"headline", layout.headline},
      {"time", layout.time},     {"footnote", layout.footnote}, {"first button", layout.buttons[0].frame},
  };
  for (std::size_t index = 0; index < stack.size(); ++index) {
    expectInsidePanel(stack[index].second, layout, stack[index].first);
    if (index > 0) {
      SCOPED_TRACE(std::string(stack[index].first) + " below " + std::string(stack[index - 1].first));
      EXPECT_GT(stack[index].second.y, stack[index - 1].second.maxY());
    }
  }
  expectInsidePanel(layout.caption, layout, "caption");
  expectInsidePanel(layout.buttons[1].frame, layout, "second button");
  // The panel ends a fixed margin below the buttons, not further.
  EXPECT_DOUBLE_EQ(layout.size.height, layout.buttons[0].frame.maxY() + 24);

  // Each row is centred.
  const std::tuple<MacHoldsShieldRect, MacHoldsShieldRect, std::string_view> rows[] = {
      {layout.cat, layout.cat, "cat"}, {layout.label, layout.label, "label"},
      {layout.headline, layout.headline, "headline"}, {layout.clock, layout.time, "clock and time"},
      {layout.footnote, layout.footnote, "footnote"}, {layout.buttons[0].frame, layout.buttons[1].frame, "buttons"}};
  for (const auto& [first, last, what] : rows) expectCentred(first.x, last.maxX(), what);
  // The caption sits beside the cat, not on it.
  EXPECT_GT(layout.caption.x, layout.cat.maxX());
  EXPECT_LT(layout.caption.y, layout.cat.maxY());

  // The buttons hold their symbol and title.
  const auto buttons = view.buttons();
  EXPECT_LT(layout.buttons[0].frame.maxX(), layout.buttons[1].frame.x);
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    SCOPED_TRACE(buttons[index].title);
    const Layout::Button& button = layout.buttons[index];
    const MacPurrlButtonStyle& style = buttons[index].style;
    EXPECT_EQ(button.frame.height, style.height());
    EXPECT_EQ(button.cornerRadius, style.cornerRadius());
    EXPECT_EQ(button.symbol.has_value(), buttons[index].symbol.has_value());
    EXPECT_NEAR(button.title.y - button.frame.y, button.frame.maxY() - button.title.maxY(), 1e-9);
    EXPECT_NEAR(button.frame.maxX() - button.title.maxX(), style.horizontalPadding(), 1e-9);
    if (button.symbol) {
      EXPECT_NEAR(button.symbol->x - button.frame.x, style.horizontalPadding(), 1e-9);
      EXPECT_LT(button.symbol->maxX(), button.title.x);
      EXPECT_NEAR(button.symbol->y - button.frame.y, button.frame.maxY() - button.symbol->maxY(), 1e-9);
    } else {
      EXPECT_NEAR(button.title.x - button.frame.x, style.horizontalPadding(), 1e-9);
    }
  }
}

const MacHoldsShieldView kDiscordStudy = shield(MacHoldsDue::study(kUntil), "Discord");

TEST(MacHoldsShieldLayoutTest, StacksCentredRowsInsideThePanel) {
  const std::pair<const char*, MacHoldsShieldView> cases[] = {
      {"StudyWithName", kDiscordStudy}, {"SleepWithoutName", shield(MacHoldsDue::sleep(kUntil), std::nullopt)},
      {"ExamWeek", shield(MacHoldsDue::social(kUntil), "Safari")},
      {"NameThatWrapsTheHeadline", shield(MacHoldsDue::social(kUntil), "A Very Long Application Name For Chatting")},
      {"HoldWithoutEnd", shield({MacHoldsDue::Kind::study, std::nullopt}, "Discord")}};
  for (const auto& [name, view] : cases) {
    SCOPED_TRACE(name);
    expectStackedAndCentred(view);
  }
}

TEST(MacHoldsShieldLayout, TallerTextsPushOnlyWhatIsBelowThem) {
  const auto texts = MacHoldsShieldTexts::of(kDiscordStudy, PurrlFontStore(), utc());
  const MacHoldsShieldMeasures measures = MacHoldsShieldMeasures::of(texts, fakeMeasure);
  const Layout before = Layout::place(kDiscordStudy.buttons(), measures);

  MacHoldsShieldMeasures taller = measures;
  taller.headline.height += 30;
  const Layout after = Layout::place(kDiscordStudy.buttons(), taller);

  EXPECT_EQ(after.cat, before.cat);
  EXPECT_EQ(after.label, before.label);
  EXPECT_EQ(after.headline.y, before.headline.y);
  EXPECT_DOUBLE_EQ(after.time.y, before.time.y + 30);
  EXPECT_DOUBLE_EQ(after.footnote.y, before.footnote.y + 30);
  EXPECT_DOUBLE_EQ(after.buttons[1].frame.y, before.buttons[1].frame.y + 30);
  EXPECT_DOUBLE_EQ(after.size.height, before.size.height + 30);
}

TEST(MacHoldsShieldLayout, WiderTitlesWidenTheirButtonAndKeepTheRowCentred) {
  const auto texts = MacHoldsShieldTexts::of(kDiscordStudy, PurrlFontStore(), utc());
  MacHoldsShieldMeasures measures = MacHoldsShieldMeasures::of(texts, fakeMeasure);
  const Layout before = Layout::place(kDiscordStudy.buttons(), measures);
  measures.buttonTitles[0].width += 40;
  const Layout after = Layout::place(kDiscordStudy.buttons(), measures);

  EXPECT_DOUBLE_EQ(after.buttons[0].frame.width, before.buttons[0].frame.width + 40);
  EXPECT_DOUBLE_EQ(after.buttons[1].frame.width, before.buttons[1].frame.width);
  EXPECT_DOUBLE_EQ(after.buttons[0].frame.x, before.buttons[0].frame.x - 20);
  EXPECT_DOUBLE_EQ(after.buttons[1].frame.x, before.buttons[1].frame.x + 20);
}

TEST(MacHoldsShieldTexts, SetEachTextTheWayTheShieldShowsIt) {
  const auto texts = MacHoldsShieldTexts::of(kDiscordStudy, PurrlFontStore(), utc());
  const double wrapWidth = Layout::width - 2 * Layout::padding;

  // The words are the view's (its own test); here is how they are set.
  EXPECT_EQ(texts.label.text, kDiscordStudy.holdLabel());
  EXPECT_EQ(texts.headline.text, kDiscordStudy.headline());
  EXPECT_EQ(texts.time.text, kDiscordStudy.timeLine(utc()));
  EXPECT_TRUE(texts.label.style.uppercase);
  EXPECT_GT(texts.label.style.letterSpacing, 0);
  EXPECT_EQ(texts.headline.style.wrapWidth, wrapWidth);
  EXPECT_EQ(texts.footnote.style.wrapWidth, wrapWidth);
  EXPECT_FALSE(texts.label.style.wrapWidth);

  // The hand and heading faces follow the person's font choices.
  const PurrlFontStore defaults;
  EXPECT_EQ(texts.caption.style.face, defaults.handFace());
  EXPECT_EQ(texts.footnote.style.face, defaults.handFace());
  EXPECT_EQ(texts.headline.style.face, defaults.headingFace());
  EXPECT_EQ(texts.label.style.face, defaults.headingFace(true));
  EXPECT_EQ(texts.time.style.face.weight, 600);

  const auto buttons = kDiscordStudy.buttons();
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    SCOPED_TRACE(buttons[index].title);
    EXPECT_EQ(texts.buttonTitles[index].text, buttons[index].title);
    EXPECT_EQ(texts.buttonTitles[index].style.pointSize, buttons[index].style.fontSize());
    EXPECT_EQ(texts.buttonTitles[index].style.color, buttons[index].style.label());
  }
}

TEST(MacHoldsShieldTexts, AHoldWithoutEndHasNoTimeText) {
  const auto texts =
      MacHoldsShieldTexts::of(shield({MacHoldsDue::Kind::sleep, std::nullopt}, std::nullopt), PurrlFontStore(), utc());
  EXPECT_EQ(texts.time.text, "");
  EXPECT_EQ(texts.headline.text, "This app is resting during Sleep wind-down");
}

}  // namespace
}  // namespace kovi::holds
