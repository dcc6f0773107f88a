#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kovi {

// A stretch of counted work: verified time the session engine accepted, from
// `start` to `end` (Unix milliseconds, start before end). Breaks, idle time,
// bypassed protection and anything else the engine excludes are already gaps
// between segments.
struct WorkingWorkSegment {
  std::int64_t start;
  std::int64_t end;
  bool operator==(const WorkingWorkSegment&) const = default;
};

// One work session of a member and its counted segments.
struct WorkingSessionWork {
  std::string id;
  std::vector<WorkingWorkSegment> segments;
  bool operator==(const WorkingSessionWork&) const = default;
};

// Everything the judgement needs to know about one member.
struct WorkingMemberWork {
  std::string accountID;
  // The member's wallet address; rounding by address needs it.
  std::optional<std::string> address;
  // Recorded race violations (bypasses, break overruns under the penalty rule).
  std::int64_t violations = 0;
  std::vector<WorkingSessionWork> sessions;
  bool operator==(const WorkingMemberWork&) const = default;
};

}  // namespace kovi
