#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "KoviKit/working/WorkingOfflineLeaseVerification.h"
#include "tests/working/OfflineLeaseServer.h"

namespace kovi {
namespace {

using Kind = WorkingOfflineError::Kind;

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

struct BindingCase {
  const char* field;
  std::function<void(WorkingOfflineBinding&)> change;
};

class OfflineLeaseBindingTest : public OfflineLeaseTest, public ::testing::WithParamInterface<BindingCase> {};

TEST_P(OfflineLeaseBindingTest, NamesTheFieldThatDiffers) {
  auto expected = binding();
  GetParam().change(expected);
  const auto outcome = verifyWorkingOfflineEnvelope(server.envelope(leaseJson()), keys, expected, kIssued);
  expectRefused(outcome, Kind::bindingMismatch, GetParam().field);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, OfflineLeaseBindingTest,
    ::testing::Values(BindingCase{"accountID", [](auto& b) { b.accountID = "account-2"; }},
                      BindingCase{"roomID", [](auto& b) { b.roomID = "room-2"; }},
                      BindingCase{"sessionID", [](auto& b) { b.sessionID = "session-2"; }},
                      BindingCase{"deviceID", [](auto& b) { b.deviceID = "mac-2"; }},
                      BindingCase{"epoch", [](auto& b) { b.epoch = 2; }},
                      BindingCase{"rulesHash", [](auto& b) { b.rulesHash = "other"; }},
                      BindingCase{"deviceKeyHash", [](auto& b) { b.deviceKeyHash = "other"; }},
                      BindingCase{"anchor.sequence", [](auto& b) { b.anchor.sequence = 8; }},
                      BindingCase{"anchor.headHash", [](auto& b) { b.anchor.headHash = "other"; }},
                      BindingCase{"anchor.through", [](auto& b) { b.anchor.through += 1; }},
                      BindingCase{"anchor.monotonicMS", [](auto& b) { b.anchor.monotonicMS -= 1; }},
                      // Several differences: the first in the binding's order is named.
                      BindingCase{"roomID",
                                  [](auto& b) {
                                    b.deviceID = "mac-2";
                                    b.roomID = "room-2";
                                  }}),
    [](const auto& info) {
      std::string name = info.param.field;
      std::erase(name, '.');
      return name + std::to_string(info.index);
    });

struct EnvelopeCase {
  const char* name;
  std::function<std::string(const testing::OfflineLeaseServer&)> text;
  const char* detail;
};

class OfflineEnvelopeTest : public OfflineLeaseTest, public ::testing::WithParamInterface<EnvelopeCase> {};

TEST_P(OfflineEnvelopeTest, RefusesAnEnvelopeThatDoesNotDecodeStrictly) {
  expectRefused(check(GetParam().text(server)), Kind::invalidEnvelope, GetParam().detail);
}

nlohmann::ordered_json leaseWith(const char* key, nlohmann::ordered_json value) {
  auto lease = leaseJson();
  lease[key] = std::move(value);
  return lease;
}

INSTANTIATE_TEST_SUITE_P(
    Envelopes, OfflineEnvelopeTest,
    ::testing::Values(
        // A repeated key: a lenient reader would take the last epoch, a signer the first.
        EnvelopeCase{"repeatedKey",
                     [](const auto& s) {
                       std::string text = s.envelope(leaseJson());
                       return text.replace(text.find(R"("epoch":3)"), 9, R"("epoch":3,"epoch":4)");
                     },
                     "lease.epoch: duplicate key"},
        EnvelopeCase{"unknownKey", [](const auto& s) { return s.envelope(leaseWith("extra", 1)); },
                     "lease.extra: unknown key"},
        EnvelopeCase{"newerVersion", [](const auto& s) { return s.envelope(leaseWith("version", 2)); },
                     "lease.version: unsupported version 2"},
        EnvelopeCase{"fractionalEpoch", [](const auto& s) { return s.envelope(leaseWith("epoch", 3.5)); },
                     "lease.epoch: expected an integer, found a number"},
        EnvelopeCase{"workUntilAtIssue",
                     [](const auto& s) { return s.envelope(leaseWith("workUntil", kIssued)); },
                     "lease.workUntil: not after issuedAt"},
        EnvelopeCase{"maxSequenceBehind", [](const auto& s) { return s.envelope(leaseWith("maxSequence", 6)); },
                     "lease.maxSequence: behind anchor.sequence"},
        EnvelopeCase{"notJson", [](const auto&) { return std::string("{\"lease\":"); },
                     "not valid JSON at line 1, column 10: syntax error while parsing value - unexpected end of input; "
                     "expected '[', '{', or a literal"}),
    [](const auto& info) { return std::string(info.param.name); });

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
