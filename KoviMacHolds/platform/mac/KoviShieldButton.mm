#import "KoviMacHolds/platform/mac/KoviShieldButton.h"

#include <functional>
#include <optional>

#import "KoviMacHolds/platform/mac/AppKitConversions.h"
#import "KoviMacHolds/platform/mac/AppKitImages.h"
#import "KoviMacHolds/platform/mac/AppKitShieldText.h"

namespace {

constexpr CGFloat kBorderWidth = 1.5;

// `rect` from the shield's coordinates into those of a button at `origin`.
NSRect relativeTo(NSPoint origin, NSRect rect) {
  return NSOffsetRect(rect, -origin.x, -origin.y);
}

}  // namespace

@implementation KoviShieldButton {
  kovi::holds::MacPurrlButtonStyle _style;
  std::function<void()> _action;
  std::optional<kovi::holds::MacHoldsShieldText> _titleText;
  NSString* _symbol;  // nil when the button has none
  NSRect _symbolRect;
  NSRect _titleRect;
  CGFloat _cornerRadius;
}

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self != nil) {
    self.bordered = NO;
    [self setButtonType:NSButtonTypeMomentaryPushIn];
    self.target = self;
    self.action = @selector(press:);
  }
  return self;
}

- (BOOL)isFlipped {
  return YES;
}

- (void)showButton:(const kovi::holds::MacHoldsShieldButton&)button
             title:(const kovi::holds::MacHoldsShieldText&)title
            placed:(const kovi::holds::MacHoldsShieldLayout::Button&)placed {
  using kovi::holds::mac::rectFrom;
  using kovi::holds::mac::toNSString;
  const NSRect frame = rectFrom(placed.frame);
  self.frame = frame;
  _style = button.style;
  _action = button.action;
  _titleText = title;
  _cornerRadius = placed.cornerRadius;
  _symbol = button.symbol ? toNSString(*button.symbol) : nil;
  _symbolRect = placed.symbol ? relativeTo(frame.origin, rectFrom(*placed.symbol)) : NSZeroRect;
  _titleRect = relativeTo(frame.origin, rectFrom(placed.title));
  _isDefaultButton = button.isDefault;
  // The title is what VoiceOver reads; the painting below is ours.
  self.title = toNSString(button.title);
  self.keyEquivalent = button.isDefault ? @"\r" : @"";
  self.enabled = button.style.enabled;
  self.needsDisplay = YES;
}

- (void)highlight:(BOOL)flag {
  [super highlight:flag];
  self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)__unused dirtyRect {
  using kovi::holds::mac::colorFrom;
  const bool pressed = self.cell.highlighted;
  const NSRect outline = NSInsetRect(self.bounds, kBorderWidth / 2, kBorderWidth / 2);
  NSBezierPath* shape = [NSBezierPath bezierPathWithRoundedRect:outline xRadius:_cornerRadius yRadius:_cornerRadius];
  [colorFrom(_style.fill(pressed)) setFill];
  [shape fill];
  [colorFrom(_style.border()) setStroke];
  shape.lineWidth = kBorderWidth;
  [shape stroke];
  if (_symbol != nil) kovi::holds::mac::drawSystemSymbol(_symbol, _symbolRect, colorFrom(_style.label()));
  if (_titleText) kovi::holds::mac::drawShieldText(*_titleText, _titleRect);
}

- (void)press:(id)__unused sender {
  // The action may hide the panel and replace this button's content; run a copy.
  const std::function<void()> action = _action;
  if (action) action();
}

@end
