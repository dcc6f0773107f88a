#pragma once

// The bodies the working service answers with: each wraps the records of
// one answer so the service can add beside them.

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingFinalization.h"
#include "KoviKit/working/WorkingRemoteCohort.h"
#include "KoviKit/working/WorkingRemoteDevice.h"
#include "KoviKit/working/WorkingRemoteResult.h"
#include "KoviKit/working/WorkingRemoteRoom.h"
#include "KoviKit/working/WorkingRemoteSession.h"
#include "KoviKit/working/WorkingWireJson.h"

namespace kovi {

struct WorkingHomeResponse {
  std::vector<WorkingRemoteRoom> rooms;
  std::vector<WorkingRemoteSession> sessions;
  std::optional<bool> reviewerAvailable;
  bool operator==(const WorkingHomeResponse&) const = default;
};

struct WorkingDevicesResponse {
  std::vector<WorkingRemoteDevice> devices;
  bool operator==(const WorkingDevicesResponse&) const = default;
};

struct WorkingRoomResponse {
  WorkingRemoteRoom room;
  bool operator==(const WorkingRoomResponse&) const = default;
};

struct WorkingDeviceResponse {
  WorkingRemoteDevice device;
  bool operator==(const WorkingDeviceResponse&) const = default;
};

struct WorkingSessionResponse {
  WorkingRemoteSession session;
  bool operator==(const WorkingSessionResponse&) const = default;
};

struct WorkingCohortResponse {
  WorkingRemoteCohort cohort;
  std::optional<WorkingRemoteSession> session;
  bool operator==(const WorkingCohortResponse&) const = default;
};

struct WorkingFinalizationResponse {
  WorkingFinalization finalization;
  bool operator==(const WorkingFinalizationResponse&) const = default;
};

// One room in full: its result once judged, its sessions, who is present
// and, where the member may see them, names, break warnings and overtime.
struct WorkingDetailResponse {
  WorkingRemoteRoom room;
  std::optional<WorkingRemoteResult> result;
  std::vector<WorkingRemoteSession> sessions;
  std::vector<WorkingOpaqueJson> presence;
  std::optional<std::map<std::string, std::string>> memberNames;  // account id → name
  std::optional<WorkingOpaqueJson> ownBreakWarnings;
  std::optional<WorkingOpaqueJson> ownOvertime;
  bool operator==(const WorkingDetailResponse&) const = default;
};

template <>
struct JsonRecordFields<WorkingHomeResponse> : LenientJsonRecord {
  using R = WorkingHomeResponse;
  static constexpr auto fields = std::tuple{field("rooms", &R::rooms), field("sessions", &R::sessions),
                                            field("reviewerAvailable", &R::reviewerAvailable)};
};

template <>
struct JsonRecordFields<WorkingDevicesResponse> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("devices", &WorkingDevicesResponse::devices)};
};

template <>
struct JsonRecordFields<WorkingRoomResponse> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("room", &WorkingRoomResponse::room)};
};

template <>
struct JsonRecordFields<WorkingDeviceResponse> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("device", &WorkingDeviceResponse::device)};
};

template <>
struct JsonRecordFields<WorkingSessionResponse> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("session", &WorkingSessionResponse::session)};
};

template <>
struct JsonRecordFields<WorkingCohortResponse> : LenientJsonRecord {
  static constexpr auto fields =
      std::tuple{field("cohort", &WorkingCohortResponse::cohort), field("session", &WorkingCohortResponse::session)};
};

template <>
struct JsonRecordFields<WorkingFinalizationResponse> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("finalization", &WorkingFinalizationResponse::finalization)};
};

template <>
struct JsonRecordFields<WorkingDetailResponse> : LenientJsonRecord {
  using R = WorkingDetailResponse;
  static constexpr auto fields =
      std::tuple{field("room", &R::room),           field("result", &R::result),
                 field("sessions", &R::sessions),   field("presence", &R::presence),
                 field("memberNames", &R::memberNames), field("ownBreakWarnings", &R::ownBreakWarnings),
                 field("ownOvertime", &R::ownOvertime)};
};

}  // namespace kovi
