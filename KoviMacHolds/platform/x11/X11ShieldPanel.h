#pragma once

#include <X11/Xlib.h>
#include <cairo.h>

#include <functional>
#include <optional>

#include "KoviMacHolds/MacHoldsLog.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"
#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"
#include "KoviMacHolds/platform/linux/ShieldButtons.h"
#include "KoviMacHolds/platform/x11/X11Display.h"
#include "KoviMacHolds/platform/x11/X11RunLoop.h"

namespace kovi::holds::x11 {

// The shield as an X11 window: a dialog kept above other windows and out of
// the task bar and pager, centred on the screen when it appears, painted with
// the shared Cairo painter. Clicks on the buttons run their actions; Return
// and Escape run the default one ("Back to focus"), and so does the window
// manager's close button.
class X11ShieldPanel final : public MacShieldPanel {
 public:
  // How long bringing the panel forward waits for the window manager to make it the active window.
  static constexpr std::chrono::milliseconds activationTime{500};

  X11ShieldPanel(X11Display& display, X11RunLoop& runLoop, PurrlFontStore fonts, MacHoldsClock clock);
  ~X11ShieldPanel() override;

  void setContent(MacHoldsShieldView view) override;
  void bringForward() override;
  void orderOut() override;
  bool isVisible() const override { return visible_; }

  Window window() const { return window_; }

 private:
  void handleEvent(const XEvent& event);
  void redraw();

  X11Display& display_;
  desktop::CairoShieldPainter painter_;
  MacHoldsClock clock_;
  Window window_ = None;
  cairo_surface_t* surface_ = nullptr;
  std::optional<MacHoldsShieldView> view_;
  MacHoldsShieldLayout layout_;
  desktop::ShieldButtons buttons_;
  bool visible_ = false;
  // Set while the panel exists; the run loop's handler checks it so events
  // arriving after destruction are ignored.
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace kovi::holds::x11
