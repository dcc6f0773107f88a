#pragma once

#import <AppKit/AppKit.h>

#include "KoviMacHolds/MacPurrlCat.h"

namespace kovi::holds::mac {

// The cat's still image for its pose from the agent's bundle: the kitten's
// own set under Resources/Kitten, the grown set in Resources; nil when the
// bundle carries neither.
NSImage* catArtwork(const MacPurrlCat& cat);

// Draws the artwork fitted into `frame`; without artwork, the system's cat
// symbol in ink where the system has one.
void drawCat(NSImage* artwork, NSRect frame);

// Draws a system symbol ("clock", "arrow.up.forward.app") in `color`, fitted
// into `frame`; nothing when the system lacks the symbol.
void drawSystemSymbol(NSString* name, NSRect frame, NSColor* color);

}  // namespace kovi::holds::mac
