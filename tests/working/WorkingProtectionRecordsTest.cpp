#include <gtest/gtest.h>

#include <string>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/working/WorkingProtectionCoding.h"
#include "KoviKit/working/WorkingRemoteDevice.h"
#include "KoviKit/working/WorkingRulesHash.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

const std::string kHash(64, 'a');

WorkingProtectionProof sampleProof() {
  return {"s1", "mac-1", 3, 7, kHash, WorkingProtectionPolicy::Mode::break_, 1772431200000, 12,
          {true, true, false, false, true}};
}

TEST(WorkingProtectionRecordsTest, ProofIsSignedOverItsPurposeAndVerifiesWithTheDeviceKey) {
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), "TEAM1234.app.kovi");
  const std::string keyId = keys.generateKey().value();
  const auto request = signWorkingProtectionProof(keys, keyId, sampleProof());
  ASSERT_TRUE(request.has_value());
  const nlohmann::ordered_json wire = encodeRecord(*request);
  EXPECT_EQ(wire["action"], "report_protection_proof");
  EXPECT_EQ(wire["proof"]["mode"], "break");
  EXPECT_EQ(wire.begin().key(), "action");

  // The service's check: split the compact signature into authenticator data
  // and DER signature, and verify it over {"purpose", "proof"}.
  const auto compact = base64Decode(request->signature).value();
  ASSERT_GT(compact.size(), 36U);
  const AppAttestAssertion assertion{{compact.begin(), compact.begin() + 36}, {compact.begin() + 36, compact.end()}};
  const auto publicKey = keys.publicKey(keyId).value();
  const auto signedHash = purposeSignedHash("kovi-working-protection-v1", "proof", encodeRecord(sampleProof())).value();
  EXPECT_TRUE(verifyAssertion(publicKey, "TEAM1234.app.kovi", signedHash, assertion).has_value());
  // Signed under the transition purpose, the same bytes do not verify.
  const auto otherHash =
      purposeSignedHash("kovi-working-protection-transition-v1", "proof", encodeRecord(sampleProof())).value();
  EXPECT_FALSE(verifyAssertion(publicKey, "TEAM1234.app.kovi", otherHash, assertion).has_value());
}

TEST(WorkingProtectionRecordsTest, TransitionRequestCarriesItsActionAndRecordInOrder) {
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), "TEAM1234.app.kovi");
  const std::string keyId = keys.generateKey().value();
  const WorkingProtectionTransition transition{"s1", "mac-1", 3, "cmd-9", 1772431200000,
                                               WorkingProtectionTransition::Cause::pomodoroBreak, std::nullopt};
  const auto request = signWorkingProtectionTransition(keys, keyId, transition);
  ASSERT_TRUE(request.has_value());
  EXPECT_EQ(encodeRecord(*request).dump().substr(0, 75),
            R"({"action":"report_protection_transition","transition":{"sessionID":"s1","de)");
  EXPECT_EQ(encodeRecord(transition).dump(),
            R"({"sessionID":"s1","deviceID":"mac-1","epoch":3,"commandID":"cmd-9","at":1772431200000,)"
            R"("cause":"pomodoroBreak","expectedCommandID":null})");
}

TEST(WorkingProtectionRecordsTest, WindowsFailingTheirChecksAreRefusedAsInvalidWindow) {
  const WorkingProtectionWindow valid{1, "owner-1", "s1", kHash, 1000, 2000};
  const struct { const char* name; void (*edit)(WorkingProtectionWindow&); const char* reason; } cases[] = {
      {"generation zero", [](WorkingProtectionWindow& w) { w.generation = 0; }, "generation must be at least 1"},
      {"empty owner", [](WorkingProtectionWindow& w) { w.ownerID.clear(); }, "invalid owner identifier"},
      {"session with a space", [](WorkingProtectionWindow& w) { w.sessionID = "s 1"; }, "invalid session identifier"},
      {"uppercase hash", [](WorkingProtectionWindow& w) { w.rulesHash = std::string(64, 'A'); },
       "rules hash is not a SHA-256 hex digest"},
      {"empty span", [](WorkingProtectionWindow& w) { w.endsAt = w.startsAt; }, "window does not run forward"},
      {"negative start", [](WorkingProtectionWindow& w) { w.startsAt = -1; }, "window does not run forward"},
      {"366 days and a millisecond", [](WorkingProtectionWindow& w) { w.endsAt = w.startsAt + 31'622'400'001; },
       "window longer than 366 days"},
  };
  EXPECT_TRUE(valid.validate().has_value());
  for (const auto& refused : cases) {
    SCOPED_TRACE(refused.name);
    WorkingProtectionWindow window = valid;
    refused.edit(window);
    ASSERT_FALSE(window.validate().has_value());
    EXPECT_EQ(window.validate().error().reason, refused.reason);
    const auto decoded = decodeWorkingProtectionWindow(JsonView(nlohmann::json::parse(encodeRecord(window).dump())));
    ASSERT_FALSE(decoded.has_value());
    EXPECT_EQ(decoded.error().message(), std::string("InvalidWindow: ") + refused.reason);
  }
}

// One capability record with one field list: a signed proof refuses a flag
// it does not know, a service answer ignores it and keeps the rest.
TEST(WorkingProtectionRecordsTest, CapabilitiesAreStrictInProofsAndLenientInAnswers) {
  const std::string flags = R"({"activity":true,"appBlocking":false,"websiteBlocking":true,"iphoneShield":false,)"
                            R"("accessibility":true,"screenTime":true})";
  EXPECT_EQ(decodeJsonText<WorkingDeviceCapabilities>(flags).error().message(), "screenTime: unknown key");
  const auto reported = decodeJsonText<WorkingRemoteDevice::Capabilities>(flags);
  ASSERT_TRUE(reported.has_value()) << reported.error().message();
  const WorkingDeviceCapabilities& read = *reported;
  EXPECT_EQ(read, (WorkingDeviceCapabilities{true, false, true, false, true}));
  EXPECT_EQ(encodeRecord(*reported).dump(), encodeRecord(read).dump());
}

TEST(WorkingProtectionRecordsTest, FencesAdmitOnlyNewerRevisionsAndTheirOwnSession) {
  WorkingProtectionRevisionFence fence;
  fence.epoch = 2;
  fence.revision = 5;
  EXPECT_FALSE(fence.admits(2, 5));
  EXPECT_FALSE(fence.admits(1, 9));
  EXPECT_TRUE(fence.admits(2, 6));
  EXPECT_TRUE(fence.admits(3, 0));
  EXPECT_FALSE(fence.isExpired(1'000'000));
  fence.expiryMonotonicMS = 5'000;
  EXPECT_FALSE(fence.isExpired(4'999));
  EXPECT_TRUE(fence.isExpired(5'000));

  WorkingProtectionSessionFence session{"s1", 1000, false};
  EXPECT_TRUE(session.admits("s1"));
  EXPECT_FALSE(session.admits("s2"));
  session.isClosed = true;
  EXPECT_FALSE(session.admits("s1"));
}

TEST(WorkingProtectionRecordsTest, RulesHashIdentifiesTheRuleSetWhateverItsLayout) {
  const WorkingRules rules = testing::workingRules("daily-rules.json");
  const std::string hash = workingRulesHash(rules);
  // The same rules pretty-printed with the keys reordered hash alike.
  const auto relaid = decodeWorkingRules(nlohmann::json::parse(encodeWorkingRulesText(rules)).dump(2));
  ASSERT_TRUE(relaid.has_value());
  EXPECT_EQ(workingRulesHash(*relaid), hash);
  WorkingProtectionWindow window{1, "owner-1", "s1", hash, 1000, 2000};
  EXPECT_TRUE(window.validate().has_value()) << "a rules hash is what a window accepts";
  WorkingRules changed = rules;
  changed.verification.heartbeatSeconds += 1;
  EXPECT_NE(workingRulesHash(changed), hash);
}

}  // namespace
}  // namespace kovi
