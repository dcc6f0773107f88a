#include "KoviMacHolds/cli/HoldsJson.h"

namespace kovi::holds {

using nlohmann::ordered_json;

ordered_json dueJson(const MacHoldsDue& due) {
  ordered_json json = ordered_json::object();
  json["kind"] = due.kind;
  json["until"] = due.until ? ordered_json(due.until->unixMillis()) : ordered_json(nullptr);
  return json;
}

ordered_json windowsJson(const std::vector<MacHoldsSchedule::Window>& windows) {
  ordered_json json = ordered_json::array();
  for (const auto& window : windows) {
    json.push_back({{"kind", window.kind}, {"start", window.start.unixMillis()}, {"end", window.end.unixMillis()}});
  }
  return json;
}

ordered_json planJson(const std::optional<MacFocus2EnforcementPlan>& plan) {
  if (!plan) return nullptr;
  return {
      {"runID", plan->runID},
      {"mode", plan->mode},
      {"allowlist", plan->allowlist},
      {"bundleIDs", plan->bundleIDs},  // a std::set: already ascending
      {"domains", plan->domains},
      {"until", plan->until},
      {"examWeek", plan->examWeek},
  };
}

ordered_json segmentsJson(const std::vector<MacHoldsSegment>& segments) {
  ordered_json json = ordered_json::array();
  for (const auto& segment : segments) {
    json.push_back({{"from", segment.from}, {"to", segment.to}, {"kind", segment.kind}});
  }
  return json;
}

}  // namespace kovi::holds
