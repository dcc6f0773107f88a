#include "KoviKit/evidence/V6EvidencePendingStore.h"

#include <algorithm>

#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/foundation/Trap.h"

namespace kovi {
namespace {

using Store = V6EvidencePendingStore;

std::string ownerPrefix(std::string_view ownerID) { return fileNameHash(ownerID) + "-"; }

Store::Error storeError(Store::Failure failure, std::string detail) { return {failure, std::move(detail)}; }

template <class Payload>
Decoded<Payload> decodePayload(const JsonView& operation, std::string_view kind) {
  auto wrapper = operation.member(kind);
  if (!wrapper) return std::unexpected(wrapper.error());
  if (auto keys = wrapper->requireOnlyKeys({"_0"}); !keys) return std::unexpected(keys.error());
  return wrapper->template get<Payload>("_0");
}

}  // namespace

const std::string& Store::Record::reference() const {
  return std::visit(
      [](const auto& payload) -> const std::string& {
        if constexpr (std::is_same_v<std::decay_t<decltype(payload)>, V6WalkingSubmission>) {
          return payload.reference;
        } else {
          return payload.plan.reference;
        }
      },
      operation);
}

const std::string& Store::Record::requestId() const {
  return std::visit(
      [](const auto& payload) -> const std::string& {
        if constexpr (std::is_same_v<std::decay_t<decltype(payload)>, V6WalkingSubmission>) {
          return payload.envelope.requestId;
        } else {
          return payload.plan.requestId;
        }
      },
      operation);
}

Store::V6EvidencePendingStore(const std::filesystem::path& dataDirectory)
    : directory_(dataDirectory / "Kovi" / "PendingV6HealthEvidence") {}

std::filesystem::path Store::pathFor(std::string_view ownerID, std::string_view reference) const {
  return directory_ / (ownerPrefix(ownerID) + fileNameHash(reference) + ".json");
}

std::string Store::encode(const Record& record) {
  CanonicalJsonWriter writer;
  writer.beginObject();
  writer.key("protocolGeneration").value(record.protocolGeneration);
  writer.key("ownerID").value(record.ownerID);
  writer.key("deviceKeyID").value(record.deviceKeyID);
  writer.key("operation").beginObject();
  if (const auto* submission = std::get_if<V6WalkingSubmission>(&record.operation)) {
    writer.key("submission").beginObject().key("_0");
    submission->write(writer);
  } else {
    writer.key("transfer").beginObject().key("_0");
    const auto& transfer = std::get<V6WriterTransferRequest>(record.operation);
    if (auto written = writeCanonicalJson(writer, encodeRecord(transfer), "transfer"); !written) trap(written.error());
  }
  writer.endObject().endObject().endObject();
  return writer.take();
}

Decoded<Store::Record> Store::decode(std::string_view text) {
  auto document = parseJson(text);
  if (!document) return std::unexpected(document.error());
  const JsonView json(*document);
  if (auto keys = json.requireOnlyKeys({"protocolGeneration", "ownerID", "deviceKeyID", "operation"}); !keys) {
    return std::unexpected(keys.error());
  }
  Record record;
  auto generation = json.get<std::string>("protocolGeneration");
  if (!generation) return std::unexpected(generation.error());
  if (*generation != kProtocolGeneration) {
    return std::unexpected(DecodeError{"protocolGeneration", "unknown generation \"" + *generation + "\""});
  }
  auto owner = json.get<std::string>("ownerID");
  if (!owner) return std::unexpected(owner.error());
  auto deviceKey = json.get<std::string>("deviceKeyID");
  if (!deviceKey) return std::unexpected(deviceKey.error());
  auto operation = json.member("operation");
  if (!operation) return std::unexpected(operation.error());
  if (auto keys = operation->requireObject(); !keys) return std::unexpected(keys.error());
  if (operation->json().size() != 1) {
    return std::unexpected(operation->error("expected exactly one of \"submission\" or \"transfer\""));
  }
  if (operation->contains("submission")) {
    auto submission = decodePayload<V6WalkingSubmission>(*operation, "submission");
    if (!submission) return std::unexpected(submission.error());
    record.operation = std::move(*submission);
  } else if (operation->contains("transfer")) {
    auto transfer = decodePayload<V6WriterTransferRequest>(*operation, "transfer");
    if (!transfer) return std::unexpected(transfer.error());
    record.operation = std::move(*transfer);
  } else {
    return std::unexpected(operation->error("expected \"submission\" or \"transfer\""));
  }
  record.protocolGeneration = std::move(*generation);
  record.ownerID = std::move(*owner);
  record.deviceKeyID = std::move(*deviceKey);
  return record;
}

std::expected<void, Store::Error> Store::save(const Record& record) {
  const std::string text = encode(record);
  if (text.size() > kRecordLimit) {
    return std::unexpected(storeError(Failure::tooLarge, "the record is " + std::to_string(text.size()) +
                                                             " bytes, more than " + std::to_string(kRecordLimit)));
  }
  std::scoped_lock lock(mutex_);
  const auto path = pathFor(record.ownerID, record.reference());
  auto existing = readFileLimited(path, kRecordLimit);
  if (existing) {
    if (*existing == text) return {};
    if (auto decoded = decode(*existing); !decoded) {
      return std::unexpected(storeError(Failure::corrupt, path.string() + ": " + decoded.error().message()));
    }
    return std::unexpected(storeError(Failure::conflict, path.string() + " holds another pending operation"));
  }
  if (existing.error().failure == FileReadFailure::tooLarge) {
    return std::unexpected(storeError(Failure::corrupt, path.string() + ": " + existing.error().detail));
  }
  if (existing.error().failure != FileReadFailure::missing) {
    return std::unexpected(storeError(Failure::io, "cannot read " + path.string() + ": " + existing.error().detail));
  }
  if (auto written = writeFileAtomically(path, text, std::filesystem::perms::owner_read |
                                                         std::filesystem::perms::owner_write);
      !written) {
    return std::unexpected(storeError(Failure::io, written.error()));
  }
  return {};
}

Store::Listing Store::pending(std::string_view ownerID) const {
  std::scoped_lock lock(mutex_);
  Listing listing;
  const std::string prefix = ownerPrefix(ownerID);
  std::error_code error;
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(directory_, error)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(prefix) && name.ends_with(".json")) files.push_back(entry.path());
  }
  // Oldest name first is as good as any order, as long as it is the same on every run.
  std::ranges::sort(files);
  for (const auto& path : files) {
    auto text = readFileLimited(path, kRecordLimit);
    if (!text) {
      listing.corrupt.push_back(storeError(Failure::corrupt, path.string() + ": " + text.error().detail));
      continue;
    }
    auto record = decode(*text);
    if (!record) {
      listing.corrupt.push_back(storeError(Failure::corrupt, path.string() + ": " + record.error().message()));
    } else if (record->ownerID != ownerID || pathFor(record->ownerID, record->reference()) != path) {
      listing.corrupt.push_back(storeError(Failure::corrupt, path.string() + ": holds another owner's or kovi's record"));
    } else {
      listing.records.push_back(std::move(*record));
    }
  }
  return listing;
}

std::expected<void, Store::Error> Store::remove(std::string_view ownerID, std::string_view reference,
                                               std::string_view requestId) {
  std::scoped_lock lock(mutex_);
  const auto path = pathFor(ownerID, reference);
  auto text = readFileLimited(path, kRecordLimit);
  if (!text) {
    if (text.error().failure == FileReadFailure::missing) return {};
    return std::unexpected(storeError(Failure::io, "cannot read " + path.string() + ": " + text.error().detail));
  }
  auto record = decode(*text);
  if (!record) return std::unexpected(storeError(Failure::corrupt, path.string() + ": " + record.error().message()));
  if (record->requestId() != requestId) return {};
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) return std::unexpected(storeError(Failure::io, "cannot remove " + path.string() + ": " + error.message()));
  return {};
}

}  // namespace kovi
