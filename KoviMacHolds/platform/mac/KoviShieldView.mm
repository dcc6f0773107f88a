#import "KoviMacHolds/platform/mac/KoviShieldView.h"

#include <optional>

#include "KoviMacHolds/MacHoldsShieldLayout.h"
#import "KoviMacHolds/platform/mac/AppKitConversions.h"
#import "KoviMacHolds/platform/mac/AppKitImages.h"
#import "KoviMacHolds/platform/mac/AppKitShieldText.h"
#import "KoviMacHolds/platform/mac/KoviShieldButton.h"

using kovi::holds::MacHoldsShieldLayout;
using kovi::holds::MacHoldsShieldMeasures;
using kovi::holds::MacHoldsShieldTexts;
namespace mac = kovi::holds::mac;

@implementation KoviShieldView {
  std::optional<MacHoldsShieldLayout> _layout;
  MacHoldsShieldTexts _texts;
  NSImage* _catArtwork;  // nil draws the fallback
  NSArray<KoviShieldButton*>* _buttons;
}

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _buttons = @[ [[KoviShieldButton alloc] initWithFrame:NSZeroRect], [[KoviShieldButton alloc] initWithFrame:NSZeroRect] ];
    for (KoviShieldButton* button in _buttons) [self addSubview:button];
  }
  return self;
}

// The layout reads top to bottom.
- (BOOL)isFlipped {
  return YES;
}

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (NSSize)intrinsicContentSize {
  if (!_layout) return NSMakeSize(MacHoldsShieldLayout::width, MacHoldsShieldLayout::minimumHeight);
  return NSMakeSize(_layout->size.width, _layout->size.height);
}

- (void)showShield:(const kovi::holds::MacHoldsShieldView&)shield
             fonts:(const kovi::holds::PurrlFontStore&)fonts
          calendar:(const kovi::Calendar&)calendar {
  _texts = MacHoldsShieldTexts::of(shield, fonts, calendar);
  const auto buttons = shield.buttons();
  _layout = MacHoldsShieldLayout::place(buttons, MacHoldsShieldMeasures::of(_texts, mac::measureShieldText));
  _catArtwork = mac::catArtwork(shield.cat());
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    [_buttons[index] showButton:buttons[index] title:_texts.buttonTitles[index] placed:_layout->buttons[index]];
  }
  [self invalidateIntrinsicContentSize];
  self.needsDisplay = YES;
}

- (void)drawRect:(NSRect)dirtyRect {
  [mac::colorFrom(kovi::holds::MacPurrlColors::paper) setFill];
  NSRectFill(dirtyRect);
  if (!_layout) return;
  const MacHoldsShieldLayout& layout = *_layout;

  mac::drawCat(_catArtwork, mac::rectFrom(layout.cat));
  [self drawCaptionIn:layout.caption];
  mac::drawShieldText(_texts.label, mac::rectFrom(layout.label));
  mac::drawShieldText(_texts.headline, mac::rectFrom(layout.headline));
  mac::drawSystemSymbol(mac::toNSString(kovi::holds::MacHoldsShieldView::timeSymbol), mac::rectFrom(layout.clock),
                        mac::colorFrom(_texts.time.style.color));
  mac::drawShieldText(_texts.time, mac::rectFrom(layout.time));
  mac::drawShieldText(_texts.footnote, mac::rectFrom(layout.footnote));
}

// "it can wait." beside the cat, written at a slant.
- (void)drawCaptionIn:(const kovi::holds::MacHoldsShieldRect&)caption {
  [NSGraphicsContext saveGraphicsState];
  NSAffineTransform* slant = [NSAffineTransform transform];
  [slant translateXBy:caption.x yBy:caption.y];
  [slant rotateByRadians:MacHoldsShieldLayout::captionAngle];
  [slant concat];
  mac::drawShieldText(_texts.caption, NSMakeRect(0, 0, caption.width, caption.height));
  [NSGraphicsContext restoreGraphicsState];
}

- (void)cancelOperation:(id)sender {
  for (KoviShieldButton* button in _buttons) {
    if (button.isDefaultButton) [button performClick:sender];
  }
}

@end
