#pragma once

#include <cairo.h>

#include "KoviMacHolds/MacHoldsShieldLayout.h"
#include "KoviMacHolds/MacPurrlCat.h"

namespace kovi::holds::desktop {

inline void setSourceColor(cairo_t* cr, const MacPurrlColor& color) {
  cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
}

void roundedRectangle(cairo_t* cr, const MacHoldsShieldRect& rect, double radius);

}  // namespace kovi::holds::desktop
