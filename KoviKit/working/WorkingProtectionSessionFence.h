#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// Ties protection to the one session prepared on this Mac. Once that session
// is closed, protection requests naming it are refused for good, so a late
// command or a restarted agent cannot reopen protection for a finished
// session; only a newly prepared session opens the fence again.
struct WorkingProtectionSessionFence {
  std::optional<std::string> sessionID;
  std::optional<UnixMillis> preparedAt;
  bool isClosed = false;

  bool operator==(const WorkingProtectionSessionFence&) const = default;

  // Opens the fence for `session`, prepared at `at`. Refused (false, nothing
  // changes) for the session that was closed.
  bool prepare(std::string_view session, UnixMillis at);
  void close() { isClosed = true; }
  // Whether protection may act for `session` now.
  bool admits(std::string_view session) const { return !isClosed && sessionID && *sessionID == session; }
};

template <>
struct JsonRecordFields<WorkingProtectionSessionFence> : StrictJsonRecord {
  using F = WorkingProtectionSessionFence;
  static constexpr auto fields =
      std::tuple{field("sessionID", &F::sessionID), field("preparedAt", &F::preparedAt), field("isClosed", &F::isClosed)};
};

}  // namespace kovi
