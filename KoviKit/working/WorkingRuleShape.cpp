#include "KoviKit/working/WorkingRuleShape.h"

#include <array>
#include <unordered_map>
#include <vector>

namespace kovi {
namespace {

constexpr auto kShapeTable = std::to_array<WorkingRuleShape::Entry>({
    {"rules", "version preset category goal race calendar session verification breaks blocking privacy economics"},
    {"rules.goal", "kind dailyTargetSeconds totalTargetSeconds requiredSuccessfulDays"},
    {"rules.race", "kind minimumEligibilitySeconds targetSeconds tieBucketSeconds efficiencyTieBreak"},
    {"rules.calendar",
     "timezone dayBoundary startsAt endsAt days windows outsideWindow lateStart lateGraceSeconds makeupAllowed"},
    {"rules.calendar.days[]", "id start end"},
    {"rules.calendar.windows[]", "id start end targetSeconds"},
    {"rules.session",
     "fragmentation minimumSeconds maximumSessionsPerDay hardWindowSeconds continuity continuityBreakSeconds "
     "handoffPreservesContinuity restSeconds dailyCapSeconds completion pomodoro synchronized allReadyRequired "
     "lateJoin"},
    {"rules.session.pomodoro", "workSeconds breakSeconds"},
    {"rules.verification",
     "strictness macRequired idleThresholdSeconds resume resumeDebounceSeconds passive remoteWorkAllowed "
     "permissionLoss partialSegments graceSeconds unresolvedSegments heartbeatSeconds"},
    {"rules.verification.passive", "allowed idleThresholdSeconds meetingsCount readingCounts"},
    {"rules.breaks",
     "manualAllowed protection maximumPerSessionSeconds maximumPerDaySeconds maximumPerBreakSeconds overrun"},
    {"rules.blocking", "mac iphone iphoneEnforcement deviceScope exemptionsAllowed bypass"},
    {"rules.blocking.mac", "apps websites"},
    {"rules.blocking.iphone", "apps websites"},
    {"rules.blocking.mac.apps", "mode required"},
    {"rules.blocking.mac.websites", "mode required"},
    {"rules.blocking.iphone.apps", "mode required"},
    {"rules.blocking.iphone.websites", "mode required"},
    {"rules.blocking.bypass",
     "mode usesPerSession secondsPerUse consequence violationsToFailDay emergencyAlwaysAvailable"},
    {"rules.privacy", "presence exactDuration sessionTiming taskLabel shareDistractionAggregates"},
    {"rules.economics",
     "funding contributionAtomic payout rankPayoutsBps fallback exitPenaltyBps manualEntry rounding"},
});

std::vector<std::string_view> splitOnSpaces(std::string_view text) {
  std::vector<std::string_view> words;
  while (!text.empty()) {
    const auto space = text.find(' ');
    words.push_back(text.substr(0, space));
    if (space == std::string_view::npos) break;
    text.remove_prefix(space + 1);
  }
  return words;
}

// The table split once per process: path → its keys in declared order.
const std::unordered_map<std::string_view, std::vector<std::string_view>>& keySets() {
  static const auto sets = [] {
    std::unordered_map<std::string_view, std::vector<std::string_view>> split;
    for (const auto& entry : kShapeTable) split.emplace(entry.path, splitOnSpaces(entry.keys));
    return split;
  }();
  return sets;
}

// Checks one object against the key set of its path.
std::expected<void, std::string> checkObject(const nlohmann::json& value, const std::string& path) {
  const auto& sets = keySets();
  const auto found = sets.find(path);
  if (found == sets.end()) return std::unexpected("Unknown policy object at " + path);
  const std::vector<std::string_view>& keys = found->second;
  // Object keys are unique, so equal sizes and every expected key present
  // means the sets are equal.
  bool sameKeys = value.size() == keys.size();
  for (std::size_t index = 0; sameKeys && index < keys.size(); ++index) {
    sameKeys = value.contains(keys[index]);
  }
  if (!sameKeys) return std::unexpected("Unknown or missing policy field at " + path);
  return {};
}

}  // namespace

std::span<const WorkingRuleShape::Entry> WorkingRuleShape::table() { return kShapeTable; }

// Walks the document with a stack of its own rather than by recursion: the
// document comes from outside, and its nesting must not decide how deep the
// call stack goes. Children are pushed in reverse so they are visited in
// order, parents before children, as a recursive walk would.
std::expected<void, std::string> WorkingRuleShape::check(const nlohmann::json& rules) {
  struct Pending {
    const nlohmann::json* value;
    std::string path;
  };
  std::vector<Pending> pending{{&rules, "rules"}};
  while (!pending.empty()) {
    Pending next = std::move(pending.back());
    pending.pop_back();
    const nlohmann::json& value = *next.value;
    if (value.is_array()) {
      const std::string elementPath = next.path + "[]";
      for (auto element = value.rbegin(); element != value.rend(); ++element) pending.push_back({&*element, elementPath});
      continue;
    }
    if (!value.is_object()) continue;
    if (auto checked = checkObject(value, next.path); !checked) return checked;
    const std::vector<std::string_view>& keys = keySets().at(next.path);
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
      pending.push_back({&value.find(*key).value(), next.path + "." + std::string(*key)});
    }
  }
  return {};
}

}  // namespace kovi
