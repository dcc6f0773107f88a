#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "KoviKit/attest/PasskeyService.h"
#include "KoviKit/attest/SoftwarePasskeyService.h"
#include "KoviKit/wallet/V6WalletOperation.h"
#include "tests/support/LoopbackServer.h"

namespace kovi::testing {

// How the test's chain treats operations.
struct WalletChainScript {
  // The status each read of a submitted operation finds, in turn; the last
  // one stays. Empty: the operation stays submitted.
  std::vector<V6WalletOperationStatus> afterSubmission;
  // Seconds from preparation to expiry.
  double lifetimeSeconds = 900;
  // The first submission is carried out but its answer never arrives.
  bool loseSubmissionAnswer = false;
};

// What the service has seen so far.
struct WalletServiceRecord {
  int contributions = 0;  // operations that reached the chain (one per request id)
  int approvals = 0;      // approvals whose assertion verified
  std::vector<std::string> actions;  // the actions received, in order
  std::string lastRefusal;           // the error code of the last refusal, if any
};

// The wallet service as the tests need it, on 127.0.0.1: it prepares
// operations, verifies each approval as a WebAuthn server does (registered
// credential and public key, relying-party hash, challenge = base64url of the
// user operation hash, origin, and the signature over authenticatorData ‖
// SHA-256(clientDataJSON); flags and counter are the passkey's own tests'),
// counts one contribution per operation however often it is submitted, and
// answers with the service's error codes.
class LoopbackWalletService {
 public:
  LoopbackWalletService(PasskeyCredential registered, PasskeyRelyingParty relyingParty, WalletChainScript script,
                        std::function<double()> clock);

  NativeServiceOrigin origin() const { return server_.serviceOrigin(); }

  WalletServiceRecord record() const;

 private:
  struct Entry {
    V6WalletOperation operation;
    std::size_t reads = 0;
    bool contributed = false;
  };

  void handle(const httplib::Request& request, httplib::Response& response);
  std::string verifyAssertion(const V6WalletOperation& operation, const std::map<std::string, std::string>& assertion);

  PasskeyCredential registered_;
  PasskeyRelyingParty relyingParty_;
  WalletChainScript script_;
  std::function<double()> clock_;

  mutable std::mutex mutex_;
  std::map<std::string, Entry> operations_;
  WalletServiceRecord record_;
  bool answerLost_ = false;

  LoopbackServer server_;
};

}  // namespace kovi::testing
