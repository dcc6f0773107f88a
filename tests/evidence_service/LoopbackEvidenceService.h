#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
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
  // What the service holds, for assertions.
  struct State {
    std::int64_t writerEpoch = 1;
    std::optional<std::string> writerDeviceKeyId;
    std::map<int, Day> days;
    // Every requestId a submission arrived with, repeats included, in order.
    std::vector<std::string> submittedRequestIds;
    int acceptedSubmissions = 0;

    Day day(int index) const { return days.contains(index) ? days.at(index) : Day{}; }
  };

  // One walking kovi with three anchored days starting at `start`.
  LoopbackEvidenceService(std::string reference, WalkingKoviRules rules, UnixMillis start);

  std::string origin() const { return server_.origin(); }
  State state() const {
    std::scoped_lock lock(mutex_);
    return state_;
  }

  // Accepts the next submission and then answers 503 instead of the receipt.
  void loseNextAnswer() { loseNextAnswer_ = true; }
  void bumpRevisionBeforeNextSubmission(int day) { bumpDay_ = day; }
  void limitPayloadBytes(std::size_t limit) { payloadLimit_ = limit; }
  // The next submission waits at the door until `releaseHeld` and is then
  // dropped unanswered, as if the device had died before it was sent.
  void holdNextSubmission() { holdNext_ = true; }
  bool waitUntilHeld(std::chrono::milliseconds limit) { return arrivedGate_.waitOpen(limit); }
  void releaseHeld() { heldGate_.open(); }
  // The kovi list never ends: its cursors run "a", "b", "a", … after the first page.
  void loopKoviCursors() { loopCursors_ = true; }
  int koviListRequests() const { return koviListRequests_; }
  int contextRequests() const { return contextRequests_; }

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
  struct Answer {
    int status = 200;
    std::string body;
  };
  using Json = nlohmann::ordered_json;

  Answer handle(const std::string& body);
  Answer createChallenge(const Json& request);
  Answer registerKey(const Json& request);
  Answer context(const Json& request);
  Answer kovis(const Json& request);
  Answer submit(const Json& request, const std::string& body);
  Answer transfer(const Json& request);
  // The challenge named, checked for its text, purpose, expiry and reuse and
  // marked used; the refusal otherwise.
  std::optional<Answer> consumeChallenge(const Json& signedFields, const std::string& purpose);
  // Verifies an assertion by `keyId` over `clientData` and advances its counter.
  std::optional<Answer> checkAssertion(const std::string& keyId, const std::string& clientData, const Json& assertion);

  mutable std::mutex mutex_;
  std::string reference_;
  WalkingKoviRules rules_;
  UnixMillis start_;
  std::map<std::string, Key> keys_;
  std::map<std::string, Challenge> challenges_;
  // Per requestId: the hash of the body it came with and the answer given.
  std::map<std::string, std::pair<std::string, std::string>> receipts_;
  State state_;
  int nextId_ = 1;

  std::atomic<bool> loseNextAnswer_ = false;
  std::atomic<int> bumpDay_ = -1;
  std::atomic<std::size_t> payloadLimit_ = 1 << 20;
  std::atomic<bool> holdNext_ = false;
  std::atomic<bool> loopCursors_ = false;
  std::atomic<int> koviListRequests_ = 0;
  std::atomic<int> contextRequests_ = 0;
  Gate heldGate_;
  Gate arrivedGate_;

  LoopbackServer server_;
};

}  // namespace kovi::testing
