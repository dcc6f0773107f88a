#pragma once

#include <cstddef>
#include <functional>
#include <optional>

#include "KoviMacHolds/MacHoldsShield.h"
#include "KoviMacHolds/MacHoldsShieldLayout.h"

namespace kovi::holds::desktop {

// How the shield's buttons answer the pointer and the keyboard, the same on
// every Linux surface: a click counts when it starts and ends on the same
// button; Return and Escape press the default one ("Back to focus").
class ShieldButtons {
 public:
  void setContent(const MacHoldsShieldView& view, const MacHoldsShieldLayout& layout);

  // The button under the point, in the panel's own coordinates.
  std::optional<std::size_t> buttonAt(double x, double y) const;
  // A primary button went down here; true when the press changed which
  // button shows pressed.
  bool pointerPressed(double x, double y);
  // The primary button came up here: the action of a completed click.
  std::function<void()> pointerReleased(double x, double y);
  // The action Return and Escape run.
  std::function<void()> defaultAction() const;
  std::optional<std::size_t> pressed() const { return pressed_; }
  void reset() { pressed_.reset(); }

 private:
  std::array<MacHoldsShieldButton, 2> buttons_;
  std::array<MacHoldsShieldRect, 2> frames_{};
  std::optional<std::size_t> pressed_;
};

}  // namespace kovi::holds::desktop
