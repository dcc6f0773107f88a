#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// The evidence family a cursor reads for.
enum class EvidenceReadScopeKind {
  walking,
  working,
  purrl,
};

template <>
struct EnumNames<EvidenceReadScopeKind> {
  static constexpr std::array table{
      std::pair{EvidenceReadScopeKind::walking, std::string_view("walking")},
      std::pair{EvidenceReadScopeKind::working, std::string_view("working")},
      std::pair{EvidenceReadScopeKind::purrl, std::string_view("purrl")},
  };
};

// What a read cursor belongs to: one account reading one subject's evidence
// (a kovi, a work session, the cat's steps) for one binding, as one writer.
struct EvidenceReadScope {
  EvidenceReadScopeKind kind = EvidenceReadScopeKind::walking;
  std::string ownerID;
  std::string subjectID;
  std::string bindingID;
  std::int64_t writerEpoch = 0;
  std::string writerDeviceID;
  bool operator==(const EvidenceReadScope&) const = default;

  // Identifiers are 1 to this many bytes long.
  static constexpr std::size_t kMaxIdentifierBytes = 256;

  // Why the scope cannot own a cursor (an empty or overlong identifier, a
  // negative epoch), or nullopt when it can.
  std::optional<std::string> invalidReason() const;

  // The scope's key: lowercase hex SHA-256 over its fields in declared order,
  // each entered as its UTF-8 byte count (8 bytes, big-endian) followed by its
  // bytes (the kind as its raw value, the epoch in decimal). Counting the
  // bytes keeps ("ab", "c") and ("a", "bc") apart.
  std::string digest() const;
};

template <>
struct JsonRecordFields<EvidenceReadScope> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{
      field("kind", &EvidenceReadScope::kind),           field("ownerID", &EvidenceReadScope::ownerID),
      field("subjectID", &EvidenceReadScope::subjectID), field("bindingID", &EvidenceReadScope::bindingID),
      field("writerEpoch", &EvidenceReadScope::writerEpoch),
      field("writerDeviceID", &EvidenceReadScope::writerDeviceID)};
};

}  // namespace kovi
