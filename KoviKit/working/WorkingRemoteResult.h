#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// The outcome of a working kovi as the service judged it: each member's work
// and share, and how the pool is settled.
struct WorkingRemoteResult {
  // A day's or a window's work of one member.
  struct WindowProgress {
    std::string id;
    std::int64_t activeMilliseconds = 0;
    bool met = false;
    bool operator==(const WindowProgress&) const = default;
  };

  struct Member {
    std::string accountID;
    std::int64_t activeMilliseconds = 0;
    std::optional<bool> exactDurationHidden;
    std::int64_t successfulDays = 0;
    std::int64_t bestStreak = 0;
    bool completed = false;
    bool eligible = false;
    std::optional<std::int64_t> rank;
    std::int64_t payoutBps = 0;
    std::optional<UnixMillis> reachedAt;
    std::optional<bool> sessionTimingHidden;
    std::optional<std::int64_t> violations;
    std::optional<std::vector<WindowProgress>> days;
    std::optional<std::vector<WindowProgress>> windows;
    bool operator==(const Member&) const = default;
  };

  struct Settlement {
    enum class Kind { payout, refund, rollover };
    Kind kind = Kind::payout;
    bool fallbackUsed = false;
    std::vector<std::string> recipients;
    std::vector<std::int64_t> payoutsBps;
    bool operator==(const Settlement&) const = default;
  };

  std::string status;
  UnixMillis graceEndsAt = 0;
  std::vector<Member> members;
  std::vector<std::string> pendingAccountIDs;
  std::optional<Settlement> settlement;

  bool operator==(const WorkingRemoteResult&) const = default;
};

template <>
struct EnumNames<WorkingRemoteResult::Settlement::Kind> {
  using K = WorkingRemoteResult::Settlement::Kind;
  static constexpr std::array table{std::pair{K::payout, std::string_view("payout")},
                                    std::pair{K::refund, std::string_view("refund")},
                                    std::pair{K::rollover, std::string_view("rollover")}};
};

template <>
struct JsonRecordFields<WorkingRemoteResult::WindowProgress> : LenientJsonRecord {
  using R = WorkingRemoteResult::WindowProgress;
  static constexpr auto fields =
      std::tuple{field("id", &R::id), field("activeMilliseconds", &R::activeMilliseconds), field("met", &R::met)};
};

template <>
struct JsonRecordFields<WorkingRemoteResult::Member> : LenientJsonRecord {
  using R = WorkingRemoteResult::Member;
  static constexpr auto fields = std::tuple{field("accountID", &R::accountID),
                                            field("activeMilliseconds", &R::activeMilliseconds),
                                            field("exactDurationHidden", &R::exactDurationHidden),
                                            field("successfulDays", &R::successfulDays),
                                            field("bestStreak", &R::bestStreak),
                                            field("completed", &R::completed),
                                            field("eligible", &R::eligible),
                                            field("rank", &R::rank),
                                            field("payoutBps", &R::payoutBps),
                                            field("reachedAt", &R::reachedAt),
                                            field("sessionTimingHidden", &R::sessionTimingHidden),
                                            field("violations", &R::violations),
                                            field("days", &R::days),
                                            field("windows", &R::windows)};
};

template <>
struct JsonRecordFields<WorkingRemoteResult::Settlement> : LenientJsonRecord {
  using R = WorkingRemoteResult::Settlement;
  static constexpr auto fields = std::tuple{field("kind", &R::kind), field("fallbackUsed", &R::fallbackUsed),
                                            field("recipients", &R::recipients), field("payoutsBps", &R::payoutsBps)};
};

template <>
struct JsonRecordFields<WorkingRemoteResult> : LenientJsonRecord {
  using R = WorkingRemoteResult;
  static constexpr auto fields =
      std::tuple{field("status", &R::status), field("graceEndsAt", &R::graceEndsAt), field("members", &R::members),
                 field("pendingAccountIDs", &R::pendingAccountIDs), field("settlement", &R::settlement)};
};

}  // namespace kovi
