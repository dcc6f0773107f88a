#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/purrl/PurrlFocusSubject.h"

namespace kovi {

// What a person sets as one subject's daily target.
struct PurrlFocusDailySetTarget {
  PurrlFocusSubject subject = PurrlFocusSubject::custom;
  std::optional<std::string> label;
  int target = 0;  // questions to solve
  bool operator==(const PurrlFocusDailySetTarget&) const = default;
};

// One subject's daily target with today's progress, as the service reports it.
// `subject` stays a string: a subject this client does not know still shows.
struct PurrlFocusDailySet {
  std::string subject;
  std::optional<std::string> label;
  int target = 0;
  int done = 0;
  bool kept = false;
  bool operator==(const PurrlFocusDailySet&) const = default;

  // Which set this is: the subject, except that custom sets are told apart by
  // their label in lower case ("custom:deneme"), so labels differing only in
  // case name the same set. Lower case is the Unicode full case mapping of
  // the root locale (ICU), so "İ" and "I" fold as everywhere else.
  std::string identity() const;
  // The target this set was made from; none for a subject this client does not know.
  std::optional<PurrlFocusDailySetTarget> asTarget() const;
};

// A day's daily sets, and whether the whole day's set was kept.
struct PurrlFocusDailySets {
  std::string day;
  std::vector<PurrlFocusDailySet> items;
  bool kept = false;
  bool operator==(const PurrlFocusDailySets&) const = default;
};

template <>
struct JsonRecordFields<PurrlFocusDailySetTarget> : LenientJsonRecord {
  using R = PurrlFocusDailySetTarget;
  static constexpr auto fields =
      std::tuple{field("subject", &R::subject), field("label", &R::label), field("target", &R::target)};
};

template <>
struct JsonRecordFields<PurrlFocusDailySet> : LenientJsonRecord {
  using R = PurrlFocusDailySet;
  static constexpr auto fields =
      std::tuple{field("subject", &R::subject), field("label", &R::label), field("target", &R::target),
                 field("done", &R::done), field("kept", &R::kept)};
};

template <>
struct JsonRecordFields<PurrlFocusDailySets> : LenientJsonRecord {
  using R = PurrlFocusDailySets;
  static constexpr auto fields =
      std::tuple{field("day", &R::day), field("items", &R::items), field("kept", &R::kept)};
};

}  // namespace kovi
