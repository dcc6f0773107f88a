#include <gtest/gtest.h>

#include <string>

#include "KoviKit/working/WorkingCommandOutcome.h"
#include "KoviKit/working/WorkingRemoteSession.h"
#include "KoviKit/working/WorkingWireRecords.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

std::string sample(std::string_view type) {
  return testing::workingDataFile("wire/" + std::string(type) + ".json");
}

const WorkingWireRecordType& recordType(std::string_view name) {
  const auto* type = findWorkingWireRecordType(name);
  if (type == nullptr) throw std::runtime_error("no wire record " + std::string(name));
  return *type;
}

// Every record's sample, written in declared key order with its optionals
// set, decodes and encodes back to the same bytes; a key the service added
// later is ignored.
TEST(WorkingWireTest, EveryRecordRoundTripsItsSample) {
  for (const WorkingWireRecordType& type : workingWireRecordTypes()) {
    SCOPED_TRACE(type.name);
    const std::string text = sample(type.name);
    const auto encoded = type.reencode(text);
    ASSERT_TRUE(encoded.has_value()) << encoded.error().message();
    EXPECT_EQ(encoded->dump(), text);

    const std::string extended = "{\"addedLater\":{\"x\":[1]}," + text.substr(1);
    const auto lenient = type.reencode(extended);
    ASSERT_TRUE(lenient.has_value()) << lenient.error().message();
    EXPECT_EQ(lenient->dump(), text);
  }
}

// Each row of wire-refusals.json replaces a piece of a record's sample; parts
// passed on unread must still be safe to copy.
TEST(WorkingWireTest, RefusalsNameTheKeyPath) {
  const auto cases = nlohmann::json::parse(testing::workingDataFile("wire-refusals.json"));
  ASSERT_EQ(cases.size(), 12U);
  for (const auto& test : cases) {
    const std::string type = test.at("type"), from = test.at("from"), to = test.at("to"), error = test.at("error");
    SCOPED_TRACE(type + ": " + to);
    std::string text = sample(type);
    const auto at = text.find(from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, from.size(), to);
    const auto result = recordType(type).reencode(text);
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().message().substr(0, error.size()), error);
  }
}

TEST(WorkingWireTest, NullAndAbsentOptionalsReadAsNoValue) {
  std::string text = sample("command");
  const std::string present = R"("deviceID":"dev_mac_1",)";
  text.replace(text.find(present), present.size(), R"("deviceID":null,)");
  const auto command = decodeJsonText<WorkingRemoteCommand>(text);
  ASSERT_TRUE(command.has_value()) << command.error().message();
  EXPECT_EQ(command->deviceID, std::nullopt);
  EXPECT_EQ(command->epoch, 3);
  EXPECT_EQ(encodeRecord(*command).dump().find("\"deviceID\":null"), std::string::npos);
}

WorkingRemoteSession sampleSession() {
  auto session = decodeJsonText<WorkingRemoteSession>(sample("session"));
  if (!session) throw std::runtime_error(session.error().message());
  return *session;
}

WorkingRemoteCommand::Receipt receiptFor(const WorkingRemoteSession& session, std::string commandID,
                                         WorkingCommandAcknowledgement::Outcome outcome,
                                         WorkingCommandAcknowledgement::Reason reason) {
  WorkingRemoteCommand::Receipt receipt;
  static_cast<WorkingCommandAcknowledgement&>(receipt) = {session.id, std::move(commandID), session.deviceID,
                                                          session.epoch, 1'780'003'730'000, outcome, reason};
  receipt.signature = "c2lnbmF0dXJl";
  receipt.receivedAt = 1'780'003'731'000;
  return receipt;
}

// A break (cmd_41, applied) and then a resume (cmd_42, pending): the Mac
// answers the break as superseded by the newer command.
TEST(WorkingWireTest, SupersededCommandLeavesTheNewerOneInForce) {
  using Outcome = WorkingCommandAcknowledgement::Outcome;
  using Reason = WorkingCommandAcknowledgement::Reason;
  WorkingRemoteSession session = sampleSession();
  WorkingRemoteCommand resume;
  resume.id = "cmd_42";
  resume.kind = "resume";
  resume.at = session.commands[0].at + 5'000;
  resume.expiresAt = resume.at + 60'000;
  session.commands.push_back(resume);
  const UnixMillis now = resume.at + 1'000;
  ASSERT_EQ(commandInForce(session, now)->id, "cmd_42");

  const WorkingRemoteSession before = session;
  ASSERT_TRUE(recordAcknowledgement(session, receiptFor(session, "cmd_41", Outcome::superseded, Reason::newerCommand)));
  EXPECT_EQ(session.commands[0].status, WorkingRemoteCommand::Status::superseded);
  EXPECT_EQ(commandInForce(session, now)->id, "cmd_42");
  // After the resume's delivery window, a pending resume no longer holds.
  EXPECT_EQ(commandInForce(session, resume.expiresAt), nullptr);

  ASSERT_TRUE(recordAcknowledgement(session, receiptFor(session, "cmd_42", Outcome::applied, Reason::none)));
  EXPECT_EQ(commandInForce(session, resume.expiresAt)->id, "cmd_42");
  // Acknowledgements change commands only: no time, no chain head.
  EXPECT_EQ(session.totals, before.totals);
  EXPECT_EQ(session.through, before.through);
  EXPECT_EQ(session.headHash, before.headHash);
  EXPECT_EQ(session.sequence, before.sequence);

  // The newest command cannot be superseded by a newer one it does not have.
  const auto refused =
      recordAcknowledgement(session, receiptFor(session, "cmd_42", Outcome::superseded, Reason::newerCommand));
  ASSERT_FALSE(refused.has_value());
  EXPECT_EQ(session.commands[1].status, WorkingRemoteCommand::Status::applied);
}

TEST(WorkingWireTest, AcknowledgementsForAnotherSessionAreRefused) {
  using Outcome = WorkingCommandAcknowledgement::Outcome;
  using Reason = WorkingCommandAcknowledgement::Reason;
  WorkingRemoteSession session = sampleSession();
  auto otherEpoch = receiptFor(session, "cmd_41", Outcome::rejected, Reason::notReady);
  otherEpoch.epoch = session.epoch + 1;
  auto otherSession = receiptFor(session, "cmd_41", Outcome::rejected, Reason::notReady);
  otherSession.sessionID = "ses_other";
  for (const auto& receipt : {otherEpoch, otherSession, receiptFor(session, "cmd_99", Outcome::applied, Reason::none)}) {
    const WorkingRemoteSession before = session;
    EXPECT_FALSE(recordAcknowledgement(session, receipt).has_value());
    EXPECT_EQ(session, before);
  }
}

TEST(WorkingWireTest, PhoneTextsFollowOutcomeAndReason) {
  using Outcome = WorkingCommandAcknowledgement::Outcome;
  using Reason = WorkingCommandAcknowledgement::Reason;
  const auto cases = nlohmann::json::parse(testing::workingDataFile("phone-texts.json"));
  ASSERT_EQ(cases.size(), 7U);
  for (const auto& test : cases) {
    const std::string kind = test.at("kind");
    SCOPED_TRACE(test.dump());
    const auto outcome = enumFromName<Outcome>(test.at("outcome").get<std::string>());
    const auto reason = enumFromName<Reason>(test.at("reason").get<std::string>());
    ASSERT_TRUE(outcome && reason);
    const WorkingCommandAcknowledgement ack{"s", "c", "d", 0, 0, *outcome, *reason};
    EXPECT_EQ(workingCommandOutcomeText(ack, kind), test.at("text").get<std::string>());
  }
}

}  // namespace
}  // namespace kovi
