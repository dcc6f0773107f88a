#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/native/NativeServiceClient.h"
#include "KoviKit/working/WorkingCommandAcknowledgement.h"
#include "KoviKit/working/WorkingDeviceWire.h"
#include "KoviKit/working/WorkingErrorTable.h"
#include "KoviKit/working/WorkingResponses.h"
#include "KoviKit/working/WorkingSignedCheckpoint.h"

namespace kovi {

// The working area's client, rooted at origin + "/api/native/working".
// Identifiers in paths are percent-encoded. Failures are the transport's
// `NativeAccountError`s, worded from `kWorkingErrorTable`.
//
//   GET  home                                  → WorkingHomeResponse
//   GET  devices                               → WorkingDevicesResponse
//   POST devices            Registration       → WorkingDeviceResponse
//   POST devices/readiness  Purposed           → WorkingDeviceResponse
//   GET  rooms/{room}                          → WorkingDetailResponse
//   POST rooms/{room}/cohort {}                → WorkingCohortResponse
//   GET  rooms/{room}/finalization             → WorkingFinalizationResponse
//   GET  sessions/{session}                    → WorkingSessionResponse
//   POST sessions/{session}/checkpoints        {checkpoint, signature} → WorkingSessionResponse
//   POST sessions/{session}/acknowledgements   {acknowledgement, signature} → WorkingSessionResponse
class WorkingAPI : public NativeServiceClient {
 public:
  template <class T>
  using Result = std::expected<T, NativeAccountError>;
  using Token = std::optional<std::string>;

  explicit WorkingAPI(const NativeServiceOrigin& origin, NativeClientOptions options = {});

  Result<WorkingHomeResponse> home(Token token);
  Result<WorkingDevicesResponse> devices(Token token);
  Result<WorkingDeviceResponse> registerDevice(const WorkingDeviceWire::Registration& registration, Token token);
  // A signed readiness report in its purposed envelope.
  Result<WorkingDeviceResponse> reportReadiness(const WorkingDeviceWire::Purposed& readiness, Token token);
  Result<WorkingDetailResponse> room(std::string_view roomID, Token token);
  // Asks for a group start of the room, or joins the one in preparation.
  Result<WorkingCohortResponse> prepareCohort(std::string_view roomID, Token token);
  Result<WorkingFinalizationResponse> finalization(std::string_view roomID, Token token);
  Result<WorkingSessionResponse> session(std::string_view sessionID, Token token);
  // Uploads one signed checkpoint of the session; the answer carries the
  // session with its chain head and totals as the service accepted them.
  Result<WorkingSessionResponse> submitCheckpoint(const WorkingSignedCheckpoint& checkpoint, Token token);
  Result<WorkingSessionResponse> acknowledgeCommand(const WorkingCommandAcknowledgement& acknowledgement,
                                                    std::string_view signature, Token token);
};

}  // namespace kovi
