#pragma once

#include <cairo.h>

#include "KoviMacHolds/MacPurrlCat.h"
#include "KoviMacHolds/platform/linux/CairoGeometry.h"

namespace kovi::holds::desktop {

// Draws the cat as vector art, scaled to fit `frame` (the shield gives it
// 96 × 110 points). Every pose has its own face, paws and props; the kitten
// has a bigger head, bigger eyes and a smaller body than the young and grown cat.
void paintCat(cairo_t* cr, const MacPurrlCat& cat, const MacHoldsShieldRect& frame);

}  // namespace kovi::holds::desktop
