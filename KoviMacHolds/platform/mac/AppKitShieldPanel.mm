#import "KoviMacHolds/platform/mac/AppKitShieldPanel.h"

#import "KoviMacHolds/platform/mac/AppKitConversions.h"
#import "KoviMacHolds/platform/mac/KoviShieldView.h"

namespace kovi::holds::mac {

namespace {

// Brings the agent to the front even though another application is active:
// the person just switched to the held application and must see why it went.
void activateAgent() {
  NSApplication* application = NSApplication.sharedApplication;
  if (@available(macOS 14.0, *)) {
    [application activate];
  } else {
    [application activateIgnoringOtherApps:YES];
  }
}

}  // namespace

AppKitShieldPanel::AppKitShieldPanel(PurrlFontStore fonts, MacHoldsClock clock)
    : fonts_(fonts), clock_(std::move(clock)) {
  const NSRect start = NSMakeRect(0, 0, MacHoldsShieldLayout::width, MacHoldsShieldLayout::minimumHeight);
  content_ = [[KoviShieldView alloc] initWithFrame:start];
  panel_ = [[NSPanel alloc]
      initWithContentRect:start
                styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskFullSizeContentView
                  backing:NSBackingStoreBuffered
                    defer:NO];
  panel_.titlebarAppearsTransparent = YES;
  panel_.titleVisibility = NSWindowTitleHidden;
  panel_.movableByWindowBackground = YES;
  // The guard keeps this one panel and only orders it in and out.
  panel_.releasedWhenClosed = NO;
  panel_.level = NSFloatingWindowLevel;  // window level 3
  panel_.backgroundColor = colorFrom(MacPurrlColors::paper);
  panel_.contentView = content_;
  panel_.initialFirstResponder = content_;
}

void AppKitShieldPanel::setContent(MacHoldsShieldView view) {
  panel_.title = toNSString(MacHoldsShieldView::title());
  [content_ showShield:view fonts:fonts_ calendar:clock_.calendar()];
  [panel_ setContentSize:content_.intrinsicContentSize];
}

void AppKitShieldPanel::bringForward() {
  if (!panel_.visible) [panel_ center];
  [panel_ makeKeyAndOrderFront:nil];
  [panel_ makeFirstResponder:content_];
  activateAgent();
}

void AppKitShieldPanel::orderOut() { [panel_ orderOut:nil]; }

bool AppKitShieldPanel::isVisible() const { return panel_.visible == YES; }

}  // namespace kovi::holds::mac
