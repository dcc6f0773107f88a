#pragma once

#import <AppKit/AppKit.h>

#include "KoviMacHolds/MacHoldsShieldLayout.h"

namespace kovi::holds::mac {

// The font for a typeface choice: the bundled face when the bundle carries
// it, otherwise the system font in the face's weight and design.
NSFont* shieldFont(const PurrlFontFace& face, double pointSize);

// One of the shield's texts as AppKit sets it: measured for the shared
// layout, then drawn into the rectangle the layout gave it.
MacHoldsShieldSize measureShieldText(const MacHoldsShieldText& text);
void drawShieldText(const MacHoldsShieldText& text, NSRect rect);

}  // namespace kovi::holds::mac
