#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/attest/AppAttestChallenge.h"
#include "KoviKit/attest/DeviceKeyRegistration.h"
#include "KoviKit/evidence/V6WalkingContext.h"
#include "KoviKit/evidence/V6WalkingReceipt.h"
#include "KoviKit/evidence/V6WalkingSubmission.h"
#include "KoviKit/evidence/V6WriterTransfer.h"
#include "KoviKit/native/NativeServiceClient.h"

namespace kovi {

// Where a kovi lives on chain; the envelope carries these fields.
struct V6WalkingChain {
  std::int64_t chainId = 0;
  std::string registryAddress;
  std::string koviId;
  bool operator==(const V6WalkingChain&) const = default;
};

// The answer to a context request: the member's context and the kovi's chain.
struct V6WalkingContextAnswer {
  V6WalkingContext context;
  V6WalkingChain chain;
  bool operator==(const V6WalkingContextAnswer&) const = default;
};

struct V6WalkingKoviListing {
  struct Kovi {
    std::string reference;
    bool operator==(const Kovi&) const = default;
  };
  std::vector<Kovi> kovis;
  std::optional<std::string> nextCursor;
  bool operator==(const V6WalkingKoviListing&) const = default;
};

// The client of "/api/native/v6/evidence": every action is one POST of JSON
// with an "action" key to the endpoint itself, through the shared transport
// (bearer token, status and content checks, body limit, the area's codes).
class V6WalkingEvidenceAPI {
 public:
  V6WalkingEvidenceAPI(const NativeServiceOrigin& origin, std::optional<std::string> token,
                       NativeClientOptions options = {});

  // A challenge for `purpose`; `deviceKeyId` is the service's key identifier,
  // none while a key is being registered.
  std::expected<AppAttestChallenge, NativeAccountError> createAttestationChallenge(
      std::string_view requestId, const std::optional<std::string>& deviceKeyId, AppAttestPurpose purpose);
  // The service's identifier of the registered key.
  std::expected<std::string, NativeAccountError> registerDeviceKey(const DeviceKeyRegistration& registration);
  std::expected<V6WalkingContextAnswer, NativeAccountError> walkingContext(std::string_view reference);
  std::expected<V6WalkingKoviListing, NativeAccountError> walkingKovis(const std::optional<std::string>& cursor,
                                                                       int limit);
  std::expected<V6WalkingReceipt, NativeAccountError> submit(const V6WalkingSubmission& submission);
  std::expected<V6WriterTransferReceipt, NativeAccountError> transferEvidenceWriter(
      const V6WriterTransferRequest& request);

  const NativeServiceClient& client() const { return client_; }

 private:
  NativeServiceClient client_;
  std::optional<std::string> token_;
};

template <>
struct JsonRecordFields<V6WalkingChain> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("chainId", &V6WalkingChain::chainId),
                                            field("registryAddress", &V6WalkingChain::registryAddress),
                                            field("koviId", &V6WalkingChain::koviId)};
};

template <>
struct JsonRecordFields<V6WalkingContextAnswer> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("context", &V6WalkingContextAnswer::context),
                                            field("chain", &V6WalkingContextAnswer::chain)};
};

template <>
struct JsonRecordFields<V6WalkingKoviListing::Kovi> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("reference", &V6WalkingKoviListing::Kovi::reference)};
};

template <>
struct JsonRecordFields<V6WalkingKoviListing> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("kovis", &V6WalkingKoviListing::kovis),
                                            field("nextCursor", &V6WalkingKoviListing::nextCursor)};
};

}  // namespace kovi
