#include <gtest/gtest.h>

#include <string>

#include "KoviKit/wallet/V6OperationPresentation.h"
#include "KoviKit/wallet/WalletCeremonyPhase.h"

namespace kovi {
namespace {

using Kind = WalletCeremonyPhase::Kind;
using Status = V6WalletOperationStatus;
using State = V6OperationPresentation::State;

// What the member reads in each phase, and where an operation of each
// status stands.
struct PhaseCase {
  Kind kind;
  std::string title;
  std::string message;
};

void PrintTo(const PhaseCase& example, std::ostream* out) { *out << enumName(example.kind); }

class WalletCeremonyPhaseTextTest : public ::testing::TestWithParam<PhaseCase> {};

TEST_P(WalletCeremonyPhaseTextTest, ShowsThePhasesTexts) {
  const WalletCeremonyPhase phase{GetParam().kind, {}};
  EXPECT_EQ(phase.title(), GetParam().title);
  EXPECT_EQ(phase.message(), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Phases, WalletCeremonyPhaseTextTest,
    ::testing::Values(
        PhaseCase{Kind::preparing, "İşlem hazırlanıyor", "İşlem sunucuda hazırlanıyor; henüz hiçbir şey gönderilmedi."},
        PhaseCase{Kind::awaitingAuthorization, "Onayın bekleniyor", "Geçiş anahtarınla işlemi onayla."},
        PhaseCase{Kind::submitting, "İşlem gönderiliyor", "Onaylandı; işlem zincire gönderiliyor."},
        PhaseCase{Kind::observing, "Zincirde doğrulanıyor",
                  "İşlem zincire yazıldı; onay bekleniyor. Bu sırada yeniden imzalanmaz."},
        PhaseCase{Kind::unreconciled, "İşlemin sonucu inceleniyor",
                  "İşlemin sıra numarası kullanılmış ama sonuç henüz doğrulanamadı. Tekrar onaylama; durumu kontrol et."},
        PhaseCase{Kind::confirmed, "İşlem tamamlandı", "İşlem zincire yazıldı ve doğrulandı."},
        PhaseCase{Kind::reverted, "İşlem geri alındı", "İşlem zincirde geri alındı; hiçbir durum değişmedi."},
        PhaseCase{Kind::replaced, "İşlem değiştirildi",
                  "Aynı sıra numarası başka bir işlemde kullanıldı. Bu işlemi yeniden imzalama; güncel durumu kontrol et."},
        PhaseCase{Kind::expired, "İşlem süresi doldu",
                  "İşlem süresi doldu. Güncel durumu kontrol edip sonra yeniden deneyebilirsin."},
        PhaseCase{Kind::cancelled, "İşlem durduruldu", "İşlem durduruldu. Güncel durumunu kontrol et."},
        PhaseCase{Kind::failed, "İşlem tamamlanamadı", "Şu anda tamamlanamadı. Yenileyip tekrar dene."}));

TEST(WalletCeremonyPhaseTest, AFailureCarriesItsOwnMessage) {
  const auto phase = WalletCeremonyPhase::failed(std::string(walletCeremonyText::preparationFailed));
  EXPECT_EQ(phase.name(), "failed");
  EXPECT_EQ(phase.message(), "İşlem hazırlanamadı, bu yüzden hiçbir şey gönderilmedi. Yeniden dene.");
}

struct StatusCase {
  Status status;
  Kind phase;
  State shown;
  bool open;
};

void PrintTo(const StatusCase& example, std::ostream* out) { *out << enumName(example.status); }

class V6WalletOperationStatusTest : public ::testing::TestWithParam<StatusCase> {};

TEST_P(V6WalletOperationStatusTest, MapsToPhaseAndListState) {
  V6WalletOperation operation;
  operation.status = GetParam().status;
  EXPECT_EQ(walletCeremonyPhase(GetParam().status).kind, GetParam().phase);
  EXPECT_EQ(V6OperationPresentation::state(operation), GetParam().shown);
  EXPECT_EQ(isOpen(GetParam().status), GetParam().open);
}

INSTANTIATE_TEST_SUITE_P(Statuses, V6WalletOperationStatusTest,
                         ::testing::Values(StatusCase{Status::prepared, Kind::awaitingAuthorization, State::awaitingApproval, true},
                                           StatusCase{Status::approved, Kind::submitting, State::pending, true},
                                           StatusCase{Status::submitted, Kind::observing, State::pending, true},
                                           StatusCase{Status::unreconciled, Kind::unreconciled, State::pending, true},
                                           StatusCase{Status::confirmed, Kind::confirmed, State::completed, false},
                                           StatusCase{Status::reverted, Kind::reverted, State::failed, false},
                                           StatusCase{Status::replaced, Kind::replaced, State::closed, false},
                                           StatusCase{Status::expired, Kind::expired, State::closed, false},
                                           StatusCase{Status::cancelled, Kind::cancelled, State::closed, false},
                                           StatusCase{Status::failed, Kind::failed, State::failed, false}));

TEST(V6OperationPresentationTest, NoOperationIsUnknown) {
  EXPECT_EQ(V6OperationPresentation::state(std::nullopt), State::unknown);
}

}  // namespace
}  // namespace kovi
