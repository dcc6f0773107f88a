#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// The ten focus modes, ids 0 to 9 by position.
enum class PurrlFocusModeID : int { study = 0, deep, quick, reading, hangout, couple, sleep, gym, mock, studyDate };

enum class PurrlFocusStrictness { chill, committed, locked };

// How an application list applies: `allowList` lets only the listed
// applications be used, `blockList` keeps the listed ones away.
enum class PurrlFocusAppPolicy { allowList, blockList };

template <>
struct EnumNames<PurrlFocusModeID> {
  static constexpr std::array table{
      std::pair{PurrlFocusModeID::study, std::string_view("study")},
      std::pair{PurrlFocusModeID::deep, std::string_view("deep")},
      std::pair{PurrlFocusModeID::quick, std::string_view("quick")},
      std::pair{PurrlFocusModeID::reading, std::string_view("reading")},
      std::pair{PurrlFocusModeID::hangout, std::string_view("hangout")},
      std::pair{PurrlFocusModeID::couple, std::string_view("couple")},
      std::pair{PurrlFocusModeID::sleep, std::string_view("sleep")},
      std::pair{PurrlFocusModeID::gym, std::string_view("gym")},
      std::pair{PurrlFocusModeID::mock, std::string_view("mock")},
      std::pair{PurrlFocusModeID::studyDate, std::string_view("studyDate")},
  };
};

template <>
struct EnumNames<PurrlFocusStrictness> {
  static constexpr std::array table{
      std::pair{PurrlFocusStrictness::chill, std::string_view("chill")},
      std::pair{PurrlFocusStrictness::committed, std::string_view("committed")},
      std::pair{PurrlFocusStrictness::locked, std::string_view("locked")},
  };
};

template <>
struct EnumNames<PurrlFocusAppPolicy> {
  static constexpr std::array table{
      std::pair{PurrlFocusAppPolicy::allowList, std::string_view("allowList")},
      std::pair{PurrlFocusAppPolicy::blockList, std::string_view("blockList")},
  };
};

// An application proposed for a mode's phone list: an identifier, the brand
// shown beside it when there is one, and a system symbol name for its icon.
struct PurrlFocusSuggestion {
  std::string id;
  std::optional<std::string> brand;
  std::string symbol;

  bool operator==(const PurrlFocusSuggestion&) const = default;
};

// One focus mode: how long a run lasts by default, how strict it is, and what
// it keeps away on the phone and on the Mac.
struct PurrlFocusModeSpec {
  PurrlFocusModeID id = PurrlFocusModeID::study;
  std::vector<int> minuteOptions;
  int defaultMinutes = 0;
  PurrlFocusStrictness defaultStrictness = PurrlFocusStrictness::chill;
  PurrlFocusAppPolicy phoneApps = PurrlFocusAppPolicy::blockList;
  std::vector<PurrlFocusSuggestion> phoneSuggestions;
  bool lecturePass = false;
  std::vector<std::string> hideBundleIDs;
  std::vector<std::string> blockedDomains;
  PurrlFocusAppPolicy macApps = PurrlFocusAppPolicy::blockList;
  std::vector<std::string> macBundleIDs;

  bool operator==(const PurrlFocusModeSpec&) const = default;
};

// The row of `id`. Every id has exactly one row; the table is built once, on
// first use, and never changes afterwards.
const PurrlFocusModeSpec& purrlFocusModeSpec(PurrlFocusModeID id);

// All ten rows in id order, for screens that list the modes.
std::span<const PurrlFocusModeSpec> purrlFocusModeTable();

}  // namespace kovi
