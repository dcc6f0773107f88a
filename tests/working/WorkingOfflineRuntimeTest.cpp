#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/working/WorkingOfflineLeaseVerification.h"
#include "KoviKit/working/WorkingOfflineProof.h"
#include "KoviKit/working/WorkingOfflineRuntime.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/OfflineLeaseServer.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Kind = WorkingOfflineError::Kind;

constexpr UnixMillis kThrough = 1'800'000'000'000;
constexpr std::int64_t kMonotonic = 5'000'000;
const std::string kBoot = "6f1c3a52-0b6e-4c39-9a0a-1d7e2b9f4c11";

WorkingOfflineLease lease(UnixMillis workUntil = kThrough + 300'000, std::int64_t maxSequence = 20) {
  WorkingOfflineLease value;
  value.id = "lease-1";
  value.sessionID = "session-1";
  value.deviceID = "mac-1";
  value.epoch = 3;
  value.rulesHash = "rules-hash";
  value.issuedAt = kThrough;
  value.workUntil = workUntil;
  value.reconcileBy = workUntil + 600'000;
  value.maxSequence = maxSequence;
  value.anchor = {7, "head-hash", kThrough, kMonotonic - 2'000};
  return value;
}

// Installed two seconds after the anchor's time, on a clock that agrees.
WorkingOfflineRuntime installed(const WorkingOfflineLease& value = lease()) {
  return WorkingOfflineRuntime::install(value, {kThrough + 2'000, kMonotonic}, kBoot);
}

// A reading `elapsed` after installation on both clocks, the wall clock
// off by `skew`.
WorkingClockReading after(std::int64_t elapsed, std::int64_t skew = 0) {
  return {kThrough + 2'000 + elapsed + skew, kMonotonic + elapsed};
}

TEST(OfflineRuntimeTest, NoticesRebootsAndClockJumps) {
  // Rows of offline-clock-readings.json: a reading `elapsed` after installation,
  // the wall clock off by `skew` or set to `wall`, after a reboot or not.
  const auto cases = nlohmann::json::parse(testing::workingDataFile("offline-clock-readings.json"));
  ASSERT_EQ(cases.size(), 8U);
  for (const auto& example : cases) {
    SCOPED_TRACE(example.at("name").get<std::string>());
    WorkingClockReading reading = after(example.at("elapsed").get<std::int64_t>(), example.value("skew", 0LL));
    if (example.contains("wall")) reading.wall = example.at("wall").get<UnixMillis>();
    const std::string boot = example.at("reboot").get<bool>() ? "1b2c3d4e-0000-4000-8000-000000000000" : kBoot;
    WorkingOfflineRuntime runtime = installed();
    ASSERT_TRUE(runtime.observe(after(10'000), kBoot).has_value());
    const WorkingOfflineRuntime before = runtime;
    const auto outcome = runtime.observe(reading, boot);
    if (!example.at("refused").is_null()) {
      ASSERT_FALSE(outcome.has_value());
      EXPECT_EQ(outcome.error(), (WorkingOfflineError{Kind::clockDiscontinuity, example.at("refused").get<std::string>()}));
      EXPECT_EQ(runtime, before);
    } else {
      ASSERT_TRUE(outcome.has_value()) << outcome.error().detail;
      EXPECT_EQ(runtime.lastWall, reading.wall);
    }
  }
}

// Installed 2 s after the anchor, so the 90-second limit is 88 s after installation.
TEST(OfflineRuntimeTest, StopsAtWorkUntilTheOfflineLimitAndMaxSequence) {
  // Rows of offline-limits.json: a lease working until `workUntilAfterAnchor`
  // after its anchor, asked `elapsed` after installation.
  const auto cases = nlohmann::json::parse(testing::workingDataFile("offline-limits.json"));
  ASSERT_EQ(cases.size(), 5U);
  for (const auto& example : cases) {
    SCOPED_TRACE(example.at("name").get<std::string>());
    WorkingOfflineRuntime runtime = installed(
        lease(kThrough + example.at("workUntilAfterAnchor").get<std::int64_t>(), example.at("maxSequence").get<std::int64_t>()));
    const auto outcome = runtime.mayCount(after(example.at("elapsed").get<std::int64_t>()), kBoot);
    const auto& refusal = example.at("refusal");
    if (refusal.is_null()) {
      EXPECT_TRUE(outcome.has_value()) << outcome.error().detail;
    } else {
      ASSERT_FALSE(outcome.has_value());
      EXPECT_EQ(enumName(outcome.error().kind), refusal.at("kind").get<std::string>());
      EXPECT_EQ(outcome.error().detail, refusal.at("detail").get<std::string>());
    }
  }
}

TEST(OfflineRuntimeTest, WithoutALeaseNothingCounts) {
  WorkingOfflineRuntime runtime;
  EXPECT_EQ(runtime.mayCount(after(0), kBoot).error().kind, Kind::unavailable);
  EXPECT_EQ(runtime.countingEnd().error().kind, Kind::unavailable);
}

WorkingCheckpoint continuing(const WorkingOfflineAnchor& head, std::int64_t elapsed) {
  const UnixMillis at = kThrough + 2'000 + elapsed;
  return {"session-1", "mac-1", 3, head.sequence + 1, head.headHash, at, kMonotonic + elapsed,
          {{head.through, at, WorkingTimeSegment::Kind::active}}, false};
}

TEST(OfflineRuntimeTest, OfflineCheckpointsContinueTheChainFromTheLeasesAnchor) {
  WorkingOfflineRuntime runtime = installed();
  const WorkingCheckpoint first = continuing(runtime.head(), 30'000);
  ASSERT_TRUE(runtime.admitCheckpoint(first, after(30'000), kBoot).has_value());
  EXPECT_EQ(runtime.head().sequence, 8);
  EXPECT_EQ(runtime.head().headHash, workingCheckpointHash(first));

  // The next one must name the first one's hash, not the lease's anchor.
  WorkingCheckpoint second = continuing(runtime.head(), 60'000);
  second.previousHash = "head-hash";
  EXPECT_EQ(runtime.admitCheckpoint(second, after(60'000), kBoot).error(),
            (WorkingOfflineError{Kind::checkpointChain, "previousHash"}));
  second.previousHash = workingCheckpointHash(first);
  EXPECT_TRUE(runtime.admitCheckpoint(second, after(60'000), kBoot).has_value());
}

TEST(OfflineRuntimeTest, RefusesCheckpointsOffTheChainAndKeepsTheHead) {
  const struct { const char* name; void (*change)(WorkingCheckpoint&); WorkingOfflineError refusal; } cases[] = {
      {"gap", [](auto& c) { c.sequence += 1; }, {Kind::checkpointChain, "sequence"}},
      {"repeat", [](auto& c) { c.sequence -= 1; }, {Kind::checkpointChain, "sequence"}},
      {"other head", [](auto& c) { c.previousHash = "x"; }, {Kind::checkpointChain, "previousHash"}},
      {"other session", [](auto& c) { c.sessionID = "s2"; }, {Kind::checkpointChain, "sessionID"}},
      {"other epoch", [](auto& c) { c.epoch = 4; }, {Kind::checkpointChain, "epoch"}},
      {"before anchor", [](auto& c) { c.at = kThrough - 1; }, {Kind::checkpointChain, "at"}},
      {"past limit", [](auto& c) { c.at = kThrough + 90'001; }, {Kind::expired, "at"}},
      {"segment past limit", [](auto& c) { c.segments.back().end = kThrough + 90'001; }, {Kind::expired, "segments"}},
  };
  for (const auto& example : cases) {
    SCOPED_TRACE(example.name);
    WorkingOfflineRuntime runtime = installed();
    WorkingCheckpoint checkpoint = continuing(runtime.head(), 30'000);
    example.change(checkpoint);
    const WorkingOfflineRuntime before = runtime;
    EXPECT_EQ(runtime.admitCheckpoint(checkpoint, after(30'000), kBoot).error(), example.refusal);
    EXPECT_EQ(runtime, before);
  }
  WorkingOfflineRuntime runtime = installed();
  const auto afterReboot = runtime.admitCheckpoint(continuing(runtime.head(), 30'000), after(30'000), "another-boot");
  EXPECT_EQ(afterReboot.error(), (WorkingOfflineError{Kind::clockDiscontinuity, "bootID"}));
}

TEST(OfflineProofTest, IsSignedByTheDeviceKeyOverTheProofPurpose) {
  testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), "app.kovi.test");
  const auto keyID = keys.generateKey();
  ASSERT_TRUE(keyID.has_value());

  WorkingOfflineRuntime runtime = installed();
  const WorkingCheckpoint checkpoint = continuing(runtime.head(), 30'000);
  ASSERT_TRUE(runtime.admitCheckpoint(checkpoint, after(30'000), kBoot).has_value());
  const auto proof = makeWorkingOfflineProof(runtime, {true, true, false, true});
  ASSERT_TRUE(proof.has_value());
  EXPECT_EQ(proof->sequence, 8);
  EXPECT_EQ(proof->checkpointHash, workingCheckpointHash(checkpoint));
  EXPECT_EQ(proof->leaseID, "lease-1");

  const auto signature = signWorkingOfflineProof(keys, *keyID, *proof);
  ASSERT_TRUE(signature.has_value());
  // The compact form: 36 bytes of authenticator data, then the DER signature.
  const auto bytes = base64Decode(*signature).value();
  ASSERT_GT(bytes.size(), 36u);
  const AppAttestAssertion assertion{{bytes.begin(), bytes.begin() + 36}, {bytes.begin() + 36, bytes.end()}};
  const std::string text = R"({"purpose":"kovi-working-offline-proof-v1","proof":)" + encodeRecord(*proof).dump() + "}";
  const auto publicKey = keys.publicKey(*keyID).value();
  EXPECT_TRUE(verifyAssertion(publicKey, "app.kovi.test", sha256(text), assertion).has_value());

  WorkingOfflineProof other = *proof;
  other.sequence = 9;
  const std::string otherText =
      R"({"purpose":"kovi-working-offline-proof-v1","proof":)" + encodeRecord(other).dump() + "}";
  EXPECT_FALSE(verifyAssertion(publicKey, "app.kovi.test", sha256(otherText), assertion).has_value());
}


constexpr UnixMillis kIssued = testing::kSampleLeaseIssuedAt;
constexpr UnixMillis kWorkUntil = kIssued + 120'000;

WorkingOfflineBinding binding() { return testing::sampleOfflineBinding(); }
nlohmann::ordered_json leaseJson() { return testing::sampleOfflineLease(); }

class OfflineLeaseTest : public ::testing::Test {
 protected:
  testing::OfflineLeaseServer server;
  testing::OfflineLeaseServer stranger;
  WorkingOfflineServerKeys keys =
      decodeWorkingOfflineServerKeys(R"({"server-1":")" + server.publicKeyBase64() + R"("})").value();

  std::expected<WorkingOfflineLease, WorkingOfflineError> check(const std::string& envelope,
                                                                UnixMillis now = kIssued) const {
    return verifyWorkingOfflineEnvelope(envelope, keys, binding(), now);
  }

  static void expectRefused(const std::expected<WorkingOfflineLease, WorkingOfflineError>& outcome, Kind kind,
                            const std::string& detail) {
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(enumName(outcome.error().kind), enumName(kind));
    EXPECT_EQ(outcome.error().detail, detail);
  }
};

TEST_F(OfflineLeaseTest, AcceptsASignedLeaseForThisBindingBeforeWorkUntil) {
  const auto lease = check(server.envelope(leaseJson()), kWorkUntil - 1);
  ASSERT_TRUE(lease.has_value()) << lease.error().detail;
  EXPECT_EQ(lease->id, "lease-1");
  EXPECT_EQ(lease->anchor, binding().anchor);
  EXPECT_EQ(encodeRecord(*lease), leaseJson()) << "the lease keeps every field as sent";
  expectRefused(check(server.envelope(leaseJson()), kWorkUntil), Kind::expired, "workUntil");
}

TEST_F(OfflineLeaseTest, RefusesATamperedLeaseAnUnknownKeyAndAnotherKeysSignature) {
  // Signed for epoch 3, then changed to epoch 4 and a matching binding.
  std::string tampered = server.envelope(leaseJson());
  tampered.replace(tampered.find(R"("epoch":3)"), 9, R"("epoch":4)");
  auto otherBinding = binding();
  otherBinding.epoch = 4;
  const auto outcome = verifyWorkingOfflineEnvelope(tampered, keys, otherBinding, kIssued);
  expectRefused(outcome, Kind::invalidSignature, "signature does not verify");

  auto unknown = leaseJson();
  unknown["serverKeyID"] = "server-2";
  expectRefused(check(server.envelope(unknown)), Kind::invalidSignature, "unknown serverKeyID");

  expectRefused(check(stranger.envelope(leaseJson())), Kind::invalidSignature, "signature does not verify");

  nlohmann::ordered_json notBase64 = {{"lease", leaseJson()}, {"signature", "not base64!"}};
  expectRefused(check(notBase64.dump()), Kind::invalidSignature, "signature is not base64");
}

TEST_F(OfflineLeaseTest, NamesTheFirstBindingFieldThatDiffers) {
  const struct { const char* field; std::function<void(WorkingOfflineBinding&)> change; } cases[] = {
      {"accountID", [](auto& b) { b.accountID = "account-2"; }},
      {"roomID", [](auto& b) { b.roomID = "room-2"; }},
      {"sessionID", [](auto& b) { b.sessionID = "session-2"; }},
      {"deviceID", [](auto& b) { b.deviceID = "mac-2"; }},
      {"epoch", [](auto& b) { b.epoch = 2; }},
      {"rulesHash", [](auto& b) { b.rulesHash = "other"; }},
      {"deviceKeyHash", [](auto& b) { b.deviceKeyHash = "other"; }},
      {"anchor.sequence", [](auto& b) { b.anchor.sequence = 8; }},
      {"anchor.headHash", [](auto& b) { b.anchor.headHash = "other"; }},
      {"anchor.through", [](auto& b) { b.anchor.through += 1; }},
      {"anchor.monotonicMS", [](auto& b) { b.anchor.monotonicMS -= 1; }},
      // Several differences: the first in the binding's order is named.
      {"roomID", [](auto& b) { b.deviceID = "mac-2", b.roomID = "room-2"; }},
  };
  for (const auto& example : cases) {
    SCOPED_TRACE(example.field);
    auto expected = binding();
    example.change(expected);
    const auto outcome = verifyWorkingOfflineEnvelope(server.envelope(leaseJson()), keys, expected, kIssued);
    expectRefused(outcome, Kind::bindingMismatch, example.field);
  }
}

nlohmann::ordered_json leaseWith(const char* key, nlohmann::ordered_json value) {
  auto lease = leaseJson();
  lease[key] = std::move(value);
  return lease;
}

TEST_F(OfflineLeaseTest, RefusesAnEnvelopeThatDoesNotDecodeStrictly) {
  // A repeated key: a lenient reader would take the last epoch, a signer the first.
  std::string repeated = server.envelope(leaseJson());
  repeated.replace(repeated.find(R"("epoch":3)"), 9, R"("epoch":3,"epoch":4)");
  const struct { std::string text; const char* detail; } cases[] = {
      {repeated, "lease.epoch: duplicate key"},
      {server.envelope(leaseWith("extra", 1)), "lease.extra: unknown key"},
      {server.envelope(leaseWith("version", 2)), "lease.version: unsupported version 2"},
      {server.envelope(leaseWith("epoch", 3.5)), "lease.epoch: expected an integer, found a number"},
      {server.envelope(leaseWith("workUntil", kIssued)), "lease.workUntil: not after issuedAt"},
      {server.envelope(leaseWith("maxSequence", 6)), "lease.maxSequence: behind anchor.sequence"},
      {"{\"lease\":", "not valid JSON at line 1, column 10: syntax error while parsing value - unexpected end of "
                     "input; expected '[', '{', or a literal"},
  };
  for (const auto& example : cases) expectRefused(check(example.text), Kind::invalidEnvelope, example.detail);
}

TEST(OfflineServerKeysTest, RefusesRepeatedKeyIdsAndValuesThatAreNotBase64) {
  EXPECT_EQ(decodeWorkingOfflineServerKeys(R"({"a":"AAAA","a":"AAAA"})").error().message(),
            "a: duplicate key");
  EXPECT_EQ(decodeWorkingOfflineServerKeys(R"({"a":"AAA"})").error().message(), "a: not base64 DER");
  EXPECT_EQ(decodeWorkingOfflineServerKeys(R"({"a":""})").error().message(), "a: not base64 DER");
  EXPECT_EQ(decodeWorkingOfflineServerKeys(R"({"a":1})").error().message(), "a: expected a string, found a number");
  EXPECT_EQ(decodeWorkingOfflineServerKeys(R"({"a":"AAAA"})")->keys.at("a"), (std::vector<std::uint8_t>{0, 0, 0}));
}

}  // namespace
}  // namespace kovi
