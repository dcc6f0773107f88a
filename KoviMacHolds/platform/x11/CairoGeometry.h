#pragma once

#include <cairo.h>

#include "KoviMacHolds/MacPurrlCat.h"

namespace kovi::holds::x11 {

// A rectangle in the shield's coordinates (points; one point is one pixel on
// an X11 screen and in the PNG).
struct CairoRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  bool contains(double pointX, double pointY) const {
    return pointX >= x && pointX < x + width && pointY >= y && pointY < y + height;
  }
  bool operator==(const CairoRect&) const = default;
};

inline void setSourceColor(cairo_t* cr, const MacPurrlColor& color) {
  cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
}

void roundedRectangle(cairo_t* cr, const CairoRect& rect, double radius);

}  // namespace kovi::holds::x11
