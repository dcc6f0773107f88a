#include "KoviKit/evidence/AttestedEvidenceEnvelope.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/evidence/WalkingTestSupport.h"

namespace kovi {
namespace {

// A three-day envelope of device-key-7 at writer epoch 3.
AttestedEvidenceEnvelope threeDays() {
  auto envelope = decodeJsonText<AttestedEvidenceEnvelope>(testing::evidenceData("envelope.json"));
  EXPECT_TRUE(envelope.has_value()) << envelope.error().message();
  return envelope.value_or(AttestedEvidenceEnvelope{});
}

TEST(AttestedEvidenceEnvelopeTest, CanonicalTextIsWrittenFieldByFieldWithoutWhitespace) {
  const std::string head = R"({"protocolVersion":2,"purpose":"submitWalkingEvidence","appIdentity":"TEAM.app.kovi",)"
                           R"("environment":"development","financialActorId":"actor-1","deviceKeyId":"device-key-7",)"
                           R"("writerEpoch":3,"chainId":8453,"registryAddress":"0xaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa",)"
                           R"("koviId":"42","rulesHash":")" + std::string(64, 'b') + R"(","requestId":"req-1",)"
                           R"("challengeId":"challenge-1","challenge":)";
  const std::string tail = R"(,"evidencePayloadHash":")" + std::string(64, 'c') +
                           R"(","issuedAt":1700000000000,"expiresAt":1700000600000})";
  // envelope-texts.json: challenges and day lists with the canonical text written between head and tail.
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("envelope-texts.json"))) {
    SCOPED_TRACE(example["name"].get<std::string>());
    auto envelope = threeDays();
    envelope.challenge = example["challenge"].get<std::string>();
    envelope.windowIds = example["days"].get<std::vector<std::int64_t>>();
    envelope.expectedRevisions = example["revisions"].get<std::vector<std::int64_t>>();
    envelope.measurementCutoffs = example["cutoffs"].get<std::vector<std::int64_t>>();
    const std::string expected = head + example["expected"].get<std::string>() + tail;
    EXPECT_EQ(envelope.canonicalText(), expected);
    EXPECT_EQ(envelope.clientDataHash(), sha256(expected));
  }
}

// invalid-envelopes.json: changes to the three-day envelope that decode but do not validate, with the field named.
TEST(AttestedEvidenceEnvelopeTest, ValidationNamesTheFieldTheServiceWouldRefuse) {
  ASSERT_TRUE(threeDays().validate().has_value());
  for (const auto& [change, path] : nlohmann::json::parse(testing::evidenceData("invalid-envelopes.json"))
                                        .get<std::vector<std::pair<nlohmann::json, std::string>>>()) {
    SCOPED_TRACE(change.dump());
    auto document = nlohmann::json::parse(testing::evidenceData("envelope.json"));
    document.merge_patch(change);
    const auto envelope = JsonView(document).as<AttestedEvidenceEnvelope>();
    ASSERT_TRUE(envelope.has_value()) << envelope.error().message();
    const auto valid = envelope->validate();
    ASSERT_FALSE(valid.has_value());
    EXPECT_EQ(valid.error().path, path);
  }
}

TEST(AttestedEvidenceEnvelopeTest, HexCheckAcceptsOnlyLowercaseOf64To256Digits) {
  EXPECT_TRUE(isEvidenceHex(std::string(64, 'f')));
  EXPECT_TRUE(isEvidenceHex(std::string(256, '0')));
  EXPECT_FALSE(isEvidenceHex(std::string(257, '0')));
  EXPECT_FALSE(isEvidenceHex(std::string(63, '0') + "g"));
  EXPECT_FALSE(isEvidenceHex(""));
}

TEST(AttestedEvidenceEnvelopeTest, DecodingRefusesMissingAndUnknownFields) {
  auto json = nlohmann::ordered_json::parse(testing::evidenceData("envelope.json"));
  ASSERT_EQ(encodeRecord(threeDays()), json);
  json.erase("challengeId");
  EXPECT_EQ(decodeJsonText<AttestedEvidenceEnvelope>(json.dump()).error().message(), "challengeId: missing key");
  json["challengeId"] = "c";
  json["extra"] = 1;
  EXPECT_EQ(decodeJsonText<AttestedEvidenceEnvelope>(json.dump()).error().message(), "extra: unknown key");
  EXPECT_EQ(decodeJsonText<AttestedEvidenceEnvelope>(R"({"koviId":"1","koviId":"2"})").error().message(),
            "koviId: duplicate key");
}

}  // namespace
}  // namespace kovi
