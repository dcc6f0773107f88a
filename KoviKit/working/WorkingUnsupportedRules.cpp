#include "KoviKit/working/WorkingUnsupportedRules.h"

#include <array>

#include "KoviKit/working/WorkingRuleLimits.h"

namespace kovi {
namespace {

using Rules = WorkingRules;

bool longerThan(const std::optional<std::int64_t>& seconds, std::int64_t limit) { return seconds && *seconds > limit; }

struct UnsupportedCheck {
  WorkingUnsupportedRule rule;
  bool (*applies)(const Rules&);
};

// A plain `allowed` late join leaves open whether a late member keeps the full
// target or only the remaining window; this version applies a late join only
// in one of those two explicit forms (or not at all).
constexpr std::array kChecks{
    UnsupportedCheck{{"session.lateJoin", "Grup oturumuna geç katılım"},
                     [](const Rules& rules) { return rules.session.lateJoin == Rules::Session::LateJoin::allowed; }},
    UnsupportedCheck{{"verification.remoteWorkAllowed", "Uzak bağlantı doğrulaması"},
                     [](const Rules& rules) { return rules.verification.remoteWorkAllowed; }},
    UnsupportedCheck{{"verification.macRequired", "Mac dışı doğrulama"},
                     [](const Rules& rules) { return !rules.verification.macRequired; }},
    UnsupportedCheck{{"verification.idleThresholdSeconds", "24 saatten uzun etkinlik bekleme süresi"},
                     [](const Rules& rules) {
                       return longerThan(rules.verification.idleThresholdSeconds, kWorkingLongestSupportedIdleSeconds);
                     }},
    UnsupportedCheck{{"verification.passive.idleThresholdSeconds", "24 saatten uzun pasif etkinlik bekleme süresi"},
                     [](const Rules& rules) {
                       return rules.verification.passive.idleThresholdSeconds > kWorkingLongestSupportedIdleSeconds;
                     }},
    UnsupportedCheck{{"session.pomodoro.workSeconds", "24 saatten uzun Pomodoro çalışma bloğu"},
                     [](const Rules& rules) {
                       return rules.session.pomodoro &&
                              rules.session.pomodoro->workSeconds > kWorkingLongestSupportedPomodoroSeconds;
                     }},
    UnsupportedCheck{{"session.pomodoro.breakSeconds", "24 saatten uzun Pomodoro molası"},
                     [](const Rules& rules) {
                       return rules.session.pomodoro &&
                              rules.session.pomodoro->breakSeconds > kWorkingLongestSupportedPomodoroSeconds;
                     }},
    UnsupportedCheck{{"session.hardWindowSeconds", "7 günden uzun tek oturum aralığı"},
                     [](const Rules& rules) {
                       return longerThan(rules.session.hardWindowSeconds, kWorkingLongestSupportedHardWindowSeconds);
                     }},
};

}  // namespace

std::vector<WorkingUnsupportedRule> unsupportedWorkingRules(const WorkingRules& rules) {
  std::vector<WorkingUnsupportedRule> unsupported;
  for (const UnsupportedCheck& check : kChecks) {
    if (check.applies(rules)) unsupported.push_back(check.rule);
  }
  return unsupported;
}

}  // namespace kovi
