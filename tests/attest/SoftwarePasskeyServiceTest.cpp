#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/SoftwarePasskeyService.h"
#include "KoviKit/foundation/Base64.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

const PasskeyRelyingParty kParty{"kovi.test", "https://kovi.test"};

std::uint32_t counterOf(const PasskeyAssertion& assertion) {
  std::uint32_t counter = 0;
  for (std::size_t at = 33; at < 37; ++at) counter = (counter << 8) | assertion.authenticatorData.at(at);
  return counter;
}

TEST(SoftwarePasskeyServiceTest, MakesStandardAssertionsThatVerifyWithTheRegisteredKey) {
  testing::TemporaryDirectory directory;
  SoftwarePasskeyService passkeys(directory.path(), kParty);
  const auto credential = passkeys.createCredential();
  ASSERT_TRUE(credential.has_value()) << credential.error().detail;

  const std::vector<std::uint8_t> challenge{0xde, 0xad, 0xbe, 0xef};
  const auto assertion = passkeys.getAssertion(challenge, std::nullopt);
  ASSERT_TRUE(assertion.has_value()) << assertion.error().detail;
  EXPECT_EQ(std::tie(assertion->credentialId, assertion->userHandle),
            std::tie(credential->credentialId, credential->userHandle));
  // The relying party's hash, the flags user present and verified, and the counter.
  const Sha256Digest relyingPartyHash = sha256(kParty.id);
  std::vector<std::uint8_t> expectedData(relyingPartyHash.begin(), relyingPartyHash.end());
  expectedData.insert(expectedData.end(), {0x05, 0, 0, 0, 1});
  EXPECT_EQ(assertion->authenticatorData, expectedData);
  EXPECT_EQ(std::string(assertion->clientDataJSON.begin(), assertion->clientDataJSON.end()),
            R"({"type":"webauthn.get","challenge":"3q2-7w","origin":"https://kovi.test"})");

  std::string signedText(assertion->authenticatorData.begin(), assertion->authenticatorData.end());
  const Sha256Digest clientHash = sha256(std::string(assertion->clientDataJSON.begin(), assertion->clientDataJSON.end()));
  signedText.append(clientHash.begin(), clientHash.end());
  EXPECT_TRUE(verifyP256Signature(credential->publicKeyDer, signedText, assertion->signature));
  signedText.back() ^= 1;
  EXPECT_FALSE(verifyP256Signature(credential->publicKeyDer, signedText, assertion->signature));
  EXPECT_EQ(assertion->fields().at("clientDataJSON"), base64UrlEncode(assertion->clientDataJSON));
}

TEST(SoftwarePasskeyServiceTest, KeepsKeysOwnerOnlyAndTheCounterRisingAcrossRestarts) {
  testing::TemporaryDirectory directory;
  const auto credential = SoftwarePasskeyService(directory.path(), kParty).createCredential();
  ASSERT_TRUE(credential.has_value());
  const auto folder = directory.path() / "Kovi/Passkeys/v1";
  for (const char* extension : {".pem", ".json"}) {
    const auto permissions = std::filesystem::status(folder / (credential->credentialId + extension)).permissions();
    EXPECT_EQ(permissions & std::filesystem::perms::all,
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write)
        << extension;
  }
  const std::vector<std::uint8_t> challenge{1};
  for (std::uint32_t expected = 1; expected <= 3; ++expected) {
    // A fresh service each time: the counter comes from the file.
    const auto assertion = SoftwarePasskeyService(directory.path(), kParty).getAssertion(challenge, credential->credentialId);
    ASSERT_TRUE(assertion.has_value()) << assertion.error().detail;
    EXPECT_EQ(counterOf(*assertion), expected);
  }
}

TEST(SoftwarePasskeyServiceTest, RefusesWhatIsNotItsToSign) {
  testing::TemporaryDirectory directory;
  SoftwarePasskeyService passkeys(directory.path(), kParty);
  const std::vector<std::uint8_t> challenge{1};
  EXPECT_EQ(passkeys.getAssertion(challenge, std::nullopt).error().code, passkeyErrorCode::notFound);
  const auto first = passkeys.createCredential();
  ASSERT_TRUE(first.has_value());
  EXPECT_EQ(passkeys.getAssertion(challenge, "../../escape").error().code, passkeyErrorCode::notFound);
  EXPECT_EQ(SoftwarePasskeyService(directory.path(), {"other.test", "https://other.test"})
                .getAssertion(challenge, first->credentialId)
                .error()
                .code,
            passkeyErrorCode::notFound);
  ASSERT_TRUE(passkeys.createCredential().has_value());
  EXPECT_EQ(passkeys.getAssertion(challenge, std::nullopt).error().detail, "several passkeys; name one");
  EXPECT_TRUE(passkeys.getAssertion(challenge, first->credentialId).has_value());
}

}  // namespace
}  // namespace kovi
