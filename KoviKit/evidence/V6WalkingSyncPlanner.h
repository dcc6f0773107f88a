#pragma once

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/V6WalkingBucketEntry.h"
#include "KoviKit/evidence/V6WalkingContext.h"

namespace kovi {

// Decides, day by day, what this device sends for a walking kovi.
class V6WalkingSyncPlanner {
 public:
  // Send this entry; `payloadHash` is the hash of its observation's payload.
  struct Submit {
    V6WalkingBucketEntry entry;
    std::string payloadHash;
    bool operator==(const Submit&) const = default;
  };
  // The server already holds exactly this payload for the day.
  struct Unchanged {
    bool operator==(const Unchanged&) const = default;
  };
  // Nothing to send yet: no readable data, no read, or no closed bucket.
  struct NoData {
    WalkingEvidenceError reason;
    bool operator==(const NoData&) const = default;
  };
  // The read failed or was refused (off-grid buckets).
  struct Failed {
    WalkingEvidenceError reason;
    bool operator==(const Failed&) const = default;
  };
  using DayOutcome = std::variant<Submit, Unchanged, NoData, Failed>;

  struct DayPlan {
    int day = 0;
    DayOutcome outcome;
    bool operator==(const DayPlan&) const = default;
  };

  enum class WriterDecision {
    sign,                        // this device's key is the writer (or there is none yet)
    transferFromOwnReplacedKey,  // a key this device replaced is the writer: move it first
    otherDevice,                 // another device writes; this one does not submit
  };

  // One plan per window of the context, in the context's order, for the
  // reads taken at `cutoff`. Nothing is planned for a context whose rules do
  // not hash to its `rulesHash` ("walking_rules_hash_mismatch") or whose
  // windows — and the rules' own `dayWindows`, when fixed — do not verify
  // against the rules ("walking_day_windows_invalid"). The kovi's start is
  // taken as the first window's start, which yields the same windows for
  // every boundary: the start itself when anchored, a point of day 0 for
  // "today", day 0's midnight for "midnight".
  static std::expected<std::vector<DayPlan>, WalkingEvidenceError> plan(const V6WalkingContext& context,
                                                                        const std::vector<HealthEvidenceDayRead>& reads,
                                                                        UnixMillis cutoff);

  // Whether this device, holding `currentKeyId` and having replaced
  // `replacedKeyIds`, may sign for the member whose writer is `writerKeyId`.
  static WriterDecision writerDecision(const std::optional<std::string>& writerKeyId, std::string_view currentKeyId,
                                       std::span<const std::string> replacedKeyIds);
};

template <>
struct EnumNames<V6WalkingSyncPlanner::WriterDecision> {
  static constexpr std::array table{
      std::pair{V6WalkingSyncPlanner::WriterDecision::sign, std::string_view("sign")},
      std::pair{V6WalkingSyncPlanner::WriterDecision::transferFromOwnReplacedKey,
                std::string_view("transferFromOwnReplacedKey")},
      std::pair{V6WalkingSyncPlanner::WriterDecision::otherDevice, std::string_view("otherDevice")},
  };
};

}  // namespace kovi
