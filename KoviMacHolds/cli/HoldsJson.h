#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <vector>

#include "KoviMacHolds/MacFocus2EnforcementPlan.h"
#include "KoviMacHolds/MacHoldsDue.h"
#include "KoviMacHolds/MacHoldsSchedule.h"
#include "KoviMacHolds/MacHoldsTimeline.h"

// JSON forms of the holds model for the inspection commands. Instants are
// Unix milliseconds.
namespace kovi::holds {

nlohmann::ordered_json dueJson(const MacHoldsDue& due);
nlohmann::ordered_json windowsJson(const std::vector<MacHoldsSchedule::Window>& windows);
// null without a plan; bundle identifiers sorted, domains in preset order.
nlohmann::ordered_json planJson(const std::optional<MacFocus2EnforcementPlan>& plan);
nlohmann::ordered_json segmentsJson(const std::vector<MacHoldsSegment>& segments);

}  // namespace kovi::holds
