// Offline lease envelopes come from the network: any bytes must decode to an
// envelope or a reason, never crash, trap or read past a bound. An envelope
// that decodes must survive encoding unchanged, and verifying it against a
// key set must end in a lease or one of the offline errors.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "KoviKit/working/WorkingOfflineLeaseVerification.h"

namespace {

// A P-256 public key nobody holds the private half of: no input can carry a
// valid signature under it, so verification must never accept one.
constexpr const char* kServerKeys = R"({"server-1":"MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAEM1Jd7G/5mYwEM1QyV2Pt0XZLwJ2kbUGX7oN5utQ3423u7TP0vIe8b1kjSVcAuT0SUBRETRB9KO7/2rKaDryDlw=="})";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kovi;
  static const WorkingOfflineServerKeys keys = decodeWorkingOfflineServerKeys(kServerKeys).value();
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  const auto envelope = decodeWorkingOfflineEnvelope(text);
  if (envelope) {
    const auto again = decodeWorkingOfflineEnvelope(encodeRecord(*envelope).dump());
    if (!again || *again != *envelope) std::abort();
    if (workingOfflineLeaseSignedText(envelope->lease).empty()) std::abort();
  } else if (envelope.error().reason.empty()) {
    std::abort();
  }

  WorkingOfflineBinding binding;
  if (envelope) {
    const WorkingOfflineLease& lease = envelope->lease;
    binding = {lease.accountID, lease.roomID, lease.sessionID, lease.deviceID,
               lease.epoch,     lease.rulesHash, lease.deviceKeyHash, lease.anchor};
  }
  const auto verified = verifyWorkingOfflineEnvelope(text, keys, binding, 0);
  if (verified) std::abort();
  if (!envelope && verified.error().kind != WorkingOfflineError::Kind::invalidEnvelope) std::abort();
  decodeWorkingOfflineServerKeys(text);
  return 0;
}
