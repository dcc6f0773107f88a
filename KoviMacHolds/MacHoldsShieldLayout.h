#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsShield.h"
#include "KoviMacHolds/PurrlFontStore.h"

namespace kovi::holds {

// Sizes and rectangles in points, y growing downwards from the panel's top
// left corner (the direction the shield is read in).
struct MacHoldsShieldSize {
  double width = 0;
  double height = 0;
  bool operator==(const MacHoldsShieldSize&) const = default;
};

struct MacHoldsShieldRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  bool operator==(const MacHoldsShieldRect&) const = default;
};

// How one text of the shield is set. A wrapped text breaks at word
// boundaries to `wrapWidth` and centres each line inside that width.
struct MacHoldsShieldTextStyle {
  PurrlFontFace face;
  double pointSize = 0;
  std::optional<double> wrapWidth;
  double letterSpacing = 0;  // points added after every character
  bool uppercase = false;
  MacPurrlColor color;
  bool operator==(const MacHoldsShieldTextStyle&) const = default;
};

struct MacHoldsShieldText {
  std::string text;
  MacHoldsShieldTextStyle style;
};

// Every text on the shield with its style, so that each desktop's text
// engine measures and draws exactly the same things.
struct MacHoldsShieldTexts {
  MacHoldsShieldText caption;
  MacHoldsShieldText label;
  MacHoldsShieldText headline;
  MacHoldsShieldText time;
  MacHoldsShieldText footnote;
  std::array<MacHoldsShieldText, 2> buttonTitles;  // in the order of MacHoldsShieldView::buttons()

  static MacHoldsShieldTexts of(const MacHoldsShieldView& view, const PurrlFontStore& fonts, const Calendar& calendar);
};

// The same texts as measured by a desktop's text engine.
struct MacHoldsShieldMeasures {
  MacHoldsShieldSize caption;
  MacHoldsShieldSize label;
  MacHoldsShieldSize headline;
  MacHoldsShieldSize time;
  MacHoldsShieldSize footnote;
  std::array<MacHoldsShieldSize, 2> buttonTitles;

  static MacHoldsShieldMeasures of(const MacHoldsShieldTexts& texts,
                                   const std::function<MacHoldsShieldSize(const MacHoldsShieldText&)>& measure);
};

// Where everything on the shield goes, top to bottom: the cat with its
// caption, the hold label, the headline, the time line with its clock, the
// footnote and the row of buttons, each centred on a panel 480 points wide
// and at least 220 high. A desktop measures the texts, asks for the layout and
// paints; the panel takes `size` as its content size.
struct MacHoldsShieldLayout {
  static constexpr double width = 480;
  static constexpr double minimumHeight = 220;
  static constexpr double padding = 28;
  static constexpr double symbolSize = 12;
  // The caption is written at a slant: turned by this many radians (y down,
  // so negative is anticlockwise) about the top left corner of its rectangle.
  static constexpr double captionAngle = -0.12;

  struct Button {
    MacHoldsShieldRect frame;
    std::optional<MacHoldsShieldRect> symbol;  // present when the button has one
    MacHoldsShieldRect title;
    double cornerRadius = 0;
  };

  MacHoldsShieldSize size;
  MacHoldsShieldRect cat;
  MacHoldsShieldRect caption;
  MacHoldsShieldRect label;
  MacHoldsShieldRect headline;  // the full wrap width; the lines centre inside it
  MacHoldsShieldRect clock;
  MacHoldsShieldRect time;
  MacHoldsShieldRect footnote;  // the full wrap width, like the headline
  std::array<Button, 2> buttons;

  static MacHoldsShieldLayout place(const std::array<MacHoldsShieldButton, 2>& buttons,
                                    const MacHoldsShieldMeasures& measures);
};

}  // namespace kovi::holds
