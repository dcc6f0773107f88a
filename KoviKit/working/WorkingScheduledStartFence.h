#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// Makes a scheduled start happen once, for the owner and plan it was armed
// for, inside its start window: the Mac arms it with the plan of one window,
// and whatever later tries to start the session fires it.
struct WorkingScheduledStartFence {
  enum class State { idle, armed, fired, cancelled };

  // The window the fence is armed for; the start is due from `startsAt` up
  // to and including `lateDeadline`.
  struct Plan {
    std::string ownerID;
    std::string roomID;
    std::string rulesHash;
    std::string windowID;
    UnixMillis startsAt = 0;
    UnixMillis lateDeadline = 0;
    bool operator==(const Plan&) const = default;
  };

  enum class Failure { notArmed, alreadyFired, ownerMismatch, refreshMismatch, expired, early };

  // A successful fire: the session is published as prepared at this time.
  struct Published {
    UnixMillis preparedAt = 0;
    bool operator==(const Published&) const = default;
  };

  State state = State::idle;
  std::optional<Plan> plan;
  // The owner's epoch and the plan refresh the fence was armed under; a
  // caller from another epoch holds a stale view and may not fire.
  std::int64_t ownerEpoch = 0;
  std::int64_t refreshEpoch = 0;
  // Counts arms, so a stale arm request can be told from the current one.
  std::int64_t armGeneration = 0;
  std::optional<UnixMillis> firedAt;
  // The service's receipt for the published start, kept once it arrives.
  std::optional<std::string> receipt;

  bool operator==(const WorkingScheduledStartFence&) const = default;

  // Arms the fence for `newPlan` under the given epochs, replacing any earlier
  // plan and outcome. A plan whose late deadline is before its start can
  // never fire and is refused (returns false, nothing changes).
  bool arm(const Plan& newPlan, std::int64_t newOwnerEpoch, std::int64_t newRefreshEpoch);

  // Stops an armed start; a fired one stays fired.
  void cancel();

  // Fires the start at `now` for a caller holding the given epochs. Checked
  // in this order: the fence must be armed (`alreadyFired` when it already
  // fired, else `notArmed`), the owner epoch and then the refresh epoch must
  // be the fence's, and `now` must lie within [startsAt, lateDeadline]
  // (`early` before, `expired` after; both bounds inclusive). On success the
  // fence is `fired` at `now` and the start is published as prepared at `now`;
  // on failure nothing changes.
  std::expected<Published, Failure> fire(UnixMillis now, std::int64_t callerOwnerEpoch,
                                         std::int64_t callerRefreshEpoch);
};

template <>
struct EnumNames<WorkingScheduledStartFence::State> {
  using State = WorkingScheduledStartFence::State;
  static constexpr std::array table{
      std::pair{State::idle, std::string_view("idle")}, std::pair{State::armed, std::string_view("armed")},
      std::pair{State::fired, std::string_view("fired")}, std::pair{State::cancelled, std::string_view("cancelled")}};
};

template <>
struct EnumNames<WorkingScheduledStartFence::Failure> {
  using Failure = WorkingScheduledStartFence::Failure;
  static constexpr std::array table{std::pair{Failure::notArmed, std::string_view("notArmed")},
                                    std::pair{Failure::alreadyFired, std::string_view("alreadyFired")},
                                    std::pair{Failure::ownerMismatch, std::string_view("ownerMismatch")},
                                    std::pair{Failure::refreshMismatch, std::string_view("refreshMismatch")},
                                    std::pair{Failure::expired, std::string_view("expired")},
                                    std::pair{Failure::early, std::string_view("early")}};
};

template <>
struct JsonRecordFields<WorkingScheduledStartFence::Plan> : StrictJsonRecord {
  using P = WorkingScheduledStartFence::Plan;
  static constexpr auto fields =
      std::tuple{field("ownerID", &P::ownerID),     field("roomID", &P::roomID),
                 field("rulesHash", &P::rulesHash), field("windowID", &P::windowID),
                 field("startsAt", &P::startsAt),   field("lateDeadline", &P::lateDeadline)};
};

template <>
struct JsonRecordFields<WorkingScheduledStartFence> : StrictJsonRecord {
  using F = WorkingScheduledStartFence;
  static constexpr auto fields =
      std::tuple{field("state", &F::state),           field("plan", &F::plan),
                 field("ownerEpoch", &F::ownerEpoch), field("refreshEpoch", &F::refreshEpoch),
                 field("armGeneration", &F::armGeneration), field("firedAt", &F::firedAt),
                 field("receipt", &F::receipt)};
};

}  // namespace kovi
