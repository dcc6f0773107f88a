#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/attest/AppAttestAssertion.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// Moving the evidence writer of one kovi from a key this device replaced to
// its current key: the plan names the kovi, the new key and the writer
// generation the service must still hold.
struct V6WriterTransferPlan {
  std::string reference;
  std::string requestId;
  // The service's identifier of the key that becomes the writer.
  std::string deviceKeyId;
  std::int64_t expectedEpoch = 0;
  std::string challengeId;
  std::string challenge;
  std::optional<std::string> policyId;
  bool operator==(const V6WriterTransferPlan&) const = default;

  // The client data the current key asserts: SHA-256 of the domain text
  // "kovi.v6.writer-transfer.v1", a line feed, then the plan's canonical JSON.
  Sha256Digest clientDataHash() const;
};

struct V6WriterTransferRequest {
  V6WriterTransferPlan plan;
  AppAttestAssertion assertion;
  bool operator==(const V6WriterTransferRequest&) const = default;
};

struct V6WriterTransferReceipt {
  std::string requestId;
  std::string reference;
  std::string deviceKeyId;
  std::int64_t writerEpoch = 0;
  UnixMillis acceptedAt = 0;
  bool operator==(const V6WriterTransferReceipt&) const = default;
};

inline constexpr std::string_view kWriterTransferDomain = "kovi.v6.writer-transfer.v1";

template <>
struct JsonRecordFields<V6WriterTransferPlan> : StrictJsonRecord {
  using P = V6WriterTransferPlan;
  static constexpr auto fields = std::tuple{
      field("reference", &P::reference),     field("requestId", &P::requestId), field("deviceKeyId", &P::deviceKeyId),
      field("expectedEpoch", &P::expectedEpoch), field("challengeId", &P::challengeId),
      field("challenge", &P::challenge),     field("policyId", &P::policyId)};
};

template <>
struct JsonRecordFields<V6WriterTransferRequest> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("plan", &V6WriterTransferRequest::plan),
                                            field("assertion", &V6WriterTransferRequest::assertion)};
};

// A service answer: a newer service may add keys.
template <>
struct JsonRecordFields<V6WriterTransferReceipt> : LenientJsonRecord {
  using R = V6WriterTransferReceipt;
  static constexpr auto fields = std::tuple{
      field("requestId", &R::requestId), field("reference", &R::reference), field("deviceKeyId", &R::deviceKeyId),
      field("writerEpoch", &R::writerEpoch), field("acceptedAt", &R::acceptedAt)};
};

}  // namespace kovi
