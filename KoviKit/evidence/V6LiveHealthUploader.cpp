#include "KoviKit/evidence/V6LiveHealthUploader.h"

namespace kovi {

V6LiveHealthUploader::V6LiveHealthUploader(Dependencies dependencies) : dependencies_(std::move(dependencies)) {}

void V6LiveHealthUploader::adoptScope(const V6LiveHealthUploadScope& scope) {
  if (state_.scope == scope) return;
  state_ = State{};
  state_.scope = scope;
}

std::expected<void, V6EvidenceSubmissionError> V6LiveHealthUploader::scan(Pass& pass, UnixMillis now) {
  if (state_.scanFinishedAt) {
    if (now - *state_.scanFinishedAt < kRescanInterval) return {};
    state_.scanFinishedAt.reset();
    state_.visitedCursors.clear();
    state_.cursor.reset();
  }
  for (int page = 0; page < kPagesPerPass; ++page) {
    auto listing = dependencies_.api.walkingKovis(state_.cursor, kPageLimit);
    if (!listing) return std::unexpected(V6EvidenceSubmissionError::fromService(listing.error()));
    for (const auto& kovi : listing->kovis) state_.wanted.insert(kovi.reference);
    const auto& next = listing->nextCursor;
    if (next && state_.visitedCursors.contains(*next)) pass.cursorLoop = true;
    if (!next || pass.cursorLoop) {
      state_.scanFinishedAt = now;
      state_.cursor.reset();
      return {};
    }
    state_.visitedCursors.insert(*next);
    state_.cursor = *next;
  }
  return {};
}

std::expected<V6LiveHealthUploader::Pass, V6EvidenceSubmissionError> V6LiveHealthUploader::runPass(
    const AppAttestDeviceKey& key) {
  Pass pass;
  const auto scope = dependencies_.currentScope();
  adoptScope(scope);
  const UnixMillis now = dependencies_.clock();
  state_.requestID = dependencies_.newRequestId();
  // Whatever stops the pass, no pass stays marked as under way.
  struct EndOfPass {
    std::optional<std::string>& requestID;
    ~EndOfPass() { requestID.reset(); }
  } endOfPass{state_.requestID};

  const auto scopeMoved = [&] {
    const auto current = dependencies_.currentScope();
    if (current == scope) return false;
    adoptScope(current);
    pass.scopeChanged = true;
    return true;
  };

  if (auto scanned = scan(pass, now); !scanned) return std::unexpected(scanned.error());
  const std::set<std::string> wanted = state_.wanted;
  for (const std::string& reference : wanted) {
    if (scopeMoved()) return pass;
    if (const auto posted = state_.postedAt.find(reference);
        posted != state_.postedAt.end() && now - posted->second < kPostInterval) {
      pass.throttled.push_back(reference);
      continue;
    }
    auto answer = dependencies_.api.walkingContext(reference);
    if (!answer) {
      auto error = V6EvidenceSubmissionError::fromService(answer.error());
      if (error.failure == WalkingEvidenceFailure::transient) return std::unexpected(std::move(error));
      pass.failed.push_back({reference, std::move(error)});
      continue;
    }
    if (now > answer->context.evidenceClosesAt) {
      // Closed: nothing sent now can count.
      state_.wanted.erase(reference);
      state_.kovis.erase(reference);
      state_.windows.erase(reference);
      continue;
    }
    state_.windows[reference] = answer->context.windows;
    state_.kovis[reference] = answer->context;
    const auto reads = dependencies_.read(state_.windows[reference], now);
    if (scopeMoved()) return pass;
    // The context just fetched is the one the submission is built on.
    auto outcome = dependencies_.submitter.submit(key, scope.ownerID, reference, std::move(*answer), reads, now);
    if (!outcome) {
      if (outcome.error().failure == WalkingEvidenceFailure::transient) return std::unexpected(outcome.error());
      pass.failed.push_back({reference, std::move(outcome.error())});
      continue;
    }
    state_.postedAt[reference] = now;
    state_.wanted.erase(reference);
    pass.posted.push_back({reference, std::move(*outcome)});
  }
  return pass;
}

}  // namespace kovi
