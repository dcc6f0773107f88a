#include <gtest/gtest.h>

#include <string>

#include "KoviKit/wallet/V6OperationPresentation.h"
#include "KoviKit/wallet/WalletCeremonyPhase.h"

namespace kovi {
namespace {

using Kind = WalletCeremonyPhase::Kind;
using Status = V6WalletOperationStatus;
using State = V6OperationPresentation::State;

TEST(WalletCeremonyPhaseTest, ShowsThePhasesTexts) {
  const struct {
    Kind kind;
    std::string title;
    std::string message;
  } cases[] = {
      {Kind::preparing, "İşlem hazırlanıyor", "İşlem sunucuda hazırlanıyor; henüz hiçbir şey gönderilmedi."},
      {Kind::awaitingAuthorization, "Onayın bekleniyor", "Geçiş anahtarınla işlemi onayla."},
      {Kind::submitting, "İşlem gönderiliyor", "Onaylandı; işlem zincire gönderiliyor."},
      {Kind::observing, "Zincirde doğrulanıyor", "İşlem zincire yazıldı; onay bekleniyor. Bu sırada yeniden imzalanmaz."},
      {Kind::unreconciled, "İşlemin sonucu inceleniyor",
       "İşlemin sıra numarası kullanılmış ama sonuç henüz doğrulanamadı. Tekrar onaylama; durumu kontrol et."},
      {Kind::reverted, "İşlem geri alındı", "İşlem zincirde geri alındı; hiçbir durum değişmedi."},
      {Kind::replaced, "İşlem değiştirildi",
       "Aynı sıra numarası başka bir işlemde kullanıldı. Bu işlemi yeniden imzalama; güncel durumu kontrol et."},
      {Kind::cancelled, "İşlem durduruldu", "İşlem durduruldu. Güncel durumunu kontrol et."},
      {Kind::failed, "İşlem tamamlanamadı", "Şu anda tamamlanamadı. Yenileyip tekrar dene."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(enumName(c.kind));
    const WalletCeremonyPhase phase{c.kind, {}};
    EXPECT_EQ(phase.title(), c.title);
    EXPECT_EQ(phase.message(), c.message);
  }
  // A failure carries its own message.
  const auto failed = WalletCeremonyPhase::failed(std::string(walletCeremonyText::preparationFailed));
  EXPECT_EQ(failed.name(), "failed");
  EXPECT_EQ(failed.message(), "İşlem hazırlanamadı, bu yüzden hiçbir şey gönderilmedi. Yeniden dene.");
}

// Where an operation of each status stands, in the ceremony and in a list.
TEST(V6WalletOperationStatusTest, MapsToPhaseAndListState) {
  const struct {
    Status status;
    Kind phase;
    State shown;
    bool open;
  } cases[] = {{Status::prepared, Kind::awaitingAuthorization, State::awaitingApproval, true},
               {Status::approved, Kind::submitting, State::pending, true},
               {Status::submitted, Kind::observing, State::pending, true},
               {Status::unreconciled, Kind::unreconciled, State::pending, true},
               {Status::confirmed, Kind::confirmed, State::completed, false},
               {Status::reverted, Kind::reverted, State::failed, false},
               {Status::replaced, Kind::replaced, State::closed, false},
               {Status::expired, Kind::expired, State::closed, false},
               {Status::cancelled, Kind::cancelled, State::closed, false},
               {Status::failed, Kind::failed, State::failed, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(enumName(c.status));
    V6WalletOperation operation;
    operation.status = c.status;
    EXPECT_EQ(walletCeremonyPhase(c.status).kind, c.phase);
    EXPECT_EQ(V6OperationPresentation::state(operation), c.shown);
    EXPECT_EQ(isOpen(c.status), c.open);
  }
  EXPECT_EQ(V6OperationPresentation::state(std::nullopt), State::unknown);
}

}  // namespace
}  // namespace kovi
