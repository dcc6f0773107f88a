#include "KoviKit/working/WorkingSessionReplay.h"

#include <string>

#include "KoviKit/working/WorkingRules.h"
#include "KoviKit/working/WorkingSessionCoding.h"

namespace kovi {
namespace {

using Type = WorkingSessionEvent::Type;

// The keys an event of `type` carries beside `at` and `type`, read into `event`.
Decoded<void> decodeEventDetails(const JsonView& json, WorkingSessionEvent& event) {
  switch (event.type) {
    case Type::start:
    case Type::readiness: {
      if (auto keys = json.requireOnlyKeys({"at", "type", "readiness"}); !keys) return keys;
      auto readiness = json.get<WorkingSessionReadiness>("readiness");
      if (!readiness) return std::unexpected(readiness.error());
      event.readiness = *readiness;
      return {};
    }
    case Type::passive: {
      if (auto keys = json.requireOnlyKeys({"at", "type", "eligible", "continuityToken"}); !keys) return keys;
      auto eligible = json.get<bool>("eligible");
      if (!eligible) return std::unexpected(eligible.error());
      auto token = json.get<std::string>("continuityToken");
      if (!token) return std::unexpected(token.error());
      event.passive = WorkingPassiveObservation{*eligible, std::move(*token)};
      return {};
    }
    case Type::transport: {
      if (auto keys = json.requireOnlyKeys({"at", "type", "state"}); !keys) return keys;
      auto state = json.get<WorkingTransportState>("state");
      if (!state) return std::unexpected(state.error());
      event.transport = *state;
      return {};
    }
    default: return json.requireOnlyKeys({"at", "type"});
  }
}

Decoded<WorkingSessionEvent> decodeEvent(const JsonView& json) {
  if (auto object = json.requireObject(); !object) return std::unexpected(object.error());
  WorkingSessionEvent event;
  auto type = json.get<Type>("type");
  if (!type) return std::unexpected(type.error());
  event.type = *type;
  auto at = json.get<std::int64_t>("at");
  if (!at) return std::unexpected(at.error());
  event.at = *at;
  if (auto details = decodeEventDetails(json, event); !details) return std::unexpected(details.error());
  return event;
}

Decoded<WorkingSessionPolicy> decodePolicy(const JsonView& document) {
  const bool hasRules = document.contains("rules");
  if (hasRules == document.contains("policy")) {
    return std::unexpected(document.error("exactly one of \"rules\" and \"policy\" is required"));
  }
  if (!hasRules) return document.get<WorkingSessionPolicy>("policy");
  auto rules = document.get<WorkingRules>("rules");
  if (!rules) return std::unexpected(rules.error());
  auto policy = WorkingSessionPolicy::fromRules(*rules);
  if (!policy) {
    return std::unexpected(DecodeError{"rules", "no session can run under these rules: strict verification needs an "
                                                "idle threshold"});
  }
  return *policy;
}

Decoded<std::string> decodeIdentifier(const JsonView& document, std::string_view key) {
  auto identifier = document.get<std::string>(key);
  if (identifier && !WorkingSessionEngine::isValidIdentifier(*identifier)) {
    return std::unexpected(DecodeError{std::string(key), "expected 1 to 128 letters, digits or _.:-"});
  }
  return identifier;
}

}  // namespace

Decoded<std::vector<WorkingSessionEvent>> decodeWorkingSessionEvents(const JsonView& events) {
  auto items = events.elements();
  if (!items) return std::unexpected(items.error());
  std::vector<WorkingSessionEvent> decoded;
  decoded.reserve(items->size());
  for (const JsonView& item : *items) {
    auto event = decodeEvent(item);
    if (!event) return std::unexpected(event.error());
    decoded.push_back(std::move(*event));
  }
  return decoded;
}

Decoded<WorkingSessionReplay> decodeWorkingSessionReplay(std::string_view text) {
  auto parsed = parseJson(text);
  if (!parsed) return std::unexpected(parsed.error());
  const JsonView document(*parsed);
  if (auto keys = document.requireOnlyKeys({"rules", "policy", "sessionID", "deviceID", "events"}); !keys) {
    return std::unexpected(keys.error());
  }
  auto policy = decodePolicy(document);
  if (!policy) return std::unexpected(policy.error());
  auto sessionID = decodeIdentifier(document, "sessionID");
  if (!sessionID) return std::unexpected(sessionID.error());
  auto deviceID = decodeIdentifier(document, "deviceID");
  if (!deviceID) return std::unexpected(deviceID.error());
  auto events = document.member("events");
  if (!events) return std::unexpected(events.error());
  auto decodedEvents = decodeWorkingSessionEvents(*events);
  if (!decodedEvents) return std::unexpected(decodedEvents.error());
  auto engine = WorkingSessionEngine::make(std::move(*sessionID), std::move(*deviceID), std::move(*policy));
  if (!engine) return std::unexpected(DecodeError{"policy", "the session engine refuses this policy"});
  return WorkingSessionReplay{std::move(*engine), std::move(*decodedEvents)};
}

}  // namespace kovi
