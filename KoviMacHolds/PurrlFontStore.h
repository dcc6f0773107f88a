#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/KeyValueStore.h"

namespace kovi::holds {

// The heading typeface the person chose in the main app.
enum class PurrlFontHeading { kovi, classic, system };
// The handwritten typeface for notes and captions.
enum class PurrlFontHand { shantell, caveat };

// A typeface as the drawing code asks for it. `postScriptName` names the
// exact face where the choice is a bundled font ("Nunito-ExtraBold");
// `families` lists family names to try in order, ending in a generic one, so
// a desktop without the bundled font still draws text in the intended spirit.
struct PurrlFontFace {
  enum class Design { standard, rounded, handwritten };

  std::optional<std::string> postScriptName;
  std::string families;  // comma-separated, best first
  int weight = 400;      // CSS-style weight: 400 regular, 600 semibold, 700 bold, 800 extra bold
  Design design = Design::standard;

  bool operator==(const PurrlFontFace&) const = default;
};

// The font choices, read from the preferences the main app writes under
// "kovi.fonts.heading" and "kovi.fonts.hand". A missing, unreadable or
// unknown value means the first choice (kovi, shantell).
class PurrlFontStore {
 public:
  static constexpr std::string_view headingKey = "kovi.fonts.heading";
  static constexpr std::string_view handKey = "kovi.fonts.hand";

  // Without preferences the defaults apply.
  PurrlFontStore() = default;
  explicit PurrlFontStore(const KeyValueStore& defaults);

  PurrlFontHeading heading() const { return heading_; }
  PurrlFontHand hand() const { return hand_; }

  PurrlFontFace headingFace(bool bold = false) const;
  PurrlFontFace handFace() const;

 private:
  PurrlFontHeading heading_ = PurrlFontHeading::kovi;
  PurrlFontHand hand_ = PurrlFontHand::shantell;
};

}  // namespace kovi::holds

namespace kovi {

template <>
struct EnumNames<holds::PurrlFontHeading> {
  using Heading = holds::PurrlFontHeading;
  static constexpr std::array table{
      std::pair{Heading::kovi, std::string_view("kovi")},
      std::pair{Heading::classic, std::string_view("classic")},
      std::pair{Heading::system, std::string_view("system")},
  };
};

template <>
struct EnumNames<holds::PurrlFontHand> {
  using Hand = holds::PurrlFontHand;
  static constexpr std::array table{
      std::pair{Hand::shantell, std::string_view("shantell")},
      std::pair{Hand::caveat, std::string_view("caveat")},
  };
};

}  // namespace kovi
