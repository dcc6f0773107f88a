#include "KoviKit/attest/PurposeSigning.h"

#include <gtest/gtest.h>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/foundation/Base64.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using nlohmann::ordered_json;

const ordered_json kRecord = {{"day", "2026-11-22"}, {"steps", 12040}, {"note", "a \"quoted\" \\ note"}};

TEST(PurposeSigningTest, SignedTextIsThePurposeThenTheRecordCanonically) {
  EXPECT_EQ(purposeSignedText("submitPurrlSteps", "upload", kRecord),
            R"({"purpose":"submitPurrlSteps","upload":)"
            R"({"day":"2026-11-22","steps":12040,"note":"a \"quoted\" \\ note"}})");
  EXPECT_EQ(purposeSignedHash("submitPurrlSteps", "upload", kRecord),
            sha256(purposeSignedText("submitPurrlSteps", "upload", kRecord).value()));
  // The purpose is part of what is signed.
  EXPECT_NE(purposeSignedHash("submitPurrlSteps", "upload", kRecord),
            purposeSignedHash("submitWalkingEvidence", "upload", kRecord));
}

TEST(PurposeSigningTest, RefusesRecordsThatCannotBeSignedUnambiguously) {
  EXPECT_EQ(purposeSignedText("registerDeviceKey", "purpose", kRecord).error(),
            "a record cannot be named \"purpose\"");
  EXPECT_EQ(purposeSignedText("registerDeviceKey", "proof", ordered_json{{"ratio", 0.5}}).error(),
            "proof.ratio: a non-integral number has no canonical form");
}

TEST(PurposeSigningTest, SignRecordAssertsOverThePurposeSignedHash) {
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), "TEAM1234.app.kovi");
  const std::string keyId = keys.generateKey().value();
  const auto assertion = signRecord(keys, keyId, "transferEvidenceWriter", "plan", kRecord);
  ASSERT_TRUE(assertion.has_value());
  const auto hash = purposeSignedHash("transferEvidenceWriter", "plan", kRecord).value();
  EXPECT_EQ(verifyAssertion(keys.publicKey(keyId).value(), "TEAM1234.app.kovi", hash, *assertion), 1u);

  const auto joined = base64Decode(compactAssertion(*assertion));
  ASSERT_TRUE(joined.has_value());
  std::vector<std::uint8_t> expected = assertion->authenticatorData;
  expected.insert(expected.end(), assertion->signature.begin(), assertion->signature.end());
  EXPECT_EQ(*joined, expected);

  const auto refused = signRecord(keys, keyId, "transferEvidenceWriter", "plan", ordered_json{{"x", 1.5}});
  ASSERT_FALSE(refused.has_value());
  EXPECT_EQ(refused.error().code, "assertion_failed");
}

}  // namespace
}  // namespace kovi
