#pragma once

#include "KoviMacHolds/MacPurrlCat.h"

namespace kovi::holds {

// How a cat-themed button looks: a primary button is filled with the accent
// colour, a secondary one is outlined in ink; a compact one is smaller; a
// disabled one is faded. Pressing darkens the fill.
struct MacPurrlButtonStyle {
  bool primary = false;
  bool compact = false;
  bool enabled = true;

  MacPurrlColor fill(bool pressed) const;
  MacPurrlColor label() const;
  MacPurrlColor border() const;

  double height() const { return compact ? 26 : 34; }
  double horizontalPadding() const { return compact ? 10 : 16; }
  double cornerRadius() const { return height() / 2; }
  double fontSize() const { return compact ? 12 : 13.5; }

  bool operator==(const MacPurrlButtonStyle&) const = default;
};

}  // namespace kovi::holds
