#include "KoviMacHolds/platform/linux/ShieldButtons.h"

namespace kovi::holds::desktop {

void ShieldButtons::setContent(const MacHoldsShieldView& view, const MacHoldsShieldLayout& layout) {
  buttons_ = view.buttons();
  for (std::size_t index = 0; index < frames_.size(); ++index) frames_[index] = layout.buttons[index].frame;
  pressed_.reset();
}

std::optional<std::size_t> ShieldButtons::buttonAt(double x, double y) const {
  for (std::size_t index = 0; index < frames_.size(); ++index) {
    const MacHoldsShieldRect& frame = frames_[index];
    if (x >= frame.x && x < frame.maxX() && y >= frame.y && y < frame.maxY()) return index;
  }
  return std::nullopt;
}

bool ShieldButtons::pointerPressed(double x, double y) {
  const auto before = pressed_;
  pressed_ = buttonAt(x, y);
  return before != pressed_;
}

std::function<void()> ShieldButtons::pointerReleased(double x, double y) {
  const auto pressed = pressed_;
  pressed_.reset();
  if (!pressed || pressed != buttonAt(x, y)) return {};
  return buttons_[*pressed].action;
}

std::function<void()> ShieldButtons::defaultAction() const {
  for (const auto& button : buttons_) {
    if (button.isDefault) return button.action;
  }
  return {};
}

}  // namespace kovi::holds::desktop
