#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/WalkingEvidenceError.h"
#include "KoviKit/evidence/WalkingKoviRules.h"

namespace kovi {

// The verdict on a kovi's day windows.
struct WalkingDayWindowReview {
  enum class Verdict {
    verified,     // the server's windows agree with what the rules yield
    derived,      // the server gave none; the rules yielded `windows`
    mismatch,     // the server's windows differ; one entry of `issues` per fault
    unavailable,  // the rules cannot yield windows; `issues` holds why
  };

  Verdict verdict = Verdict::unavailable;
  std::vector<HealthEvidenceDayWindow> windows;
  std::vector<std::string> issues;

  bool operator==(const WalkingDayWindowReview&) const = default;

  // The windows evidence may be sent for: those of a verified or derived
  // review. Otherwise "walking_day_windows_invalid" with the issues.
  std::expected<std::vector<HealthEvidenceDayWindow>, WalkingEvidenceError> windowsForEvidence() const;
};

template <>
struct EnumNames<WalkingDayWindowReview::Verdict> {
  static constexpr std::array table{
      std::pair{WalkingDayWindowReview::Verdict::verified, std::string_view("verified")},
      std::pair{WalkingDayWindowReview::Verdict::derived, std::string_view("derived")},
      std::pair{WalkingDayWindowReview::Verdict::mismatch, std::string_view("mismatch")},
      std::pair{WalkingDayWindowReview::Verdict::unavailable, std::string_view("unavailable")},
  };
};

// Compares the windows the server fixed with those the rules yield, day by
// day on index, start and end, to the millisecond: both sides compute whole
// milliseconds from the same rules, so any difference is a real disagreement.
class WalkingDayWindowVerifier {
 public:
  static WalkingDayWindowReview review(const WalkingKoviRules& rules, UnixMillis start,
                                       const std::optional<std::vector<HealthEvidenceDayWindow>>& serverWindows);

  // The rules' own `dayWindows`, numbered by position, when the server fixed them.
  static std::optional<std::vector<HealthEvidenceDayWindow>> serverWindows(const WalkingKoviRules& rules);
};

}  // namespace kovi
