#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>

#include "KoviKit/native/NativeErrorTable.h"
#include "KoviKit/wallet/V6WalletErrors.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

// error-texts.json: the codes the wallet service answers operations with, and
// the wordings whose letters are easiest to get wrong (typographic apostrophes,
// the invite codes' own texts).
const nlohmann::json kTexts = nlohmann::json::parse(testing::testDataFile("wallet", "error-texts.json"));

// None of the codes falls through to the generic text.
TEST(V6WalletErrorsTest, EveryWalletCodeHasItsOwnText) {
  for (const std::string code : kTexts["ownText"]) {
    EXPECT_TRUE(v6WalletErrorTable().knows(code)) << code;
    EXPECT_NE(v6WalletErrorTable().messageFor(code), kNativeGenericFailureMessage) << code;
  }
  EXPECT_EQ(v6WalletErrorTable().messageFor("wallet_something_new"), kNativeGenericFailureMessage);
  EXPECT_EQ(v6WalletErrorTable().area, "v6/wallet");
}

TEST(V6WalletErrorsTest, WordsTheCodeAsTheServiceMeansIt) {
  for (const auto& [code, text] : kTexts["wordings"].items()) {
    EXPECT_EQ(v6WalletErrorTable().messageFor(code), text.get<std::string>()) << code;
  }
}

}  // namespace
}  // namespace kovi
