// `kovi wallet` through the built binary, the ceremony against a loopback
// wallet service that verifies the passkey the tool made.
#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "KoviKit/foundation/Base64.h"
#include "tests/support/KoviProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/wallet/LoopbackWalletService.h"

namespace kovi {
namespace {

using testing::runKovi;

struct StakeCase {
  std::string amount;
  int exitStatus;
  std::string out;
};

class KoviWalletStakeCheckTest : public ::testing::TestWithParam<StakeCase> {};

TEST_P(KoviWalletStakeCheckTest, SaysOkOrWhy) {
  const auto run = runKovi({"wallet", "stake-check", GetParam().amount});
  EXPECT_EQ(run.exitStatus, GetParam().exitStatus);
  EXPECT_EQ(run.out, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(Stakes, KoviWalletStakeCheckTest,
                         ::testing::Values(StakeCase{"0.5", 0, "ok\n"},
                                           StakeCase{"999999.000000000000000001", 0, "ok\n"},
                                           StakeCase{"1000000", 1, "the stake must be below 1000000\n"},
                                           StakeCase{"01", 1, "the whole part has a leading zero\n"},
                                           StakeCase{"1.", 1, "a decimal point must be followed by digits\n"}));

TEST(KoviWalletRequestTest, PrintsTheRequestAsSentOrNamesWhereItIsWrong) {
  testing::TemporaryDirectory directory;
  const auto good = directory.write(
      "request.json", R"({"steps": 9, "requestId": "r1", "action": "operation", "day": null, "reference": "KOVI-AAAA"})");
  const auto sent = runKovi({"wallet", "request", good.string()});
  EXPECT_EQ(sent.exitStatus, 0) << sent.err;
  EXPECT_EQ(sent.out, "{\"action\":\"operation\",\"requestId\":\"r1\",\"reference\":\"KOVI-AAAA\",\"steps\":9}\n");

  const auto repeated = directory.write("repeated.json", R"({"action": "operation", "action": "cancelOperation"})");
  const auto refused = runKovi({"wallet", "request", repeated.string()});
  EXPECT_EQ(refused.exitStatus, 2);
  EXPECT_EQ(refused.err, "kovi wallet: " + repeated.string() + ": action: duplicate key\n");

  const auto badStake = directory.write(
      "stake.json", R"({"action":"prepareOperation","intent":{"kind":"create","reviewDigest":"d","approved":true,)"
                    R"("draft":{"domain":"walking","title":"t","salt":"s","invitees":[],"stakeAmount":"1.",)"
                    R"("capacity":2,"joinDeadline":1,"rules":{}}}})");
  const auto stake = runKovi({"wallet", "request", badStake.string()});
  EXPECT_EQ(stake.exitStatus, 2);
  EXPECT_EQ(stake.err, "kovi wallet: " + badStake.string() +
                           ": intent.draft.stakeAmount: a decimal point must be followed by digits\n");
}

TEST(KoviWalletRunTest, MakesAPasskeyAndRunsAnOperationToConfirmation) {
  testing::TemporaryDirectory directory;
  const std::vector<std::string> party{"--data-dir", directory.path().string(), "--rp-id", "kovi.test",
                                       "--passkey-origin", "https://kovi.test"};
  std::vector<std::string> create{"wallet", "passkey", "create"};
  create.insert(create.end(), party.begin(), party.end());
  const auto made = runKovi(create);
  ASSERT_EQ(made.exitStatus, 0) << made.err;
  const auto printed = nlohmann::json::parse(made.out);
  ASSERT_EQ(printed.size(), 3u);  // id, public key and user handle; never the private key
  const PasskeyCredential credential{printed.at("credentialId"),
                                     base64Decode(printed.at("publicKey").get<std::string>()).value_or(std::vector<std::uint8_t>{}),
                                     base64UrlDecode(printed.at("userHandle").get<std::string>()).value_or(std::vector<std::uint8_t>{})};

  testing::LoopbackWalletService service(
      credential, {"kovi.test", "https://kovi.test"}, {{V6WalletOperationStatus::submitted, V6WalletOperationStatus::confirmed}},
      [] { return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count(); });
  const testing::ScopedEnvironment origin("KOVI_SERVICE_ORIGIN", service.origin().url());

  std::vector<std::string> run{"wallet", "run", "join", "--reference", "KOVI-7Q2M-XRP4", "--account", "member-1",
                               "--poll-interval-ms", "1", "--poll-limit", "5"};
  run.insert(run.end(), party.begin(), party.end());
  const auto ran = runKovi(run);
  EXPECT_EQ(ran.exitStatus, 0) << ran.err << ran.out;
  EXPECT_EQ(ran.err,
            "preparing: İşlem hazırlanıyor\nawaitingAuthorization: Onayın bekleniyor\nsubmitting: İşlem gönderiliyor\n"
            "observing: Zincirde doğrulanıyor\nconfirmed: İşlem tamamlandı\n");
  const auto outcome = nlohmann::json::parse(ran.out);
  EXPECT_EQ(outcome.at("phase"), "confirmed");
  EXPECT_EQ(outcome.at("message"), "İşlem zincire yazıldı ve doğrulandı.");
  EXPECT_EQ(outcome.at("operation").at("status"), "confirmed");
  EXPECT_EQ(service.approvals(), 1);
  EXPECT_EQ(service.contributions(), 1);

  std::vector<std::string> status{"wallet", "status", "--account", "member-1"};
  status.insert(status.end(), party.begin(), party.end());
  const auto checked = runKovi(status);
  EXPECT_EQ(checked.exitStatus, 0) << checked.err;
  EXPECT_EQ(nlohmann::json::parse(checked.out).at("operation").at("requestId"),
            outcome.at("operation").at("requestId"));
  EXPECT_EQ(service.contributions(), 1);

  std::vector<std::string> badAccount{"wallet", "status", "--account", "../x"};
  badAccount.insert(badAccount.end(), party.begin(), party.end());
  EXPECT_EQ(runKovi(badAccount).exitStatus, 2);
}

}  // namespace
}  // namespace kovi
