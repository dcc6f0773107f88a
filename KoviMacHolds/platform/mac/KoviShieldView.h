#pragma once

#import <AppKit/AppKit.h>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsShield.h"
#include "KoviMacHolds/PurrlFontStore.h"

// The shield's content: the layout every desktop shares, painted with AppKit
// text and images on paper, with the two buttons as real buttons on top.
// Escape presses the default button, as Return does.
@interface KoviShieldView : NSView

// Lays out and shows `shield`; the view's intrinsic size becomes the size
// the layout needs.
- (void)showShield:(const kovi::holds::MacHoldsShieldView&)shield
             fonts:(const kovi::holds::PurrlFontStore&)fonts
          calendar:(const kovi::Calendar&)calendar;

@end
