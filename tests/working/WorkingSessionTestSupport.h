#pragma once

#include <vector>

#include "KoviKit/working/WorkingSessionEngine.h"

namespace kovi::testing {

// A policy for engine tests: idle after 60 s, automatic resume after 5 s of
// input at most 2 s apart, observations at most 120 s apart, app blocking
// required.
WorkingSessionPolicy sessionTestPolicy();

// Every readiness flag true.
WorkingSessionReadiness allReady();

WorkingSessionEvent sessionEvent(UnixMillis at, WorkingSessionEvent::Type type);
WorkingSessionEvent startEvent(UnixMillis at, WorkingSessionReadiness readiness = allReady());
WorkingSessionEvent transportEvent(UnixMillis at, WorkingTransportState state);
WorkingSessionEvent passiveEvent(UnixMillis at, bool eligible, const char* token);

// An engine for session "s1" on device "mac-1" under `policy`.
WorkingSessionEngine sessionEngine(const WorkingSessionPolicy& policy = sessionTestPolicy());

}  // namespace kovi::testing
