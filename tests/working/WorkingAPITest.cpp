#include <gtest/gtest.h>
#include <httplib.h>

#include <mutex>
#include <string>
#include <vector>

#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/working/WorkingAPI.h"
#include "KoviKit/working/WorkingCheckpointSignature.h"
#include "KoviKit/working/WorkingCheckpointWriter.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

constexpr const char* kAppIdentity = "TEAM1234.app.kovi.mac";
constexpr const char* kToken = "token-ada";
constexpr UnixMillis kStart = 1'780'000'000'000;

std::string wireSample(const std::string& name) { return testing::workingDataFile("wire/" + name + ".json"); }

void answerError(httplib::Response& response, int status, const std::string& code) {
  response.status = status;
  response.set_content(R"({"error":")" + code + R"("})", "application/json");
}

// The working service as a Mac meets it: it keeps one session and its
// accepted chain head, takes a checkpoint only when it extends that head and
// its signature checks out against the registered device key, and adds the
// checkpoint's active time; an acknowledgement settles a command only.
class LoopbackWorkingService {
 public:
  explicit LoopbackWorkingService(std::vector<std::uint8_t> devicePublicKey)
      : publicKey_(std::move(devicePublicKey)),
        session_(decodeJsonText<WorkingSessionResponse>(wireSample("session-response")).value().session),
        server_([this](httplib::Server& http) { routes(http); }) {
    session_.sequence = -1;
    session_.headHash = std::string(kWorkingCheckpointGenesisHash);
    session_.totals = {};
    session_.through.reset();
  }

  NativeServiceOrigin origin() const { return server_.serviceOrigin(); }
  std::vector<std::string> paths() const {
    const std::lock_guard lock(mutex_);
    return paths_;
  }

 private:
  void routes(httplib::Server& http) {
    http.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      const std::lock_guard lock(mutex_);
      paths_.push_back(request.method + " " + request.target);
      if (request.get_header_value("Authorization") != std::string("Bearer ") + kToken) {
        answerError(response, 401, "sign_in_required");
        return httplib::Server::HandlerResponse::Handled;
      }
      return httplib::Server::HandlerResponse::Unhandled;
    });
    http.Get("/api/native/working/home", [](const httplib::Request&, httplib::Response& response) {
      response.set_content(wireSample("home-response"), "application/json");
    });
    // Matched on the raw target: the router sees the path percent-decoded.
    http.Get(R"(/api/native/working/rooms/.*)", [](const httplib::Request& request, httplib::Response& response) {
      if (request.target == "/api/native/working/rooms/room_51/finalization") {
        return answerError(response, 409, "working_finalization_not_ready");
      }
      if (request.target != "/api/native/working/rooms/room%2F51%20a") {
        return answerError(response, 404, "working_room_unavailable");
      }
      response.set_content(wireSample("detail-response"), "application/json");
    });
    http.Post("/api/native/working/sessions/ses_8f2c/checkpoints",
              [this](const httplib::Request& request, httplib::Response& response) { checkpoint(request, response); });
    http.Post("/api/native/working/sessions/ses_8f2c/acknowledgements",
              [this](const httplib::Request& request, httplib::Response& response) {
                const std::lock_guard lock(mutex_);
                const auto document = parseJson(request.body);
                if (!document) return answerError(response, 400, "working_start_invalid");
                const auto ack = JsonView(*document).get<WorkingCommandAcknowledgement>("acknowledgement");
                if (!ack) return answerError(response, 400, "working_start_invalid");
                WorkingRemoteCommand::Receipt receipt;
                static_cast<WorkingCommandAcknowledgement&>(receipt) = *ack;
                receipt.signature = JsonView(*document).get<std::string>("signature").value_or("");
                receipt.receivedAt = ack->at + 400;
                if (!recordAcknowledgement(session_, receipt)) return answerError(response, 409, "working_command_expired");
                respondWithSession(response);
              });
  }

  void checkpoint(const httplib::Request& request, httplib::Response& response) {
    const std::lock_guard lock(mutex_);
    const auto upload = decodeJsonText<WorkingSignedCheckpoint>(request.body);
    if (!upload) return answerError(response, 400, "working_start_invalid");
    const WorkingCheckpoint& checkpoint = upload->checkpoint;
    if (checkpoint.sequence != session_.sequence + 1 || checkpoint.previousHash != session_.headHash ||
        checkpoint.epoch != session_.epoch || checkpoint.deviceID != session_.deviceID) {
      return answerError(response, 409, "working_session_conflict");
    }
    const auto counter = verifyWorkingCheckpointSignature(*upload, {checkpoint.deviceID, kAppIdentity, publicKey_});
    if (!counter || *counter <= lastCounter_) return answerError(response, 400, "working_verifier_signature_invalid");
    lastCounter_ = *counter;
    for (const auto& segment : checkpoint.segments) {
      if (segment.kind == WorkingTimeSegment::Kind::active) session_.totals.active += segment.end - segment.start;
      session_.through = segment.end;
    }
    session_.sequence = checkpoint.sequence;
    session_.headHash = workingCheckpointHash(checkpoint);
    session_.completed = checkpoint.final;
    respondWithSession(response);
  }

  void respondWithSession(httplib::Response& response) {
    response.set_content(encodeRecord(WorkingSessionResponse{session_}).dump(), "application/json");
  }

  std::vector<std::uint8_t> publicKey_;
  mutable std::mutex mutex_;
  WorkingRemoteSession session_;
  std::uint32_t lastCounter_ = 0;
  std::vector<std::string> paths_;
  testing::LoopbackServer server_;
};

TEST(WorkingAPITest, CheckpointsExtendTheServiceChainAndAcknowledgementsAddNoTime) {
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), kAppIdentity);
  const std::string keyId = keys.generateKey().value();
  LoopbackWorkingService service(keys.publicKey(keyId).value());
  WorkingAPI api(service.origin());
  WorkingCheckpointWriter writer("ses_8f2c", "dev_mac_1", 3, keys, keyId);

  const std::vector<WorkingTimeSegment> timeline = {{kStart, kStart + 60'000, WorkingTimeSegment::Kind::active},
                                                    {kStart + 60'000, kStart + 90'000, WorkingTimeSegment::Kind::idle}};
  const auto first = writer.write(timeline, kStart + 45'000, 45'000, false).value();
  const auto second = writer.write(timeline, kStart + 90'000, 90'000, true).value();

  // The second checkpoint before the first does not extend the head.
  const auto early = api.submitCheckpoint(second, kToken);
  ASSERT_FALSE(early.has_value());
  EXPECT_EQ(early.error().code(), "working_session_conflict");
  EXPECT_EQ(api.message(early.error()), "Oturum başka bir yerde değişti. Güncel durumu yenileyip tekrar dene.");

  ASSERT_TRUE(api.submitCheckpoint(first, kToken).has_value());
  const auto accepted = api.submitCheckpoint(second, kToken);
  ASSERT_TRUE(accepted.has_value()) << api.message(accepted.error());
  EXPECT_EQ(accepted->session.totals.active, 60'000);
  EXPECT_EQ(accepted->session.headHash, workingCheckpointHash(second.checkpoint));
  EXPECT_TRUE(accepted->session.completed);

  // A replayed checkpoint is refused: it no longer extends the head.
  EXPECT_EQ(api.submitCheckpoint(second, kToken).error().code(), "working_session_conflict");

  const WorkingCommandAcknowledgement ack{"ses_8f2c", "cmd_41", "dev_mac_1", 3, kStart + 95'000,
                                          WorkingCommandAcknowledgement::Outcome::applied,
                                          WorkingCommandAcknowledgement::Reason::none};
  const auto acknowledged = api.acknowledgeCommand(ack, "c2ln", kToken);
  ASSERT_TRUE(acknowledged.has_value()) << api.message(acknowledged.error());
  EXPECT_EQ(acknowledged->session.totals, accepted->session.totals);
  EXPECT_EQ(acknowledged->session.commands[0].ack->receivedAt, kStart + 95'400);
}

TEST(WorkingAPITest, ReadsAnswersAndWordsServiceCodes) {
  LoopbackWorkingService service({});
  WorkingAPI api(service.origin());

  const auto home = api.home(kToken);
  ASSERT_TRUE(home.has_value()) << api.message(home.error());
  EXPECT_EQ(*home, decodeJsonText<WorkingHomeResponse>(wireSample("home-response")).value());
  EXPECT_EQ(home->sessions.at(0).commands.at(0).ack->outcome, WorkingCommandAcknowledgement::Outcome::applied);

  // Identifiers are one path segment whatever they hold.
  const auto room = api.room("room/51 a", kToken);
  ASSERT_TRUE(room.has_value()) << api.message(room.error());
  EXPECT_EQ(room->memberNames->at("acc_can"), "Can");

  const auto notReady = api.finalization("room_51", kToken);
  ASSERT_FALSE(notReady.has_value());
  EXPECT_EQ(api.message(notReady.error()), "Sonuç henüz hesaplanmadı. Kovi bitip kayıt süresi dolunca yeniden bak.");

  const auto signedOut = api.home(std::nullopt);
  ASSERT_FALSE(signedOut.has_value());
  EXPECT_EQ(signedOut.error(), NativeAccountError::signInRequired());

  EXPECT_EQ(service.paths(), (std::vector<std::string>{"GET /api/native/working/home",
                                                       "GET /api/native/working/rooms/room%2F51%20a",
                                                       "GET /api/native/working/rooms/room_51/finalization",
                                                       "GET /api/native/working/home"}));
}

}  // namespace
}  // namespace kovi
