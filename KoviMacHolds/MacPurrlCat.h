#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/KeyValueStore.h"

namespace kovi::holds {

// The cat's poses; the raw value of each is its name.
enum class MacPurrlCatPose { idle, curious, happy, celebrate, sad, sleepy, meow, wave, peek, holdGems, smug, stretch };

// An sRGB colour with components in 0…1.
struct MacPurrlColor {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  static constexpr MacPurrlColor sRGB(int red, int green, int blue, double alpha = 1) {
    return {red / 255.0, green / 255.0, blue / 255.0, alpha};
  }
  constexpr MacPurrlColor withAlpha(double newAlpha) const { return {red, green, blue, newAlpha}; }
  bool operator==(const MacPurrlColor&) const = default;
};

// The agent's palette: warm paper behind dark ink, and the cat's own colours.
namespace MacPurrlColors {
inline constexpr MacPurrlColor paper = MacPurrlColor::sRGB(245, 240, 234);
inline constexpr MacPurrlColor ink = MacPurrlColor::sRGB(43, 33, 27);
inline constexpr MacPurrlColor accent = MacPurrlColor::sRGB(222, 122, 72);  // primary buttons, the cat's blush
inline constexpr MacPurrlColor fur = MacPurrlColor::sRGB(240, 168, 96);
inline constexpr MacPurrlColor furShade = MacPurrlColor::sRGB(205, 128, 66);
inline constexpr MacPurrlColor cream = MacPurrlColor::sRGB(253, 236, 214);
inline constexpr MacPurrlColor gem = MacPurrlColor::sRGB(86, 170, 214);
}  // namespace MacPurrlColors

// The growth stages in order; the kitten is drawn younger than the others.
inline constexpr std::array<std::string_view, 3> kPurrlCatStages{"kitten", "young", "grown"};

// The cat as the shield shows it: a pose, the growth stage when known and
// whether it moves.
struct MacPurrlCat {
  MacPurrlCatPose pose = MacPurrlCatPose::idle;
  std::optional<std::string> stage;
  bool live = false;

  // The kitten has its own artwork; every other stage (or none) the grown one.
  bool isKitten() const { return stage == "kitten"; }
  // The still image of the pose: "mascot_still_" followed by the pose's name.
  std::string stillImageName() const;

  bool operator==(const MacPurrlCat&) const = default;
};

// The stage of a stored growth level (0 kitten, 1 young, 2 grown); levels out
// of range are clamped the way the app stores them.
std::string_view purrlCatStageForLevel(long long level);

// The stage of the level the main app stored in the shared preferences
// ("purrl.cat.level"); absent when there is none or it is not a number.
std::optional<std::string> purrlCatStage(const KeyValueStore& preferences);

}  // namespace kovi::holds

namespace kovi {

template <>
struct EnumNames<holds::MacPurrlCatPose> {
  using Pose = holds::MacPurrlCatPose;
  static constexpr std::array table{
      std::pair{Pose::idle, std::string_view("idle")},         std::pair{Pose::curious, std::string_view("curious")},
      std::pair{Pose::happy, std::string_view("happy")},       std::pair{Pose::celebrate, std::string_view("celebrate")},
      std::pair{Pose::sad, std::string_view("sad")},           std::pair{Pose::sleepy, std::string_view("sleepy")},
      std::pair{Pose::meow, std::string_view("meow")},         std::pair{Pose::wave, std::string_view("wave")},
      std::pair{Pose::peek, std::string_view("peek")},         std::pair{Pose::holdGems, std::string_view("holdGems")},
      std::pair{Pose::smug, std::string_view("smug")},         std::pair{Pose::stretch, std::string_view("stretch")},
  };
};

}  // namespace kovi
