#include <gtest/gtest.h>

#include "KoviMacHolds/platform/wayland/ShieldBufferScale.h"

namespace kovi::holds::wayland {
namespace {

TEST(WaylandShieldScale, DrawsAtTheDensestOutputTheShieldIsOn) {
  struct Case {
    const char* name;
    std::vector<std::int32_t> onSurface;
    std::vector<std::int32_t> all;
    std::int32_t expected;
  };
  const Case cases[] = {
      {"one ordinary screen", {1}, {1}, 1}, {"one HiDPI screen", {2}, {2}, 2},
      {"on the ordinary one of two", {1}, {1, 2}, 1}, {"across both of two", {1, 3}, {1, 3}, 3},
      {"not placed yet: the densest screen", {}, {1, 2}, 2}, {"no outputs known", {}, {}, 1},
      {"a scale below 1 is not believed", {0}, {0}, 1}, {"nor a negative one", {-2}, {-2}, 1},
      {"nor one past the maximum", {kMaximumShieldScale + 1}, {kMaximumShieldScale + 1}, 1},
      {"the maximum itself is", {kMaximumShieldScale}, {kMaximumShieldScale}, kMaximumShieldScale},
      {"an unbelievable one beside a real one", {40, 2}, {40, 2}, 2},
      {"placed on an unbelievable one: not the others'", {40}, {40, 2}, 1},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.name);
    EXPECT_EQ(shieldBufferScale(entry.onSurface, entry.all), entry.expected);
  }
}

}  // namespace
}  // namespace kovi::holds::wayland
