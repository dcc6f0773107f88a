#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviMacHolds/MacFocus2EnforcementPlan.h"
#include "KoviMacHolds/MacHoldsDue.h"

namespace kovi::holds {

// What the engine does after one evaluation: hold (hand the guard a due hold
// and its plan), stand by (stop the guard and wait), or exit (nothing is left
// to hold).
class MacHoldsAction {
 public:
  enum class Kind { hold, exit, standBy };

  struct Hold {
    MacHoldsDue due;
    MacFocus2EnforcementPlan plan;
    bool operator==(const Hold&) const = default;
  };

  static MacHoldsAction hold(MacHoldsDue due, MacFocus2EnforcementPlan plan) {
    return MacHoldsAction(Kind::hold, Hold{std::move(due), std::move(plan)});
  }
  static MacHoldsAction exit() { return MacHoldsAction(Kind::exit, std::nullopt); }
  static MacHoldsAction standBy() { return MacHoldsAction(Kind::standBy, std::nullopt); }

  Kind kind() const { return kind_; }
  // The due hold and its plan; present exactly when kind() is hold.
  const std::optional<Hold>& held() const { return hold_; }

  bool operator==(const MacHoldsAction&) const = default;

 private:
  MacHoldsAction(Kind kind, std::optional<Hold> hold) : kind_(kind), hold_(std::move(hold)) {}
  Kind kind_;
  std::optional<Hold> hold_;
};

}  // namespace kovi::holds

namespace kovi {

template <>
struct EnumNames<holds::MacHoldsAction::Kind> {
  using Kind = holds::MacHoldsAction::Kind;
  static constexpr std::array table{
      std::pair{Kind::hold, std::string_view("hold")},
      std::pair{Kind::exit, std::string_view("exit")},
      std::pair{Kind::standBy, std::string_view("standBy")},
  };
};

}  // namespace kovi
