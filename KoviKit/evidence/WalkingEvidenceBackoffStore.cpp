#include "KoviKit/evidence/WalkingEvidenceBackoffStore.h"

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace {

// A backoff is two numbers; anything far larger is not one.
constexpr std::size_t kFileLimit = 1024;

}  // namespace

WalkingEvidenceBackoffStore::WalkingEvidenceBackoffStore(const std::filesystem::path& dataDirectory)
    : directory_(dataDirectory / "Kovi" / "WalkingEvidenceBackoff") {}

std::filesystem::path WalkingEvidenceBackoffStore::pathFor(std::string_view ownerID) const {
  return directory_ / (fileNameHash(ownerID) + ".json");
}

std::expected<WalkingEvidenceBackoff, std::string> WalkingEvidenceBackoffStore::load(std::string_view ownerID) const {
  const auto path = pathFor(ownerID);
  auto text = readFileLimited(path, kFileLimit);
  if (!text) {
    if (text.error().failure == FileReadFailure::missing) return WalkingEvidenceBackoff{};
    return std::unexpected("cannot read " + path.string() + ": " + text.error().detail);
  }
  auto backoff = decodeJsonText<WalkingEvidenceBackoff>(*text);
  if (!backoff) return std::unexpected(path.string() + " is corrupt: " + backoff.error().message());
  return *backoff;
}

std::expected<WalkingEvidenceBackoff, std::string> WalkingEvidenceBackoffStore::recordFailure(
    std::string_view ownerID, WalkingEvidenceFailure failure, UnixMillis now) {
  auto stored = load(ownerID);
  if (!stored || failure != WalkingEvidenceFailure::transient) return stored;
  const WalkingEvidenceBackoff next = stored->afterFailure(failure, now);
  if (auto written = writeFileAtomically(pathFor(ownerID), encodeRecord(next).dump()); !written) {
    return std::unexpected(written.error());
  }
  return next;
}

std::expected<void, std::string> WalkingEvidenceBackoffStore::clear(std::string_view ownerID) {
  const auto path = pathFor(ownerID);
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) return std::unexpected("cannot remove " + path.string() + ": " + error.message());
  return {};
}

}  // namespace kovi
