#include "KoviKit/working/WorkingWireRecords.h"

#include <algorithm>
#include <array>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingDeviceWire.h"
#include "KoviKit/working/WorkingResponses.h"

namespace kovi {
namespace {

template <class Record>
std::expected<nlohmann::ordered_json, DecodeError> reencode(std::string_view text) {
  auto record = decodeJsonText<Record>(text);
  if (!record) return std::unexpected(record.error());
  return encodeRecord(*record);
}

constexpr auto kTypes = std::to_array<WorkingWireRecordType>({
    {"room", reencode<WorkingRemoteRoom>},
    {"device", reencode<WorkingRemoteDevice>},
    {"registration", reencode<WorkingDeviceWire::Registration>},
    {"readiness", reencode<WorkingDeviceWire::Readiness>},
    {"purposed", reencode<WorkingDeviceWire::Purposed>},
    {"session", reencode<WorkingRemoteSession>},
    {"command", reencode<WorkingRemoteCommand>},
    {"acknowledgement", reencode<WorkingCommandAcknowledgement>},
    {"cohort", reencode<WorkingRemoteCohort>},
    {"result", reencode<WorkingRemoteResult>},
    {"finalization", reencode<WorkingFinalization>},
    {"home-response", reencode<WorkingHomeResponse>},
    {"devices-response", reencode<WorkingDevicesResponse>},
    {"room-response", reencode<WorkingRoomResponse>},
    {"device-response", reencode<WorkingDeviceResponse>},
    {"session-response", reencode<WorkingSessionResponse>},
    {"cohort-response", reencode<WorkingCohortResponse>},
    {"finalization-response", reencode<WorkingFinalizationResponse>},
    {"detail-response", reencode<WorkingDetailResponse>},
});

}  // namespace

std::span<const WorkingWireRecordType> workingWireRecordTypes() { return kTypes; }

const WorkingWireRecordType* findWorkingWireRecordType(std::string_view name) {
  const auto found = std::ranges::find(kTypes, name, &WorkingWireRecordType::name);
  return found == kTypes.end() ? nullptr : &*found;
}

}  // namespace kovi
