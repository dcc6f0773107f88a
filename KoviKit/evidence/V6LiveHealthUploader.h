#pragma once

#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/evidence/V6WalkingEvidenceSubmitter.h"

namespace kovi {

// Whose uploads the uploader is doing, and under which generations of the
// session, the Health sharing consent and the app's visibility. Work begun
// under one scope is never continued under another.
struct V6LiveHealthUploadScope {
  std::string ownerID;
  std::int64_t sessionGeneration = 0;
  std::int64_t consentGeneration = 0;
  std::int64_t visibilityGeneration = 0;
  bool operator==(const V6LiveHealthUploadScope&) const = default;
};

// The automatic uploader: pages through the member's walking kovis, reads the
// days of each one it still wants, and submits them through the submitter,
// posting each kovi at most once per kPostInterval.
class V6LiveHealthUploader {
 public:
  // Kovis asked for per page, and pages per pass: a service that never ends
  // its list costs a bounded pass, and the next pass continues at the cursor.
  static constexpr int kPageLimit = 50;
  static constexpr int kPagesPerPass = 20;
  // A kovi is posted again only after the next 15-minute bucket has closed.
  static constexpr UnixMillis kPostInterval = 15 * 60 * 1000;
  // A finished list is fetched again after this long, sooner than a repost,
  // so a kovi joined meanwhile is not left waiting a whole post interval.
  static constexpr UnixMillis kRescanInterval = 5 * 60 * 1000;

  struct State {
    std::optional<V6LiveHealthUploadScope> scope;
    // The pass under way, if one is.
    std::optional<std::string> requestID;
    std::map<std::string, V6WalkingContext> kovis;
    std::map<std::string, std::vector<HealthEvidenceDayWindow>> windows;
    std::map<std::string, UnixMillis> postedAt;
    std::optional<std::string> cursor;
    std::set<std::string> visitedCursors;
    std::optional<UnixMillis> scanFinishedAt;
    std::set<std::string> wanted;
    bool operator==(const State&) const = default;
  };

  struct Dependencies {
    V6WalkingEvidenceAPI& api;
    V6WalkingEvidenceSubmitter& submitter;
    // The Health reads of a kovi's days, taken at `cutoff`.
    std::function<std::vector<HealthEvidenceDayRead>(const std::vector<HealthEvidenceDayWindow>&, UnixMillis cutoff)>
        read;
    // The scope as it is now; asked between steps of a pass.
    std::function<V6LiveHealthUploadScope()> currentScope;
    std::function<UnixMillis()> clock;
    std::function<std::string()> newRequestId;
  };

  // What one pass did.
  struct Pass {
    struct Posted {
      std::string reference;
      V6WalkingEvidenceSubmitter::Outcome outcome;
    };
    struct Failed {
      std::string reference;
      V6EvidenceSubmissionError error;
    };
    std::vector<Posted> posted;
    std::vector<Failed> failed;
    // Wanted but posted too recently.
    std::vector<std::string> throttled;
    // The service handed back a cursor it had already given: the list ended there.
    bool cursorLoop = false;
    // The scope changed during the pass: it stopped and everything was dropped.
    bool scopeChanged = false;
  };

  explicit V6LiveHealthUploader(Dependencies dependencies);

  // One pass for `key`. A transient failure (the service or the network)
  // stops the pass and is returned, to count into the backoff; a refusal of
  // one kovi is reported in the pass and the others go on.
  std::expected<Pass, V6EvidenceSubmissionError> runPass(const AppAttestDeviceKey& key);

  const State& state() const { return state_; }

 private:
  // Drops everything learnt under another scope.
  void adoptScope(const V6LiveHealthUploadScope& scope);
  std::expected<void, V6EvidenceSubmissionError> scan(Pass& pass, UnixMillis now);

  Dependencies dependencies_;
  State state_;
};

}  // namespace kovi
