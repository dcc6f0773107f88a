#include "KoviMacHolds/MacPurrlButtonStyle.h"

namespace kovi::holds {

namespace {

constexpr double kDisabledAlpha = 0.4;

MacPurrlColor faded(MacPurrlColor color, bool enabled) {
  return enabled ? color : color.withAlpha(color.alpha * kDisabledAlpha);
}

MacPurrlColor darker(MacPurrlColor color) { return {color.red * 0.85, color.green * 0.85, color.blue * 0.85, color.alpha}; }

}  // namespace

MacPurrlColor MacPurrlButtonStyle::fill(bool pressed) const {
  const MacPurrlColor base = primary ? MacPurrlColors::accent : MacPurrlColors::paper;
  return faded(pressed && enabled ? darker(base) : base, enabled);
}

MacPurrlColor MacPurrlButtonStyle::label() const {
  return faded(primary ? MacPurrlColors::paper : MacPurrlColors::ink, enabled);
}

MacPurrlColor MacPurrlButtonStyle::border() const {
  return faded(primary ? darker(MacPurrlColors::accent) : MacPurrlColors::ink, enabled);
}

}  // namespace kovi::holds
