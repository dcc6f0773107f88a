#pragma once

#include <array>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlFocusMode.h"

namespace kovi::holds {

// What the application guard enforces while a hold is due.
struct MacFocus2EnforcementPlan {
  std::string runID;  // "holds-study:<ms>", "holds-sleep:<ms>" or "exam-week-social:<day>"
  PurrlFocusModeID mode = PurrlFocusModeID::study;
  bool allowlist = false;           // true: only bundleIDs may be in front; false: bundleIDs may not
  std::set<std::string> bundleIDs;  // application bundle identifiers
  std::vector<std::string> domains; // blocked web domains, carried for the main app's filter
  UnixMillis until = 0;             // end of the hold
  bool examWeek = false;            // the plan comes from the exam-week Social hold

  // Every field counts: the guard tells a changed plan from a repeat by it.
  bool operator==(const MacFocus2EnforcementPlan&) const = default;
};

// Communication applications added to allow-lists when the snapshot asks to
// keep communication usable.
inline constexpr std::array<std::string_view, 6> kMacHoldsCommunicationBundleIDs{
    "com.apple.MobileSMS", "com.apple.mail",        "com.apple.FaceTime",
    "com.apple.mobilephone", "com.apple.iCal", "com.apple.AddressBook",
};

}  // namespace kovi::holds
