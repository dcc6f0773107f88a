#include <gtest/gtest.h>

#include <string>
#include <vector>

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

struct RefusalCase {
  std::string type;
  std::string from;  // a piece of the sample, replaced by `to`
  std::string to;
  std::string error;
};

TEST(WorkingWireTest, RefusalsNameTheKeyPath) {
  const std::vector<RefusalCase> cases = {
      {"session", R"("status":"applied")", R"("status":"queued")", R"(commands[0].status: unknown value "queued")"},
      {"command", R"("outcome":"applied")", R"("outcome":"done")", R"(ack.outcome: unknown value "done")"},
      {"room", R"("visibility":{"presence":"progressOnly")", R"("visibility":{"presence":"everything")",
       R"(members[0].visibility.presence: unknown value "everything")"},
      {"cohort", R"("ready":false)", R"("ready":"no")", "members[1].ready: expected a boolean, found a string"},
      {"finalization", R"("nextResultVersion":2)", R"("nextResultVersion":2.5)",
       "reviewDecisions[0].nextResultVersion: expected an integer, found a number"},
      {"device-response", R"("sequence":88,)", "", "device.sequence: missing key"},
      {"detail-response", R"("acc_can":"Can")", R"("acc_can":7)", "memberNames.acc_can: expected a string"},
      {"session", R"("epoch":3,"sequence":12)", R"("epoch":3,"epoch":4,"sequence":12)", "epoch: duplicate key"},
      {"session", R"("recoveredMS":60000)", R"("recoveredMS":3120001)",
       "integrity: Invalid Working integrity millisecond totals"},
      {"session", R"("missingMS":0)", R"("missingMS":-1)", "integrity: Invalid Working integrity millisecond totals"},
      {"session", R"("missingMS":0)", R"("missingMS":9223372036854775807)",
       "integrity: Invalid Working integrity millisecond totals"},
      // Parts passed on unread must still be safe to copy.
      {"detail-response", R"("ownOvertime":{"minutes":12})",
       R"("ownOvertime":)" + std::string(40, '[') + std::string(40, ']'), "ownOvertime: nested deeper than 32"},
  };
  for (const RefusalCase& test : cases) {
    SCOPED_TRACE(test.type + ": " + test.to);
    std::string text = sample(test.type);
    const auto at = text.find(test.from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, test.from.size(), test.to);
    const auto result = recordType(test.type).reencode(text);
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().message().substr(0, test.error.size()), test.error);
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
  struct Case { Outcome outcome; Reason reason; std::string_view kind; std::string_view text; };
  const std::vector<Case> cases = {
      {Outcome::applied, Reason::none, "break", "Mac isteği uyguladı. Bu onay çalışma süresi eklemez."},
      {Outcome::applied, Reason::none, "resume", "Mac devam isteğini onayladı. Yalnızca yeni doğrulanan çalışma sayılır."},
      {Outcome::rejected, Reason::policyRejected, "bypass", "Bu istek, onayladığın oturum kurallarıyla uygulanamadı."},
      {Outcome::rejected, Reason::notReady, "resume", "Mac’in izinlerini ve gereken odak korumalarını kontrol et."},
      {Outcome::rejected, Reason::stateConflict, "break", "Mac’teki oturumu kontrol edip durumu yenile."},
      {Outcome::expired, Reason::deliveryExpired, "break", "Mac’teki oturumu kontrol edip durumu yenile."},
      {Outcome::superseded, Reason::newerCommand, "resume", "Oturuma daha yeni bir istek geldi. Güncel durumu kontrol et."},
  };
  for (const Case& test : cases) {
    const WorkingCommandAcknowledgement ack{"s", "c", "d", 0, 0, test.outcome, test.reason};
    EXPECT_EQ(workingCommandOutcomeText(ack, test.kind), test.text) << enumName(test.outcome) << " " << test.kind;
  }
}

}  // namespace
}  // namespace kovi
