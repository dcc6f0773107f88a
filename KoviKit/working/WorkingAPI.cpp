#include "KoviKit/working/WorkingAPI.h"

#include <tuple>

namespace kovi {
namespace working_api {

// The upload of a signed acknowledgement.
struct SignedAcknowledgement {
  WorkingCommandAcknowledgement acknowledgement;
  std::string signature;
};

}  // namespace working_api

template <>
struct JsonRecordFields<working_api::SignedAcknowledgement> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("acknowledgement", &working_api::SignedAcknowledgement::acknowledgement),
                                            field("signature", &working_api::SignedAcknowledgement::signature)};
};

namespace {

// Percent-encodes every byte outside the unreserved set, so an identifier is
// always exactly one path segment.
std::string pathSegment(std::string_view identifier) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(identifier.size());
  for (const char c : identifier) {
    const auto byte = static_cast<unsigned char>(c);
    const bool unreserved = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                            (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_' || byte == '~';
    if (unreserved) {
      encoded += c;
    } else {
      encoded += '%';
      encoded += digits[byte >> 4];
      encoded += digits[byte & 0x0f];
    }
  }
  return encoded;
}

template <class Record>
std::string body(const Record& record) {
  return encodeRecord(record).dump();
}

}  // namespace

WorkingAPI::WorkingAPI(const NativeServiceOrigin& origin, NativeClientOptions options)
    : NativeServiceClient(origin, kWorkingErrorTable, std::move(options)) {}

WorkingAPI::Result<WorkingHomeResponse> WorkingAPI::home(Token token) {
  return send<WorkingHomeResponse>("home", std::nullopt, std::move(token));
}

WorkingAPI::Result<WorkingDevicesResponse> WorkingAPI::devices(Token token) {
  return send<WorkingDevicesResponse>("devices", std::nullopt, std::move(token));
}

WorkingAPI::Result<WorkingDeviceResponse> WorkingAPI::registerDevice(
    const WorkingDeviceWire::Registration& registration, Token token) {
  return send<WorkingDeviceResponse>("devices", body(registration), std::move(token));
}

WorkingAPI::Result<WorkingDeviceResponse> WorkingAPI::reportReadiness(const WorkingDeviceWire::Purposed& readiness,
                                                                      Token token) {
  return send<WorkingDeviceResponse>("devices/readiness", body(readiness), std::move(token));
}

WorkingAPI::Result<WorkingDetailResponse> WorkingAPI::room(std::string_view roomID, Token token) {
  return send<WorkingDetailResponse>("rooms/" + pathSegment(roomID), std::nullopt, std::move(token));
}

WorkingAPI::Result<WorkingCohortResponse> WorkingAPI::prepareCohort(std::string_view roomID, Token token) {
  return send<WorkingCohortResponse>("rooms/" + pathSegment(roomID) + "/cohort", "{}", std::move(token));
}

WorkingAPI::Result<WorkingFinalizationResponse> WorkingAPI::finalization(std::string_view roomID, Token token) {
  return send<WorkingFinalizationResponse>("rooms/" + pathSegment(roomID) + "/finalization", std::nullopt,
                                           std::move(token));
}

WorkingAPI::Result<WorkingSessionResponse> WorkingAPI::session(std::string_view sessionID, Token token) {
  return send<WorkingSessionResponse>("sessions/" + pathSegment(sessionID), std::nullopt, std::move(token));
}

WorkingAPI::Result<WorkingSessionResponse> WorkingAPI::submitCheckpoint(const WorkingSignedCheckpoint& checkpoint,
                                                                        Token token) {
  return send<WorkingSessionResponse>("sessions/" + pathSegment(checkpoint.checkpoint.sessionID) + "/checkpoints",
                                      body(checkpoint), std::move(token));
}

WorkingAPI::Result<WorkingSessionResponse> WorkingAPI::acknowledgeCommand(
    const WorkingCommandAcknowledgement& acknowledgement, std::string_view signature, Token token) {
  const working_api::SignedAcknowledgement upload{acknowledgement, std::string(signature)};
  return send<WorkingSessionResponse>("sessions/" + pathSegment(acknowledgement.sessionID) + "/acknowledgements",
                                      body(upload), std::move(token));
}

}  // namespace kovi
