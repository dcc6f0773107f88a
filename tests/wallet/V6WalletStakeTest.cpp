#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KoviKit/wallet/V6WalletDraft.h"
#include "KoviKit/wallet/V6WalletStake.h"

namespace kovi {
namespace {

struct StakeCase {
  std::string text;
  std::optional<std::string> refusal;  // absent: accepted
};

void PrintTo(const StakeCase& example, std::ostream* out) { *out << '"' << example.text << '"'; }

class V6StakeTest : public ::testing::TestWithParam<StakeCase> {};

TEST_P(V6StakeTest, AcceptsExactlyTheStakeForm) {
  EXPECT_EQ(V6StakeForm::refusal(GetParam().text), GetParam().refusal);
}

const std::string kPlain = "the stake must be a plain decimal number such as 12 or 0.5";

INSTANTIATE_TEST_SUITE_P(
    Stakes, V6StakeTest,
    ::testing::Values(StakeCase{"0", std::nullopt}, StakeCase{"0.5", std::nullopt}, StakeCase{"12", std::nullopt},
                      StakeCase{"999999", std::nullopt}, StakeCase{"999999.000000000000000001", std::nullopt},
                      StakeCase{"0.000000000000000000", std::nullopt},
                      StakeCase{"1000000", "the stake must be below 1000000"},
                      StakeCase{"01", "the whole part has a leading zero"},
                      StakeCase{"00.5", "the whole part has a leading zero"},
                      StakeCase{"1.", "a decimal point must be followed by digits"},
                      StakeCase{"1.0000000000000000001", "at most 18 decimal places"},
                      StakeCase{"", "the stake is empty"}, StakeCase{".5", kPlain}, StakeCase{"-1", kPlain},
                      StakeCase{"+1", kPlain}, StakeCase{"1e5", kPlain}, StakeCase{" 1", kPlain},
                      StakeCase{"1,5", kPlain}, StakeCase{"1.2.3", kPlain}, StakeCase{"\xd9\xa1", kPlain}));

TEST(V6WalletDraftTest, RefusesABadStakeAtItsKey) {
  const std::string draft = R"({"domain":"walking","title":"t","salt":"s","invitees":[],"stakeAmount":"01",
      "capacity":2,"joinDeadline":1,"rules":{}})";
  const auto decoded = decodeJsonText<V6WalletDraft>(draft);
  ASSERT_FALSE(decoded.has_value());
  EXPECT_EQ(decoded.error().message(), "stakeAmount: the whole part has a leading zero");
}

}  // namespace
}  // namespace kovi
