#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsDue.h"
#include "KoviMacHolds/MacPurrlButtonStyle.h"
#include "KoviMacHolds/MacPurrlCat.h"

namespace kovi::holds {

// One of the shield's buttons: what it says, its symbol, how it looks and
// what pressing it does.
struct MacHoldsShieldButton {
  std::string title;
  std::optional<std::string> symbol;  // a system symbol name
  MacPurrlButtonStyle style;
  std::function<void()> action;
  // Whether Return and Escape press it.
  bool isDefault = false;
};

// What the shield says while an application rests: the cat, the hold, the
// time the hold lasts until, a note on why and the two ways out. Every text
// goes through the localization lookup, so a translation can replace it.
// Painting is the platform's business; this is only the content.
struct MacHoldsShieldView {
  MacHoldsDue due;
  std::optional<std::string> appName;  // the held application's display name
  std::function<void()> openKovi;
  std::function<void()> back;
  std::optional<std::string> catStage;  // the cat's growth stage, when known

  // The panel's title.
  static std::string title();

  MacPurrlCat cat() const;
  // "it can wait.", shown with the cat.
  std::string caption() const;
  // "Exam week", "Sleep wind-down" or "Study"; shown in upper case.
  std::string holdLabel() const;
  std::string headline() const;
  // "Held until " and the end of the hold as a time of day in `calendar`'s
  // zone and the process locale; empty when the hold has no end.
  std::string timeLine(const Calendar& calendar) const;
  static constexpr std::string_view timeSymbol = "clock";
  std::string footnote() const;
  // "Open Kovi" then "Back to focus".
  std::array<MacHoldsShieldButton, 2> buttons() const;

 private:
  bool isExamWeek() const;
};

// The end of a hold as a short time of day ("12:50", "12:50 PM") in the
// process locale and `calendar`'s zone.
std::string formatMacHoldsTime(Date date, const Calendar& calendar);

}  // namespace kovi::holds
