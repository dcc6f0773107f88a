#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// A group start in preparation: every approved member's Mac must be ready;
// a five-second countdown follows readiness, and preparation ends when the
// group is not ready within five minutes.
struct WorkingRemoteCohort {
  struct Member {
    std::string accountID;
    bool prepared = false;
    bool ready = false;
    std::optional<std::string> sessionID;
    bool operator==(const Member&) const = default;
  };

  std::string id;
  std::string roomID;
  std::string rulesHash;
  UnixMillis createdAt = 0;
  UnixMillis expiresAt = 0;
  std::optional<UnixMillis> startRequestedAt;
  std::optional<UnixMillis> startsAt;
  std::optional<UnixMillis> endsAt;
  std::string state;
  std::optional<std::string> lastGroupCommandID;
  std::vector<Member> members;

  bool operator==(const WorkingRemoteCohort&) const = default;
};

template <>
struct JsonRecordFields<WorkingRemoteCohort::Member> : LenientJsonRecord {
  using R = WorkingRemoteCohort::Member;
  static constexpr auto fields = std::tuple{field("accountID", &R::accountID), field("prepared", &R::prepared),
                                            field("ready", &R::ready), field("sessionID", &R::sessionID)};
};

template <>
struct JsonRecordFields<WorkingRemoteCohort> : LenientJsonRecord {
  using R = WorkingRemoteCohort;
  static constexpr auto fields =
      std::tuple{field("id", &R::id),
                 field("roomID", &R::roomID),
                 field("rulesHash", &R::rulesHash),
                 field("createdAt", &R::createdAt),
                 field("expiresAt", &R::expiresAt),
                 field("startRequestedAt", &R::startRequestedAt),
                 field("startsAt", &R::startsAt),
                 field("endsAt", &R::endsAt),
                 field("state", &R::state),
                 field("lastGroupCommandID", &R::lastGroupCommandID),
                 field("members", &R::members)};
};

}  // namespace kovi
