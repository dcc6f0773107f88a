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

// The stake rules are the stake form's; the command prints its verdict.
TEST(KoviWalletStakeCheckTest, SaysOkOrWhy) {
  const auto ok = runKovi({"wallet", "stake-check", "999999.000000000000000001"});
  EXPECT_EQ(ok.exitStatus, 0);
  EXPECT_EQ(ok.out, "ok\n");
  const auto refused = runKovi({"wallet", "stake-check", "1000000"});
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_EQ(refused.out, "the stake must be below 1000000\n");
}

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
}

TEST(KoviWalletRunTest, MakesAPasskeyAndRunsAnOperationToConfirmation) {
  testing::TemporaryDirectory directory;
  // Runs `kovi wallet ARGUMENTS` with the test's data folder and relying party.
  const auto wallet = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "wallet");
    arguments.insert(arguments.end(), {"--data-dir", directory.path().string(), "--rp-id", "kovi.test",
                                       "--passkey-origin", "https://kovi.test"});
    return runKovi(arguments);
  };
  const auto made = wallet({"passkey", "create"});
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

  const auto ran = wallet({"run", "join", "--reference", "KOVI-7Q2M-XRP4", "--account", "member-1",
                           "--poll-interval-ms", "1", "--poll-limit", "5"});
  EXPECT_EQ(ran.exitStatus, 0) << ran.err << ran.out;
  EXPECT_EQ(ran.err,
            "preparing: İşlem hazırlanıyor\nawaitingAuthorization: Onayın bekleniyor\nsubmitting: İşlem gönderiliyor\n"
            "observing: Zincirde doğrulanıyor\nconfirmed: İşlem tamamlandı\n");
  const auto outcome = nlohmann::json::parse(ran.out);
  EXPECT_EQ(outcome.at("phase"), "confirmed");
  EXPECT_EQ(outcome.at("message"), "İşlem zincire yazıldı ve doğrulandı.");
  EXPECT_EQ(outcome.at("operation").at("status"), "confirmed");
  EXPECT_EQ(service.record().approvals, 1);
  EXPECT_EQ(service.record().contributions, 1);

  const auto checked = wallet({"status", "--account", "member-1"});
  EXPECT_EQ(checked.exitStatus, 0) << checked.err;
  EXPECT_EQ(nlohmann::json::parse(checked.out).at("operation").at("requestId"),
            outcome.at("operation").at("requestId"));
  EXPECT_EQ(service.record().contributions, 1);

  EXPECT_EQ(wallet({"status", "--account", "../x"}).exitStatus, 2);
}

}  // namespace
}  // namespace kovi
