#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <regex>
#include <string>
#include <vector>

#include "KoviKit/wallet/V6WalletKovi.h"
#include "KoviKit/wallet/V6WalletRequest.h"
#include "KoviKit/wallet/V6WalletResponse.h"
#include "tests/support/Refusal.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

constexpr std::string_view kWalkingRules =
    R"({"mode":"goal","goalMode":"total","durationDays":2,"stepTarget":20000,"exitPenaltyBps":0,)"
    R"("payoutRule":"equalSuccessful","rankPayoutsBps":[],"verificationWindowHours":24})";

V6WalletDraft walkingDraft() {
  auto draft = decodeJsonText<V6WalletDraft>(
      std::string(R"({"domain":"walking","title":"Yürüyüş","salt":"s1","invitees":["a"],"stakeAmount":"0.5",)") +
      R"("capacity":3,"joinDeadline":1700000000,"rules":)" + std::string(kWalkingRules) +
      R"(,"start":{"mode":"walkingFixedStart","startsAt":1700003600}})");
  EXPECT_TRUE(draft.has_value()) << draft.error().message();
  return *draft;
}

// wallet-records.json: service answers refused with the place and reason, and
// registry address / kovi number pairs with the refusal each earns (null: none),
// and requests as they are encoded.
const nlohmann::json kRecords = nlohmann::json::parse(testing::testDataFile("wallet", "wallet-records.json"));

TEST(V6WalletRequestTest, EncodesKeysInOrderAndLeavesAbsentOnesOut) {
  V6WalletRequest status;
  status.action = "operation";
  status.requestId = "r9";

  V6WalletRequest prepare;
  prepare.action = "prepareOperation";
  prepare.requestId = "r1";
  prepare.intent = V6WalletIntent{"create", std::nullopt, walkingDraft(), "digest", std::nullopt, true};

  V6WalletRequest approve;
  approve.action = "approveOperation";
  approve.requestId = "r1";
  approve.assertion = V6WalletStringMap{{"signature", "c2ln"}, {"credentialId", "aWQ"}};

  // Every field set: the order is the request's, not the alphabet's.
  V6WalletRequest every;
  every.action = "x";
  every.requestId = "r";
  every.reference = "KOVI-AAAA";
  every.cursor = "c";
  every.destination = "d";
  every.code = "KOVI-ABCD-EFGH";
  every.address = "0xab";
  every.day = "2026-11-22";
  every.steps = 12000;

  // The intent and the draft in their declared order; the rules as canonical JSON.
  for (const auto& [name, request] : {std::pair{"status", status}, std::pair{"prepare", prepare},
                                      std::pair{"approve", approve}, std::pair{"every", every}}) {
    EXPECT_EQ(encodeV6WalletRequest(request), kRecords["encodedRequests"].at(name).get<std::string>()) << name;
  }
}

TEST(V6WalletRequestTest, RequestIdsAreFreshVersion4Uuids) {
  const std::string first = makeV6WalletRequestId();
  EXPECT_TRUE(std::regex_match(first, std::regex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}")))
      << first;
  EXPECT_NE(first, makeV6WalletRequestId());
}

constexpr std::string_view kHash = "0x00112233445566778899aabbccddeeff00112233445566778899AABBCCDDEEFF";

std::string operationJson(std::string_view status, std::string_view extra = "") {
  return std::string(R"({"requestId":"r1","protocol":"kovi-v6","revision":3,"status":")") + std::string(status) +
         R"(","signed":false,"createdAt":1700000000.25,"expiresAt":1700000900.5,"userOperationHash":")" +
         std::string(kHash) + "\"" + std::string(extra) + "}";
}

TEST(V6WalletOperationTest, DecodesTheServersOperationAndEncodesItBack) {
  const auto decoded = decodeJsonText<V6WalletResponse>(
      R"({"chainTime":"1700000001","operation":)" +
      operationJson("prepared", R"(,"operation":{"sender":"0x1","nonce":"7"},"plan":{"steps":[1,2]},)"
                                R"("review":{"requested":"join","domain":"working","termsHash":"t","join":{"koviId":"5",)"
                                R"("termsHash":"t","recipient":"0x2","inviteEpoch":2,"deadline":99,"nonce":"n",)"
                                R"("signature":"s"}},"newerField":true)") +
      R"(,"somethingNew":1})");
  ASSERT_TRUE(decoded.has_value()) << decoded.error().message();
  const V6WalletOperation& operation = *decoded->operation;
  EXPECT_EQ(operation.status, V6WalletOperationStatus::prepared);
  EXPECT_EQ(operation.expiresAt, 1700000900.5);
  EXPECT_EQ(hexBytes(*operation.userOperationHash).size(), 32u);
  EXPECT_EQ(hexBytes(*operation.userOperationHash).back(), 0xff);
  EXPECT_EQ(operation.review->join->deadline, 99);
  EXPECT_EQ(operation.review->domain, V6WalletDomain::working);
  EXPECT_EQ(operation.operation->at("nonce"), "7");
  // What the store writes reads back as the same operation.
  const auto again = decodeJsonText<V6WalletOperation>(encodeRecord(operation).dump());
  ASSERT_TRUE(again.has_value()) << again.error().message();
  EXPECT_EQ(*again, operation);
}

TEST(V6WalletResponseTest, RefusesWithThePlaceAndReason) {
  using Refusal = std::pair<std::string, std::string>;
  for (const auto& [document, message] : kRecords["refusedResponses"].get<std::vector<Refusal>>()) {
    EXPECT_EQ(testing::refusalOf(decodeJsonText<V6WalletResponse>(document)), message) << document;
  }
}

TEST(V6WalletKoviTest, ChecksRegistryAddressAndKoviNumber) {
  for (const auto& row : kRecords["kovis"]) {
    SCOPED_TRACE(row.dump());
    const std::string koviId = row[1];
    const auto decoded = decodeJsonText<V6WalletKovi>(
        R"({"chainId":84532,"reference":"KOVI-AAAA","registryAddress":")" + row[0].get<std::string>() +
        R"(","koviId":")" + koviId + R"(","domain":"walking","creator":"0x1","termsHash":"t","deploymentFingerprint":"f"})");
    if (row[2].is_null()) {
      ASSERT_TRUE(decoded.has_value()) << decoded.error().message();
      EXPECT_EQ(decoded->koviId.text, koviId);
    } else {
      EXPECT_EQ(testing::refusalOf(decoded), row[2].get<std::string>());
    }
  }
}

TEST(V6WalletDraftTest, ChecksTheRulesWithTheDomainsOwnRules) {
  V6WalletDraft draft = walkingDraft();
  EXPECT_TRUE(checkV6WalletDraft(draft).has_value());
  draft.rules.erase("durationDays");
  EXPECT_EQ(testing::refusalOf(checkV6WalletDraft(draft)), "rules.durationDays: missing key");
  // The same walking rules are not a working rule set.
  draft = walkingDraft();
  draft.domain = V6WalletDomain::working;
  EXPECT_FALSE(checkV6WalletDraft(draft).has_value());
  draft = walkingDraft();
  draft.capacity = 0;
  EXPECT_EQ(checkV6WalletDraft(draft).error().message(), "capacity: must be at least 1");
}

}  // namespace
}  // namespace kovi
