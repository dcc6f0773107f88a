#pragma once

#include <cairo.h>

#include <expected>
#include <filesystem>
#include <optional>
#include <string>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsShield.h"
#include "KoviMacHolds/MacHoldsShieldLayout.h"
#include "KoviMacHolds/PurrlFontStore.h"

namespace kovi::holds::desktop {

// Measures the shield's texts with Pango, places them with the shared shield
// layout and paints the result on Cairo: the cat with its caption, the hold
// label, the headline, the time line with its clock, the footnote and the
// two buttons on paper. The window and the PNG export use this one painter.
class CairoShieldPainter {
 public:
  explicit CairoShieldPainter(PurrlFontStore fonts) : fonts_(fonts) {}

  MacHoldsShieldLayout layout(const MacHoldsShieldView& view, const Calendar& calendar) const;
  // Paints the whole panel, background included; `pressed` darkens that button.
  void paint(cairo_t* cr, const MacHoldsShieldView& view, const Calendar& calendar,
             std::optional<std::size_t> pressed = std::nullopt) const;

 private:
  PurrlFontStore fonts_;
};

// Renders the shield alone, at its fitting size, into a PNG file.
std::expected<void, std::string> writeShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                const Calendar& calendar, const std::filesystem::path& file);

}  // namespace kovi::holds::desktop
