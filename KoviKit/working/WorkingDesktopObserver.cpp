#include "KoviKit/working/WorkingDesktopObserver.h"

#include <algorithm>

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

constexpr std::int64_t kReadingJitterMS = 200;

WorkingSessionEvent event(UnixMillis at, WorkingSessionEvent::Type type) {
  WorkingSessionEvent made;
  made.at = at;
  made.type = type;
  return made;
}

}  // namespace

WorkingSessionReadiness WorkingDesktopObserver::readinessOf(const WorkingDesktopReading& reading) {
  WorkingSessionReadiness readiness;
  readiness.activityMonitoring = reading.inputIdleMS.has_value();
  readiness.deviceUnlocked = reading.locked == false;
  readiness.displayAwake = reading.displayAwake == true;
  return readiness;
}

std::vector<WorkingSessionEvent> WorkingDesktopObserver::observe(const WorkingDesktopReading& reading,
                                                                 UnixMillis now) {
  using Type = WorkingSessionEvent::Type;
  std::vector<WorkingSessionEvent> events;
  const WorkingSessionReadiness readiness = readinessOf(reading);
  if (readiness != readiness_) {
    WorkingSessionEvent changed = event(now, Type::readiness);
    changed.readiness = readiness;
    events.push_back(changed);
    readiness_ = readiness;
  }
  const bool preparingForSleep = reading.preparingForSleep == true;
  if (preparingForSleep != sleeping_) {
    events.push_back(event(now, preparingForSleep ? Type::sleep : Type::wake));
    sleeping_ = preparingForSleep;
  }
  if (reading.inputIdleMS) {
    const UnixMillis inputAt = checkedSub(now, std::clamp<std::int64_t>(*reading.inputIdleMS, 0, now));
    // The first reading only sets the mark: input before the session is not
    // its work. The idle time and the clock are read a moment apart, so
    // input must be newer by more than that jitter.
    if (lastInputAt_ && inputAt > checkedAdd(*lastInputAt_, kReadingJitterMS)) {
      events.push_back(event(now, Type::activity));
    }
    lastInputAt_ = inputAt;
  }
  if (events.empty()) events.push_back(event(now, Type::tick));
  return events;
}

}  // namespace kovi
