#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingScheduledItem.h"

namespace kovi {

// Makes each reminder of a scheduled window go out once, and only the latest
// one scheduled: every scheduling hands out a ticket, and a ticket is honoured
// only while the owner epoch it was issued under and its generation are still
// the fence's current ones. A reminder scheduled from a stale plan (before a
// reschedule or an owner change) is therefore never delivered.
struct WorkingScheduledReminderFence {
  // `advance` reminds before the window; `ready` when it can start.
  enum class Kind { advance, ready };

  // The last reminder scheduled under one key.
  struct Operation {
    Kind kind = Kind::advance;
    std::int64_t generation = 0;
    bool delivered = false;
    bool operator==(const Operation&) const = default;
  };

  struct Ticket {
    std::int64_t ownerEpoch = 0;
    std::string key;
    std::int64_t generation = 0;
    bool operator==(const Ticket&) const = default;
  };

  enum class Refusal {
    staleOwner,        // issued under another owner epoch
    staleGeneration,   // a newer reminder replaced it, or it was never issued
    alreadyDelivered,  // this reminder went out before
  };

  // An `advance` reminder comes this long before the window starts.
  static constexpr std::int64_t kAdvanceLeadMS = 10 * 60 * 1000;

  std::int64_t ownerEpoch = 0;
  std::map<std::string, Operation> operations;

  bool operator==(const WorkingScheduledReminderFence&) const = default;

  // "advance:<window id>" or "ready:<window id>".
  static std::string key(Kind kind, std::string_view windowID);

  // When a reminder of `kind` for `item` is due.
  static UnixMillis dueAt(Kind kind, const WorkingScheduledItem& item);

  // Schedules the reminder of `kind` for `windowID`, replacing any earlier
  // one under the same key, and returns its ticket.
  Ticket schedule(Kind kind, std::string_view windowID);

  // Delivers the reminder of `ticket` once: on success it is marked delivered.
  std::expected<void, Refusal> deliver(const Ticket& ticket);

  // A new owner (sign-out, another account) invalidates every ticket.
  void changeOwner(std::int64_t newOwnerEpoch);
};

template <>
struct EnumNames<WorkingScheduledReminderFence::Kind> {
  using Kind = WorkingScheduledReminderFence::Kind;
  static constexpr std::array table{std::pair{Kind::advance, std::string_view("advance")},
                                    std::pair{Kind::ready, std::string_view("ready")}};
};

template <>
struct JsonRecordFields<WorkingScheduledReminderFence::Operation> : StrictJsonRecord {
  using O = WorkingScheduledReminderFence::Operation;
  static constexpr auto fields = std::tuple{field("kind", &O::kind), field("generation", &O::generation),
                                            field("delivered", &O::delivered)};
};

template <>
struct JsonRecordFields<WorkingScheduledReminderFence> : StrictJsonRecord {
  using F = WorkingScheduledReminderFence;
  static constexpr auto fields =
      std::tuple{field("ownerEpoch", &F::ownerEpoch), field("operations", &F::operations)};
};

}  // namespace kovi
