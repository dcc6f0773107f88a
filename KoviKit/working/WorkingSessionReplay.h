#pragma once

#include <string_view>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingSessionEngine.h"
#include "KoviKit/working/WorkingSessionEvent.h"

namespace kovi {

// A recorded session to run through the engine:
//
//   {"rules": {…} | "policy": {…}, "sessionID": "s1", "deviceID": "mac-1",
//    "events": [{"at": 1772431200000, "type": "start", "readiness": {…seven flags…}},
//               {"at": 1772431201000, "type": "activity"},
//               {"at": …, "type": "passive", "eligible": true, "continuityToken": "call-7"},
//               {"at": …, "type": "transport", "state": "offlineLocal"}, …]}
//
// Exactly one of `rules` (a full rule set, checked as the apps check it, from
// which the session policy is derived) and `policy`. Every object carries
// exactly its keys: `readiness` belongs to `start` and `readiness` events,
// `eligible` and `continuityToken` to `passive`, `state` to `transport`.
struct WorkingSessionReplay {
  WorkingSessionEngine engine;
  std::vector<WorkingSessionEvent> events;
};

// The engine in `preparing` and the events in file order. A rule set or
// policy the engine refuses, or identifiers it refuses, fail at their key.
Decoded<WorkingSessionReplay> decodeWorkingSessionReplay(std::string_view text);

// Only the events of a replay document (the array at `events`).
Decoded<std::vector<WorkingSessionEvent>> decodeWorkingSessionEvents(const JsonView& events);

}  // namespace kovi
