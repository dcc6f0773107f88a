// Wallet operations end to end: the ceremony over the real transport against
// a loopback wallet service that verifies every passkey approval, with the
// software passkey and the operation store on real files.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "KoviKit/attest/SoftwarePasskeyService.h"
#include "KoviKit/wallet/V6WalletOperations.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/wallet/LoopbackWalletService.h"

namespace kovi {
namespace {

using Kind = WalletCeremonyPhase::Kind;
using Status = V6WalletOperationStatus;
using testing::LoopbackWalletService;
using testing::WalletChainScript;

constexpr double kStart = 1'800'000'000;
const PasskeyRelyingParty kParty{"kovi.test", "https://kovi.test"};

// The member's passkey, counted, and able to stand for a member who takes
// their time at the prompt or dismisses it.
class CountingPasskeys final : public PasskeyService {
 public:
  explicit CountingPasskeys(PasskeyService& real) : real_(real) {}

  std::expected<PasskeyCredential, AppAttestError> createCredential() override { return real_.createCredential(); }
  std::expected<PasskeyAssertion, AppAttestError> getAssertion(std::span<const std::uint8_t> challenge,
                                                               const std::optional<std::string>& credentialId) override {
    ++asked;
    if (whileAsked) whileAsked();
    if (declines) return std::unexpected(AppAttestError{std::string(passkeyErrorCode::cancelled), "dismissed"});
    return real_.getAssertion(challenge, credentialId);
  }

  int asked = 0;
  bool declines = false;
  std::function<void()> whileAsked;

 private:
  PasskeyService& real_;
};

class V6WalletOperationsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto made = software_.createCredential();
    ASSERT_TRUE(made.has_value()) << made.error().detail;
    credential_ = *made;
  }

  // A service with `script`, and the member's operations against it.
  void serve(WalletChainScript script) {
    service_ = std::make_unique<LoopbackWalletService>(credential_, kParty, std::move(script), [this] { return now_.load(); });
    api_ = std::make_unique<V6WalletAPI>(service_->origin());
    V6WalletOperationsOptions options;
    options.member = "member-7";
    options.token = "session-token";
    options.ceremony.fence = [this] { return ++fenceChecks_ < fenceTripsAt_; };
    options.ceremony.pollInterval = std::chrono::milliseconds(1500);
    options.ceremony.pollLimit = 4;
    options.ceremony.now = [this] { return now_.load(); };
    options.ceremony.sleep = [this](std::chrono::milliseconds wait) { now_ = now_ + static_cast<double>(wait.count()) / 1000.0; };
    options.ceremony.phaseObserver = [this](const WalletCeremonyPhase& phase, const std::optional<V6WalletOperation>&) {
      phases_.push_back(std::string(phase.name()));
    };
    operations_ = std::make_unique<V6WalletOperations>(*api_, store_, passkeys_, std::move(options));
  }

  static V6WalletIntent joinIntent() { return {"join", "KOVI-7Q2M-XRP4", std::nullopt, "digest-1", std::nullopt, true}; }

  std::optional<V6WalletOperation> kept() { return store_.load("member-7").value_or(std::nullopt); }

  testing::TemporaryDirectory directory_;
  SoftwarePasskeyService software_{directory_.path(), kParty};
  CountingPasskeys passkeys_{software_};
  PasskeyCredential credential_;
  V6WalletOperationStore store_{directory_.path()};
  std::atomic<double> now_{kStart};
  int fenceChecks_ = 0;
  int fenceTripsAt_ = 1'000'000;
  std::vector<std::string> phases_;
  std::unique_ptr<LoopbackWalletService> service_;
  std::unique_ptr<V6WalletAPI> api_;
  std::unique_ptr<V6WalletOperations> operations_;
};

struct ChainCase {
  std::string name;
  std::vector<Status> afterSubmission;
  Kind ending;
  std::vector<std::string> phases;
};

void PrintTo(const ChainCase& example, std::ostream* out) { *out << example.name; }

class V6WalletChainOutcomeTest : public V6WalletOperationsTest, public ::testing::WithParamInterface<ChainCase> {};

TEST_P(V6WalletChainOutcomeTest, SignsOnceSubmitsOnceAndEndsAsTheChainSays) {
  serve({GetParam().afterSubmission});
  const auto outcome = operations_->start(joinIntent());

  EXPECT_EQ(outcome.phase.kind, GetParam().ending) << outcome.phase.message();
  EXPECT_EQ(phases_, GetParam().phases);
  EXPECT_EQ(passkeys_.asked, 1);
  EXPECT_EQ(service_->record().approvals, 1);
  EXPECT_EQ(service_->record().contributions, 1);
  ASSERT_TRUE(kept().has_value());
  EXPECT_EQ(*kept(), *outcome.operation);
  EXPECT_FALSE(isOpen(kept()->status));

  // Nothing is signed or sent again for a finished operation, a replaced
  // one included.
  EXPECT_EQ(operations_->resubmit().phase.kind, Kind::failed);
  EXPECT_EQ(passkeys_.asked, 1);
  EXPECT_EQ(service_->record().contributions, 1);
}

const std::vector<std::string> kToObserving{"preparing", "awaitingAuthorization", "submitting", "observing"};

std::vector<std::string> then(std::vector<std::string> phases, std::initializer_list<std::string> more) {
  phases.insert(phases.end(), more);
  return phases;
}

// Reverted ends like replaced: the status decides the phase (read in the
// phase tests); the ceremony only has to stop on it.
INSTANTIATE_TEST_SUITE_P(
    Chain, V6WalletChainOutcomeTest,
    ::testing::Values(ChainCase{"confirmed", {Status::submitted, Status::confirmed}, Kind::confirmed, then(kToObserving, {"confirmed"})},
                      ChainCase{"replaced", {Status::replaced}, Kind::replaced, then(kToObserving, {"replaced"})},
                      ChainCase{"unreconciledThenConfirmed",
                                {Status::unreconciled, Status::unreconciled, Status::confirmed},
                                Kind::confirmed,
                                then(kToObserving, {"unreconciled", "confirmed"})}),
    [](const ::testing::TestParamInfo<ChainCase>& info) { return info.param.name; });

TEST_F(V6WalletOperationsTest, ExpiresBeforeSubmissionWhenTheMemberTakesTooLong) {
  serve({{Status::confirmed}, 60});
  passkeys_.whileAsked = [this] { now_ = now_ + 61; };
  const auto outcome = operations_->start(joinIntent());
  EXPECT_EQ(outcome.phase.kind, Kind::expired);
  EXPECT_EQ(outcome.phase.message(), "İşlem süresi doldu. Güncel durumu kontrol edip sonra yeniden deneyebilirsin.");
  EXPECT_EQ(service_->record().approvals, 0);
  EXPECT_EQ(service_->record().contributions, 0);
  EXPECT_EQ(service_->record().actions, (std::vector<std::string>{"prepareOperation"}));
}

TEST_F(V6WalletOperationsTest, ASecondActionWhileOneIsOpenIsRefusedWithoutAskingThePasskey) {
  serve({});  // the chain never answers: the operation stays submitted
  const auto first = operations_->start(joinIntent());
  EXPECT_EQ(first.phase.kind, Kind::observing);
  ASSERT_TRUE(kept().has_value());
  EXPECT_EQ(kept()->status, Status::submitted);

  const auto second = operations_->start({"leave", "KOVI-7Q2M-XRP4", std::nullopt, "digest-2", std::nullopt, true});
  EXPECT_EQ(second.phase.kind, Kind::failed);
  EXPECT_EQ(second.phase.message(), "Önce bekleyen işlemin sonucunu kontrol et; yeni bir işlemi imzalama.");
  EXPECT_EQ(passkeys_.asked, 1);
  const auto actions = service_->record().actions;
  EXPECT_EQ(std::count(actions.begin(), actions.end(), "prepareOperation"), 1);
  EXPECT_EQ(second.operation, kept());
}

TEST_F(V6WalletOperationsTest, ALostSubmissionAnswerIsFoundSubmittedAndResentWithoutASecondContribution) {
  serve({{Status::submitted, Status::confirmed}, 900, /*loseSubmissionAnswer=*/true});
  const auto lost = operations_->start(joinIntent());
  EXPECT_EQ(lost.phase.kind, Kind::failed);
  EXPECT_EQ(lost.phase.message(),
            "Gönderim sonucu henüz doğrulanamadı. Aynı onaylı işlemi yeniden gönderebilirsin; ikinci bir katkı oluşmaz.");
  ASSERT_TRUE(kept().has_value());
  EXPECT_EQ(kept()->status, Status::approved);
  const std::string requestId = kept()->requestId;

  // The status check reads the same operation: the service did submit it.
  const auto status = operations_->checkStatus();
  ASSERT_TRUE(status.has_value());
  EXPECT_EQ(status->phase.kind, Kind::observing);
  EXPECT_EQ(status->operation->requestId, requestId);
  EXPECT_EQ(service_->record().contributions, 1);

  // Sent again (as after a status check that still found it approved), it
  // keeps its request id and the chain counts it once.
  ASSERT_TRUE(store_.save("member-7", *lost.operation).has_value());
  const auto resent = operations_->resubmit();
  EXPECT_EQ(resent.phase.kind, Kind::confirmed) << resent.phase.message();
  EXPECT_EQ(resent.operation->requestId, requestId);
  EXPECT_EQ(service_->record().contributions, 1);
  EXPECT_EQ(passkeys_.asked, 1);
}

struct FenceCase {
  std::string name;
  int tripsAt;  // the fence check that finds the account changed
  int passkeyAsked;
  int approvals;
  std::vector<std::string> actions;
};

void PrintTo(const FenceCase& example, std::ostream* out) { *out << example.name; }

class V6WalletFenceTest : public V6WalletOperationsTest, public ::testing::WithParamInterface<FenceCase> {};

TEST_P(V6WalletFenceTest, AChangedAccountStopsTheCeremonyBeforeTheNextStep) {
  fenceTripsAt_ = GetParam().tripsAt;
  serve({{Status::confirmed}});
  const auto outcome = operations_->start(joinIntent());
  EXPECT_EQ(outcome.phase.kind, Kind::failed);
  EXPECT_EQ(outcome.phase.message(), "Hesap veya oturum değişti. İşlemin güncel durumunu kontrol et.");
  EXPECT_EQ(passkeys_.asked, GetParam().passkeyAsked);
  EXPECT_EQ(service_->record().approvals, GetParam().approvals);
  EXPECT_EQ(service_->record().actions, GetParam().actions);
  EXPECT_EQ(service_->record().contributions, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Fence, V6WalletFenceTest,
    ::testing::Values(FenceCase{"beforePreparing", 1, 0, 0, {}},
                      FenceCase{"beforeThePasskey", 2, 0, 0, {"prepareOperation"}},
                      FenceCase{"beforeApproving", 3, 1, 0, {"prepareOperation"}},
                      FenceCase{"beforeSubmitting", 4, 1, 1, {"prepareOperation", "approveOperation"}}),
    [](const ::testing::TestParamInfo<FenceCase>& info) { return info.param.name; });

TEST_F(V6WalletOperationsTest, DismissingThePasskeyCancelsAndTheServiceDropsThePreparedOperation) {
  serve({{Status::confirmed}});
  passkeys_.declines = true;
  const auto outcome = operations_->start(joinIntent());
  EXPECT_EQ(outcome.phase.kind, Kind::cancelled);
  EXPECT_EQ(service_->record().actions, (std::vector<std::string>{"prepareOperation"}));

  // The prepared operation holds the member back until the service drops it.
  EXPECT_EQ(operations_->start(joinIntent()).phase.kind, Kind::failed);
  const auto dropped = operations_->cancel();
  EXPECT_EQ(dropped.phase.kind, Kind::cancelled);
  EXPECT_EQ(kept()->status, Status::cancelled);
  // Only a prepared operation can be dropped.
  EXPECT_EQ(operations_->cancel().phase.kind, Kind::failed);
  passkeys_.declines = false;
  EXPECT_EQ(operations_->start(joinIntent()).phase.kind, Kind::confirmed);
}

TEST_F(V6WalletOperationsTest, AnAssertionForAnotherRelyingPartyIsRefusedByTheService) {
  testing::TemporaryDirectory elsewhere;
  SoftwarePasskeyService stranger(elsewhere.path(), {"evil.test", "https://evil.test"});
  auto strangerKey = stranger.createCredential();
  ASSERT_TRUE(strangerKey.has_value());
  // The service knows the member's passkey; the device signs with another.
  CountingPasskeys wrong(stranger);
  service_ = nullptr;
  serve({{Status::confirmed}});
  V6WalletOperationsOptions options;
  options.member = "member-8";
  options.ceremony.now = [this] { return now_.load(); };
  V6WalletOperations impostor(*api_, store_, wrong, std::move(options));
  const auto outcome = impostor.start(joinIntent());
  EXPECT_EQ(outcome.phase.kind, Kind::failed);
  EXPECT_EQ(service_->record().lastRefusal, "invalid_wallet_signature");
  EXPECT_EQ(outcome.phase.message(), "Geçiş anahtarı onayı doğrulanamadı. İşlemi baştan başlatıp yeniden onayla.");
  EXPECT_EQ(service_->record().contributions, 0);
}

}  // namespace
}  // namespace kovi
