#pragma once

#include <cstdint>
#include <vector>

namespace kovi::holds::wayland {

// The largest output scale a shield buffer is drawn at; a compositor that
// reports more is not believed, as a buffer that large would be a fault.
inline constexpr std::int32_t kMaximumShieldScale = 8;

// The integer scale to draw the shield's buffer at: the largest scale of the
// outputs the shield's surface is on, so it is sharp on the densest of them;
// before the compositor has said where the surface is, the largest scale of
// all outputs, so the first frame is sharp on a single HiDPI screen. Scales
// below 1 or above the maximum are ignored; with none left, 1.
std::int32_t shieldBufferScale(const std::vector<std::int32_t>& surfaceOutputScales,
                               const std::vector<std::int32_t>& allOutputScales);

}  // namespace kovi::holds::wayland
