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

WorkingSessionEvent sessionEvent(UnixMillis at, WorkingSessionEvent::Type type) { return {at, type, {}, {}, {}}; }

WorkingSessionEvent startEvent(UnixMillis at, WorkingSessionReadiness readiness) {
  return {at, WorkingSessionEvent::Type::start, readiness, {}, {}};
}

WorkingSessionEvent transportEvent(UnixMillis at, WorkingTransportState state) {
  return {at, WorkingSessionEvent::Type::transport, {}, {}, state};
}

WorkingSessionEvent passiveEvent(UnixMillis at, bool eligible, const char* token) {
  return {at, WorkingSessionEvent::Type::passive, {}, {eligible, token}, {}};
}

WorkingSessionEngine sessionEngine(const WorkingSessionPolicy& policy) {
  auto engine = WorkingSessionEngine::make("s1", "mac-1", policy);
  EXPECT_TRUE(engine.has_value());
  return std::move(*engine);
}

}  // namespace kovi::testing
