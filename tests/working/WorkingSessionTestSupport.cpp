#include "tests/working/WorkingSessionTestSupport.h"

#include <gtest/gtest.h>

namespace kovi::testing {

WorkingSessionPolicy sessionTestPolicy() {
  WorkingSessionPolicy policy;
  policy.idleThresholdMS = 60'000;
  policy.resumeDebounceMS = 5'000;
  policy.resumeMaximumInputGapMS = 2'000;
  policy.maximumObservationGapMS = 120'000;
  policy.requiresAppBlocking = true;
  return policy;
}

WorkingSessionReadiness allReady() { return {true, true, true, true, true, true, true}; }

WorkingSessionEvent sessionEvent(UnixMillis at, WorkingSessionEvent::Type type) {
  WorkingSessionEvent event;
  event.at = at;
  event.type = type;
  return event;
}

WorkingSessionEvent startEvent(UnixMillis at, WorkingSessionReadiness readiness) {
  auto event = sessionEvent(at, WorkingSessionEvent::Type::start);
  event.readiness = readiness;
  return event;
}

WorkingSessionEvent readinessEvent(UnixMillis at, WorkingSessionReadiness readiness) {
  auto event = sessionEvent(at, WorkingSessionEvent::Type::readiness);
  event.readiness = readiness;
  return event;
}

WorkingSessionEvent transportEvent(UnixMillis at, WorkingTransportState state) {
  auto event = sessionEvent(at, WorkingSessionEvent::Type::transport);
  event.transport = state;
  return event;
}

WorkingSessionEvent passiveEvent(UnixMillis at, bool eligible, const char* token) {
  auto event = sessionEvent(at, WorkingSessionEvent::Type::passive);
  event.passive = {eligible, token};
  return event;
}

WorkingSessionEngine sessionEngine(const WorkingSessionPolicy& policy) {
  auto engine = WorkingSessionEngine::make("s1", "mac-1", policy);
  EXPECT_TRUE(engine.has_value());
  return std::move(*engine);
}

}  // namespace kovi::testing
