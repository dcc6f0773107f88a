#include "KoviKit/evidence/V6WalkingEvidenceAPI.h"

#include "KoviKit/evidence/WalkingEvidenceError.h"
#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/Trap.h"

namespace kovi {
namespace {

// The one-key wrappers the service answers in.
struct ChallengeAnswer {
  AppAttestChallenge challenge;
};
struct RegistrationAnswer {
  std::string deviceKeyId;
};
struct ReceiptAnswer {
  V6WalkingReceipt receipt;
};
struct TransferAnswer {
  V6WriterTransferReceipt receipt;
};

std::string actionBody(std::string_view action, std::string_view key, const nlohmann::ordered_json& record) {
  CanonicalJsonWriter writer;
  writer.beginObject().key("action").value(action).key(key);
  if (auto written = writeCanonicalJson(writer, record, key); !written) trap(written.error());
  writer.endObject();
  return writer.take();
}

}  // namespace

template <>
struct JsonRecordFields<ChallengeAnswer> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("challenge", &ChallengeAnswer::challenge)};
};
template <>
struct JsonRecordFields<RegistrationAnswer> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("deviceKeyId", &RegistrationAnswer::deviceKeyId)};
};
template <>
struct JsonRecordFields<ReceiptAnswer> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("receipt", &ReceiptAnswer::receipt)};
};
template <>
struct JsonRecordFields<TransferAnswer> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("receipt", &TransferAnswer::receipt)};
};

V6WalkingEvidenceAPI::V6WalkingEvidenceAPI(const NativeServiceOrigin& origin, std::optional<std::string> token,
                                           NativeClientOptions options)
    : client_(origin, v6EvidenceErrorTable(), std::move(options)), token_(std::move(token)) {}

std::expected<AppAttestChallenge, NativeAccountError> V6WalkingEvidenceAPI::createAttestationChallenge(
    std::string_view requestId, const std::optional<std::string>& deviceKeyId, AppAttestPurpose purpose) {
  CanonicalJsonWriter writer;
  writer.beginObject().key("action").value("createAttestationChallenge").key("requestId").value(requestId);
  writer.key("deviceKeyId");
  if (deviceKeyId) {
    writer.value(*deviceKeyId);
  } else {
    writer.null();
  }
  writer.key("purpose").value(enumName(purpose)).endObject();
  auto answer = client_.send<ChallengeAnswer>("", writer.take(), token_);
  if (!answer) return std::unexpected(answer.error());
  return std::move(answer->challenge);
}

std::expected<std::string, NativeAccountError> V6WalkingEvidenceAPI::registerDeviceKey(
    const DeviceKeyRegistration& registration) {
  auto answer =
      client_.send<RegistrationAnswer>("", actionBody("registerDeviceKey", "registration", encodeRecord(registration)),
                                       token_);
  if (!answer) return std::unexpected(answer.error());
  return std::move(answer->deviceKeyId);
}

std::expected<V6WalkingContextAnswer, NativeAccountError> V6WalkingEvidenceAPI::walkingContext(
    std::string_view reference) {
  CanonicalJsonWriter writer;
  writer.beginObject().key("action").value("walkingContext").key("reference").value(reference).endObject();
  return client_.send<V6WalkingContextAnswer>("", writer.take(), token_);
}

std::expected<V6WalkingKoviListing, NativeAccountError> V6WalkingEvidenceAPI::walkingKovis(
    const std::optional<std::string>& cursor, int limit) {
  CanonicalJsonWriter writer;
  writer.beginObject().key("action").value("walkingKovis").key("cursor");
  if (cursor) {
    writer.value(*cursor);
  } else {
    writer.null();
  }
  writer.key("limit").value(limit).endObject();
  return client_.send<V6WalkingKoviListing>("", writer.take(), token_);
}

std::expected<V6WalkingReceipt, NativeAccountError> V6WalkingEvidenceAPI::submit(
    const V6WalkingSubmission& submission) {
  auto answer = client_.send<ReceiptAnswer>("", submission.json(), token_);
  if (!answer) return std::unexpected(answer.error());
  return std::move(answer->receipt);
}

std::expected<V6WriterTransferReceipt, NativeAccountError> V6WalkingEvidenceAPI::transferEvidenceWriter(
    const V6WriterTransferRequest& request) {
  auto answer =
      client_.send<TransferAnswer>("", actionBody("transferEvidenceWriter", "request", encodeRecord(request)), token_);
  if (!answer) return std::unexpected(answer.error());
  return std::move(answer->receipt);
}

}  // namespace kovi
