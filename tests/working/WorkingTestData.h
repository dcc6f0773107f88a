#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "KoviKit/working/WorkingCheckpoint.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi::testing {

// The canonical rule sets in tests/working/data: "daily-rules.json" (daily
// goal, no race, funded), "race-rules.json" (highest total, three ranks),
// "scheduled-rules.json" (three windows in Europe/Berlin across the spring
// daylight-saving change, single sessions, free) and
// "first-to-target-rules.json" (first to five hours takes the pool).
// A data file's text without its final newline, so samples compare byte for byte.
std::string workingDataFile(std::string_view name);
nlohmann::json workingRulesJson(std::string_view name);
// The decoded rule set; fails the running test when it does not decode.
WorkingRules workingRules(std::string_view name);
// Decodes edited rule JSON; fails the running test when it does not decode.
WorkingRules decodedRules(const nlohmann::json& rules);

// A change to a rule document, for tables of broken and edge-case rule sets.
using RulesEdit = std::function<void(nlohmann::json&)>;

// `edit` applied to the rule set in `name`, then decoded from its text.
std::expected<WorkingRules, WorkingRulesDecodeError> decodeEdited(std::string_view name, const RulesEdit& edit);

// An edit that sets each JSON pointer key of `values` to its value, e.g.
// setting({{"/goal/kind", "sprint"}, {"/calendar/days/0/start", 5}}).
RulesEdit setting(nlohmann::json values);
// The rule set in `name` with `values` set as by `setting`; fails the running
// test when the result does not decode.
WorkingRules workingRules(std::string_view name, const nlohmann::json& values);

// Istanbul (UTC+3, no daylight saving) instants of the daily, race and
// first-to-target rule sets: `day` counts from the first kovi day.
std::int64_t istanbulTime(int day, int hour, int minute = 0);

// A linked chain of `count` checkpoints a minute apart from 1'780'000'000'000;
// checkpoint k holds 40 s of active and 20 s of idle time. The last one is
// final when asked.
std::vector<WorkingCheckpoint> linkedChain(int count, bool endsFinal);

}  // namespace kovi::testing
