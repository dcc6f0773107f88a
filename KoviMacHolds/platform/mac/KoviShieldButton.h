#pragma once

#import <AppKit/AppKit.h>

#include "KoviMacHolds/MacHoldsShieldLayout.h"

// One of the shield's buttons: a real NSButton (keyboard, VoiceOver, click
// tracking) painted in the cat's button style at the frame the shared layout
// gave it. Pressing it runs the shield's action.
@interface KoviShieldButton : NSButton

// Whether Return and Escape press it.
@property(nonatomic, readonly) BOOL isDefaultButton;

- (void)showButton:(const kovi::holds::MacHoldsShieldButton&)button
             title:(const kovi::holds::MacHoldsShieldText&)title
            placed:(const kovi::holds::MacHoldsShieldLayout::Button&)placed;

@end
