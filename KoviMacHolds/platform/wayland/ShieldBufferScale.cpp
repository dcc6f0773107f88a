#include "KoviMacHolds/platform/wayland/ShieldBufferScale.h"

#include <algorithm>

namespace kovi::holds::wayland {

namespace {

std::int32_t largestBelievable(const std::vector<std::int32_t>& scales) {
  std::int32_t largest = 0;
  for (const std::int32_t scale : scales) {
    if (scale >= 1 && scale <= kMaximumShieldScale) largest = std::max(largest, scale);
  }
  return largest;
}

}  // namespace

std::int32_t shieldBufferScale(const std::vector<std::int32_t>& surfaceOutputScales,
                               const std::vector<std::int32_t>& allOutputScales) {
  if (const std::int32_t onSurface = largestBelievable(surfaceOutputScales); onSurface != 0) return onSurface;
  if (surfaceOutputScales.empty()) {
    if (const std::int32_t anywhere = largestBelievable(allOutputScales); anywhere != 0) return anywhere;
  }
  return 1;
}

}  // namespace kovi::holds::wayland
