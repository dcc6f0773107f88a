#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

#include "KoviKit/wallet/V6WalletDraft.h"
#include "KoviKit/wallet/V6WalletStake.h"
#include "tests/support/Refusal.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

TEST(V6StakeTest, AcceptsExactlyTheStakeForm) {
  // stake-forms.json: stake texts with the refusal each earns (null: accepted; "plain": the plain-decimal one).
  // The last is an Arabic-Indic one: a digit, but not an ASCII one.
  for (const auto& row : nlohmann::json::parse(testing::testDataFile("wallet", "stake-forms.json"))) {
    SCOPED_TRACE(row.dump());
    const auto refusal = row[1].is_null() ? std::nullopt
                         : row[1] == "plain"
                             ? std::optional<std::string>("the stake must be a plain decimal number such as 12 or 0.5")
                             : std::optional(row[1].get<std::string>());
    EXPECT_EQ(V6StakeForm::refusal(row[0].get<std::string>()), refusal);
  }
  // A draft refuses a bad stake at its key.
  EXPECT_EQ(testing::refusalOf(decodeJsonText<V6WalletDraft>(R"({"domain":"walking","title":"t","salt":"s","invitees":[],
      "stakeAmount":"01","capacity":2,"joinDeadline":1,"rules":{}})")),
            "stakeAmount: the whole part has a leading zero");
}

}  // namespace
}  // namespace kovi
