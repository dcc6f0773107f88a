#include "KoviMacHolds/platform/linux/CairoGeometry.h"

#include <algorithm>
#include <numbers>

namespace kovi::holds::desktop {

void roundedRectangle(cairo_t* cr, const MacHoldsShieldRect& rect, double radius) {
  const double r = std::min({radius, rect.width / 2, rect.height / 2});
  constexpr double quarter = std::numbers::pi / 2;
  cairo_new_sub_path(cr);
  cairo_arc(cr, rect.x + rect.width - r, rect.y + r, r, -quarter, 0);
  cairo_arc(cr, rect.x + rect.width - r, rect.y + rect.height - r, r, 0, quarter);
  cairo_arc(cr, rect.x + r, rect.y + rect.height - r, r, quarter, 2 * quarter);
  cairo_arc(cr, rect.x + r, rect.y + r, r, 2 * quarter, 3 * quarter);
  cairo_close_path(cr);
}

}  // namespace kovi::holds::desktop
