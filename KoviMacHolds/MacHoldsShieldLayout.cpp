#include "KoviMacHolds/MacHoldsShieldLayout.h"

#include <algorithm>

namespace kovi::holds {

namespace {

constexpr double kTop = 22;
constexpr double kCatWidth = 96;
constexpr double kCatHeight = 110;
constexpr double kCaptionGap = 6;
constexpr double kSymbolGap = 6;
constexpr double kButtonGap = 12;
constexpr double kBottom = 24;
constexpr double kWrapWidth = MacHoldsShieldLayout::width - 2 * MacHoldsShieldLayout::padding;

// The interface's own face for the time line: the desktop's standard sans serif.
PurrlFontFace systemFace(int weight) {
  return {std::nullopt, "Cantarell, Noto Sans, DejaVu Sans, sans-serif", weight, PurrlFontFace::Design::standard};
}

double centred(double itemWidth) { return (MacHoldsShieldLayout::width - itemWidth) / 2; }

}  // namespace

MacHoldsShieldTexts MacHoldsShieldTexts::of(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                            const Calendar& calendar) {
  const MacPurrlColor& ink = MacPurrlColors::ink;
  MacHoldsShieldTexts texts{
      .caption = {view.caption(), {fonts.handFace(), 15, std::nullopt, 0, false, ink.withAlpha(0.7)}},
      .label = {view.holdLabel(), {fonts.headingFace(true), 11, std::nullopt, 1.4, true, MacPurrlColors::accent}},
      .headline = {view.headline(), {fonts.headingFace(), 21, kWrapWidth, 0, false, ink}},
      .time = {view.timeLine(calendar), {systemFace(600), 12, std::nullopt, 0, false, ink.withAlpha(0.8)}},
      .footnote = {view.footnote(), {fonts.handFace(), 14, kWrapWidth, 0, false, ink.withAlpha(0.75)}},
      .buttonTitles = {},
  };
  const auto buttons = view.buttons();
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    const MacPurrlButtonStyle& style = buttons[index].style;
    texts.buttonTitles[index] = {buttons[index].title,
                                 {fonts.headingFace(true), style.fontSize(), std::nullopt, 0, false, style.label()}};
  }
  return texts;
}

MacHoldsShieldMeasures MacHoldsShieldMeasures::of(
    const MacHoldsShieldTexts& texts, const std::function<MacHoldsShieldSize(const MacHoldsShieldText&)>& measure) {
  return {
      .caption = measure(texts.caption),
      .label = measure(texts.label),
      .headline = measure(texts.headline),
      .time = measure(texts.time),
      .footnote = measure(texts.footnote),
      .buttonTitles = {measure(texts.buttonTitles[0]), measure(texts.buttonTitles[1])},
  };
}

MacHoldsShieldLayout MacHoldsShieldLayout::place(const std::array<MacHoldsShieldButton, 2>& buttons,
                                                 const MacHoldsShieldMeasures& measures) {
  MacHoldsShieldLayout layout;
  double y = kTop;

  layout.cat = {centred(kCatWidth), y, kCatWidth, kCatHeight};
  layout.caption = {layout.cat.maxX() + kCaptionGap, layout.cat.y + kCatHeight * 0.55, measures.caption.width,
                    measures.caption.height};
  y = layout.cat.maxY() + 10;

  layout.label = {centred(measures.label.width), y, measures.label.width, measures.label.height};
  y = layout.label.maxY() + 4;

  layout.headline = {padding, y, kWrapWidth, measures.headline.height};
  y = layout.headline.maxY() + 8;

  // The clock and the time read as one centred row.
  const double timeRowWidth = symbolSize + kSymbolGap + measures.time.width;
  layout.clock = {centred(timeRowWidth), y + (measures.time.height - symbolSize) / 2, symbolSize, symbolSize};
  layout.time = {layout.clock.maxX() + kSymbolGap, y, measures.time.width, measures.time.height};
  y = layout.time.maxY() + 12;

  layout.footnote = {padding, y, kWrapWidth, measures.footnote.height};
  y = layout.footnote.maxY() + 18;

  double rowWidth = -kButtonGap;
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    const MacPurrlButtonStyle& style = buttons[index].style;
    const MacHoldsShieldSize& title = measures.buttonTitles[index];
    const double symbolSpace = buttons[index].symbol ? symbolSize + kSymbolGap : 0;
    Button& button = layout.buttons[index];
    button.frame = {0, y, title.width + symbolSpace + 2 * style.horizontalPadding(), style.height()};
    button.cornerRadius = style.cornerRadius();
    rowWidth += button.frame.width + kButtonGap;
  }
  double x = centred(rowWidth);
  double rowHeight = 0;
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    Button& button = layout.buttons[index];
    const MacHoldsShieldSize& title = measures.buttonTitles[index];
    button.frame.x = x;
    double contentX = x + buttons[index].style.horizontalPadding();
    if (buttons[index].symbol) {
      button.symbol = MacHoldsShieldRect{contentX, y + (button.frame.height - symbolSize) / 2, symbolSize, symbolSize};
      contentX += symbolSize + kSymbolGap;
    }
    button.title = {contentX, y + (button.frame.height - title.height) / 2, title.width, title.height};
    x = button.frame.maxX() + kButtonGap;
    rowHeight = std::max(rowHeight, button.frame.height);
  }
  y += rowHeight + kBottom;

  layout.size = {width, std::max(minimumHeight, y)};
  return layout;
}

}  // namespace kovi::holds
