#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KoviKit/wallet/V6WalletDraft.h"
#include "KoviKit/wallet/V6WalletStake.h"
#include "tests/support/Refusal.h"

namespace kovi {
namespace {

TEST(V6StakeTest, AcceptsExactlyTheStakeForm) {
  const std::string plain = "the stake must be a plain decimal number such as 12 or 0.5";
  const struct {
    std::string text;
    std::optional<std::string> refusal;  // absent: accepted
  } cases[] = {
      {"0", std::nullopt}, {"0.5", std::nullopt}, {"999999.000000000000000001", std::nullopt},
      {"0.000000000000000000", std::nullopt}, {"1000000", "the stake must be below 1000000"},
      {"01", "the whole part has a leading zero"}, {"00.5", "the whole part has a leading zero"},
      {"1.", "a decimal point must be followed by digits"}, {"1.0000000000000000001", "at most 18 decimal places"},
      {"", "the stake is empty"}, {".5", plain}, {"-1", plain}, {"1e5", plain}, {" 1", plain}, {"1.2.3", plain},
      // An Arabic-Indic one: a digit, but not an ASCII one.
      {"\xd9\xa1", plain},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE('"' + c.text + '"');
    EXPECT_EQ(V6StakeForm::refusal(c.text), c.refusal);
  }
  // A draft refuses a bad stake at its key.
  EXPECT_EQ(testing::refusalOf(decodeJsonText<V6WalletDraft>(R"({"domain":"walking","title":"t","salt":"s","invitees":[],
      "stakeAmount":"01","capacity":2,"joinDeadline":1,"rules":{}})")),
            "stakeAmount: the whole part has a leading zero");
}

}  // namespace
}  // namespace kovi
