#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// Lets a resume happen once, for the session it was authorised for: every
// authorisation or revocation starts a new generation, and a token is
// honoured only while its generation is the current one and its session is
// the fence's session. Using a token ends its generation.
struct WorkingResumeAuthorizationFence {
  struct Token {
    std::int64_t generation = 0;
    std::string sessionID;
    bool operator==(const Token&) const = default;
  };

  // What a caller keeps to learn later whether anything changed meanwhile.
  struct Snapshot {
    std::int64_t generation = 0;
    bool operator==(const Snapshot&) const = default;
  };

  std::int64_t generation = 0;
  std::optional<std::string> sessionID;

  bool operator==(const WorkingResumeAuthorizationFence&) const = default;

  // Authorises one resume of `session`; every earlier token goes stale.
  Token authorize(std::string_view session);
  // Withdraws any authorisation; every earlier token goes stale.
  void revoke();

  Snapshot snapshot() const { return Snapshot{generation}; }
  bool isCurrent(const Snapshot& earlier) const { return earlier.generation == generation; }

  bool honours(const Token& token) const;
  // Uses `token` once: true when it was honoured, after which it is stale.
  bool consume(const Token& token);
};

template <>
struct JsonRecordFields<WorkingResumeAuthorizationFence> : StrictJsonRecord {
  using F = WorkingResumeAuthorizationFence;
  static constexpr auto fields = std::tuple{field("generation", &F::generation), field("sessionID", &F::sessionID)};
};

}  // namespace kovi
