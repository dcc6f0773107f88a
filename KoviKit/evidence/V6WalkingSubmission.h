#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/attest/AppAttestAssertion.h"
#include "KoviKit/evidence/AttestedEvidenceEnvelope.h"
#include "KoviKit/evidence/V6WalkingBucketEntry.h"

namespace kovi {

// The body of one walking submission: the signed envelope, the device key's
// assertion over its hash, and the day entries whose hash it carries.
struct V6WalkingSubmission {
  static constexpr std::string_view kAction = "submitWalkingEvidence";

  std::string action{kAction};
  std::string reference;
  AttestedEvidenceEnvelope envelope;
  AppAttestAssertion assertion;
  std::vector<V6WalkingBucketEntry> entries;

  bool operator==(const V6WalkingSubmission&) const = default;

  // The request body, entries written canonically as they were hashed.
  void write(CanonicalJsonWriter& writer) const;
  std::string json() const;
};

// Strict: a stored or received submission carries exactly its keys, an
// envelope that validates and the `submitWalkingEvidence` action.
template <>
struct JsonDecoder<V6WalkingSubmission> {
  static Decoded<V6WalkingSubmission> decode(const JsonView& json);
};

}  // namespace kovi
