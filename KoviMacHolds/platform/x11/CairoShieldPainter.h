#pragma once

#include <cairo.h>

#include <array>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsShield.h"
#include "KoviMacHolds/PurrlFontStore.h"
#include "KoviMacHolds/platform/x11/CairoGeometry.h"

namespace kovi::holds::x11 {

// Where things ended up: the panel's size and the buttons' frames, for
// sizing the window and for hit-testing clicks.
struct CairoShieldLayout {
  double width = 0;
  double height = 0;
  std::array<CairoRect, 2> buttons;  // in the order of MacHoldsShieldView::buttons()
};

// Lays out and paints the shield's content with Pango text on Cairo: the cat
// with its caption, the hold label, the headline, the time line with its
// clock, the footnote and the two buttons, stacked and centred on paper.
// The window and the PNG export use this one painter.
class CairoShieldPainter {
 public:
  static constexpr double minimumWidth = 480;
  static constexpr double minimumHeight = 220;

  explicit CairoShieldPainter(PurrlFontStore fonts) : fonts_(fonts) {}

  CairoShieldLayout layout(const MacHoldsShieldView& view, const Calendar& calendar) const;
  // Paints the whole panel, background included; `pressed` darkens that button.
  void paint(cairo_t* cr, const MacHoldsShieldView& view, const Calendar& calendar,
             std::optional<std::size_t> pressed = std::nullopt) const;

 private:
  PurrlFontStore fonts_;
};

// Renders the shield alone, at its fitting size, into a PNG file.
std::expected<void, std::string> writeShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                const Calendar& calendar, const std::filesystem::path& file);

}  // namespace kovi::holds::x11
