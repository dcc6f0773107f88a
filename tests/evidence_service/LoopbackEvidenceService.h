#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingKoviRules.h"
#include "tests/support/LoopbackServer.h"

namespace kovi::testing {

// The walking evidence service as the device meets it, on 127.0.0.1. It does
// what the real one does to every request, independently of the client's own
// encoders: registrations are checked against their challenge and attestation
// signature; envelopes are rebuilt from the received fields in canonical
// order and hashed; assertions are verified with the registered public key,
// counters must rise; the payload hash is recomputed from the entries as
// received; writer key, writer epoch, rules hash and expected revisions must
// match; a repeated requestId gets the stored receipt. Knobs make it lose an
// answer after doing the work, hold a submission until the test lets go, or
// move a day's revision behind the device's back.
class LoopbackEvidenceService {
 public:
  struct Day {
    std::int64_t revision = 0;
    std::string payloadHash;
  };

  // One walking kovi with three anchored days starting at `start`.
  LoopbackEvidenceService(std::string reference, WalkingKoviRules rules, UnixMillis start);

  std::string origin() const { return server_.origin(); }

  // State, for assertions.
  std::int64_t writerEpoch() const;
  std::optional<std::string> writerDeviceKeyId() const;
  Day day(int index) const;
  // Every requestId a submission arrived with, repeats included, in order.
  std::vector<std::string> submittedRequestIds() const;
  int acceptedSubmissions() const;

  // Knobs.
  // Accepts the next submission and then answers 503 instead of the receipt.
  void loseNextAnswer() { loseNextAnswer_ = true; }
  void bumpRevisionBeforeNextSubmission(int day) { bumpDay_ = day; }
  void limitPayloadBytes(std::size_t limit) { payloadLimit_ = limit; }
  // The next submission waits at the door until `releaseHeld` and is then
  // dropped unanswered, as if the device had died before it was sent.
  void holdNextSubmission() { holdNext_ = true; }
  bool waitUntilHeld(std::chrono::milliseconds limit);
  void releaseHeld() { heldGate_.open(); }
  // The kovi list never ends: its cursors run "a", "b", "a", … after the first page.
  void loopKoviCursors() { loopCursors_ = true; }
  int koviListRequests() const { return koviListRequests_; }

 private:
  struct Key {
    std::vector<std::uint8_t> publicKey;
    std::string appIdentity;
    std::int64_t lastCounter = -1;
  };
  struct Challenge {
    std::string challenge;
    std::string purpose;
    std::int64_t expiresAt = 0;
    bool used = false;
  };
  struct Stored {
    std::string bodyHash;
    std::string answer;
  };
  struct Answer {
    int status = 200;
    std::string body;
  };

  Answer handle(const std::string& body);
  Answer createChallenge(const nlohmann::ordered_json& request);
  Answer registerKey(const nlohmann::ordered_json& request);
  Answer context(const nlohmann::ordered_json& request);
  Answer kovis(const nlohmann::ordered_json& request);
  Answer submit(const nlohmann::ordered_json& request, const std::string& body);
  Answer transfer(const nlohmann::ordered_json& request);
  // The challenge named, checked for purpose, expiry and reuse; marks it used.
  std::optional<std::string> consumeChallenge(const std::string& challengeId, const std::string& challenge,
                                              const std::string& purpose);
  // Verifies an assertion by `keyId` over `clientData` and advances its counter.
  std::optional<std::string> checkAssertion(const std::string& keyId, const std::string& clientData,
                                            const nlohmann::ordered_json& assertion);

  mutable std::mutex mutex_;
  std::string reference_;
  WalkingKoviRules rules_;
  UnixMillis start_;
  std::map<std::string, Key> keys_;
  std::map<std::string, Challenge> challenges_;
  std::map<std::string, Stored> receipts_;
  std::map<int, Day> days_;
  std::int64_t writerEpoch_ = 1;
  std::optional<std::string> writer_;
  std::vector<std::string> submittedRequestIds_;
  int acceptedSubmissions_ = 0;
  int nextId_ = 1;

  std::atomic<bool> loseNextAnswer_ = false;
  std::atomic<int> bumpDay_ = -1;
  std::atomic<std::size_t> payloadLimit_ = 1 << 20;
  std::atomic<bool> holdNext_ = false;
  std::atomic<bool> loopCursors_ = false;
  std::atomic<int> koviListRequests_ = 0;
  Gate heldGate_;
  Gate arrivedGate_;

  LoopbackServer server_;
};

}  // namespace kovi::testing
