#include "KoviKit/evidence/WalkingDayWindowVerifier.h"

#include <map>

#include "KoviKit/evidence/WalkingDayWindowPlanner.h"

namespace kovi {
namespace {

std::string dayName(int day) { return "day " + std::to_string(day); }

void compareEdge(std::vector<std::string>& issues, int day, std::string_view edge, UnixMillis server,
                 UnixMillis expected) {
  if (server == expected) return;
  issues.push_back(dayName(day) + ": " + std::string(edge) + " " + std::to_string(server) +
                   " differs from the expected " + std::to_string(expected));
}

std::vector<std::string> compare(const std::vector<HealthEvidenceDayWindow>& expected,
                                 const std::vector<HealthEvidenceDayWindow>& server) {
  std::vector<std::string> issues;
  std::map<int, const HealthEvidenceDayWindow*> serverByDay;
  for (const HealthEvidenceDayWindow& window : server) {
    if (!serverByDay.emplace(window.day, &window).second) {
      issues.push_back(dayName(window.day) + " appears more than once");
    }
  }
  for (const HealthEvidenceDayWindow& window : expected) {
    const auto found = serverByDay.find(window.day);
    if (found == serverByDay.end()) {
      issues.push_back(dayName(window.day) + " is missing");
      continue;
    }
    compareEdge(issues, window.day, "start", found->second->start, window.start);
    compareEdge(issues, window.day, "end", found->second->end, window.end);
    serverByDay.erase(found);
  }
  for (const auto& [day, window] : serverByDay) issues.push_back(dayName(day) + " is not a day of this kovi");
  return issues;
}

}  // namespace

WalkingDayWindowReview WalkingDayWindowVerifier::review(
    const WalkingKoviRules& rules, UnixMillis start,
    const std::optional<std::vector<HealthEvidenceDayWindow>>& serverWindows) {
  auto derived = WalkingDayWindowPlanner::plan(rules, start);
  if (!derived) return {WalkingDayWindowReview::Verdict::unavailable, {}, {derived.error()}};
  if (!serverWindows) return {WalkingDayWindowReview::Verdict::derived, std::move(*derived), {}};
  auto issues = compare(*derived, *serverWindows);
  if (!issues.empty()) return {WalkingDayWindowReview::Verdict::mismatch, {}, std::move(issues)};
  return {WalkingDayWindowReview::Verdict::verified, std::move(*derived), {}};
}

std::optional<std::vector<HealthEvidenceDayWindow>> WalkingDayWindowVerifier::serverWindows(
    const WalkingKoviRules& rules) {
  if (!rules.dayWindows) return std::nullopt;
  std::vector<HealthEvidenceDayWindow> windows;
  windows.reserve(rules.dayWindows->size());
  for (const WalkingDayWindow& window : *rules.dayWindows) {
    windows.push_back({static_cast<int>(windows.size()), window.start, window.end});
  }
  return windows;
}

std::expected<std::vector<HealthEvidenceDayWindow>, WalkingEvidenceError> WalkingDayWindowReview::windowsForEvidence()
    const {
  if (verdict == Verdict::verified || verdict == Verdict::derived) return windows;
  std::string detail;
  for (const std::string& issue : issues) {
    if (!detail.empty()) detail += "; ";
    detail += issue;
  }
  return std::unexpected(WalkingEvidenceError{std::string(walkingErrorCode::dayWindowsInvalid), detail});
}

}  // namespace kovi
