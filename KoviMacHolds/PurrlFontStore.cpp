#include "KoviMacHolds/PurrlFontStore.h"

namespace kovi::holds {

namespace {

// The stored choice under `key`, or the first case when it is missing, not a
// string or not a known name.
template <class Choice>
Choice storedChoice(const KeyValueStore& defaults, std::string_view key) {
  const auto value = defaults.value(key);
  if (value && value->is_string()) {
    if (auto choice = enumFromName<Choice>(value->template get<std::string>())) return *choice;
  }
  return EnumNames<Choice>::table.front().first;
}

}  // namespace

PurrlFontStore::PurrlFontStore(const KeyValueStore& defaults)
    : heading_(storedChoice<PurrlFontHeading>(defaults, headingKey)),
      hand_(storedChoice<PurrlFontHand>(defaults, handKey)) {}

PurrlFontFace PurrlFontStore::headingFace(bool bold) const {
  switch (heading_) {
    case PurrlFontHeading::kovi:
      return bold ? PurrlFontFace{"Nunito-Bold", "Nunito, Quicksand, Cantarell, DejaVu Sans, sans-serif", 700,
                                  PurrlFontFace::Design::rounded}
                  : PurrlFontFace{"Nunito-ExtraBold", "Nunito, Quicksand, Cantarell, DejaVu Sans, sans-serif", 800,
                                  PurrlFontFace::Design::rounded};
    case PurrlFontHeading::classic:
      // The classic heading is the system's rounded design.
      return {std::nullopt, "Quicksand, Nunito, Cantarell, DejaVu Sans, sans-serif", bold ? 700 : 800,
              PurrlFontFace::Design::rounded};
    case PurrlFontHeading::system:
      return {std::nullopt, "Cantarell, Noto Sans, DejaVu Sans, sans-serif", bold ? 700 : 800,
              PurrlFontFace::Design::standard};
  }
  return {};
}

PurrlFontFace PurrlFontStore::handFace() const {
  switch (hand_) {
    case PurrlFontHand::shantell:
      return {"ShantellSans-SemiBold", "Shantell Sans, Comic Neue, Caveat, DejaVu Sans, sans-serif", 600,
              PurrlFontFace::Design::handwritten};
    case PurrlFontHand::caveat:
      return {"Caveat-Bold", "Caveat, Shantell Sans, Comic Neue, DejaVu Sans, sans-serif", 700,
              PurrlFontFace::Design::handwritten};
  }
  return {};
}

}  // namespace kovi::holds
