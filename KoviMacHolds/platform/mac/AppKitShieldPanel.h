#pragma once

#import <AppKit/AppKit.h>

#include "KoviMacHolds/MacHoldsLog.h"
#include "KoviMacHolds/PurrlFontStore.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"

@class KoviShieldView;

namespace kovi::holds::mac {

// The shield as a floating NSPanel over the held application: titled and
// closable with a transparent, hidden title bar, movable by its background,
// kept (not released) when closed so it can be shown again, at the floating
// window level, on the shield's paper colour. Its content view is a
// KoviShieldView and the panel takes the content's size.
class AppKitShieldPanel final : public MacShieldPanel {
 public:
  AppKitShieldPanel(PurrlFontStore fonts, MacHoldsClock clock);

  void setContent(MacHoldsShieldView view) override;
  // Centres the panel on its first appearance, makes it key and orders it
  // front, and activates the agent so the panel takes the keyboard.
  void bringForward() override;
  void orderOut() override;
  bool isVisible() const override;

 private:
  PurrlFontStore fonts_;
  MacHoldsClock clock_;
  KoviShieldView* content_;
  NSPanel* panel_;
};

}  // namespace kovi::holds::mac
