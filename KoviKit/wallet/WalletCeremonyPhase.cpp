#include "KoviKit/wallet/WalletCeremonyPhase.h"

#include "KoviKit/foundation/Localization.h"
#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {
namespace {

struct PhaseText {
  std::string_view title;
  std::string_view message;
};

// Where a phase has one sentence of its own only, that sentence is the
// message and the title is a short heading in the same voice.
PhaseText textOf(WalletCeremonyPhase::Kind kind) {
  using Kind = WalletCeremonyPhase::Kind;
  switch (kind) {
    case Kind::preparing: return {"İşlem hazırlanıyor", "İşlem sunucuda hazırlanıyor; henüz hiçbir şey gönderilmedi."};
    case Kind::awaitingAuthorization: return {"Onayın bekleniyor", "Geçiş anahtarınla işlemi onayla."};
    case Kind::submitting: return {"İşlem gönderiliyor", "Onaylandı; işlem zincire gönderiliyor."};
    case Kind::observing:
      return {"Zincirde doğrulanıyor", "İşlem zincire yazıldı; onay bekleniyor. Bu sırada yeniden imzalanmaz."};
    case Kind::unreconciled:
      return {"İşlemin sonucu inceleniyor",
              "İşlemin sıra numarası kullanılmış ama sonuç henüz doğrulanamadı. Tekrar onaylama; durumu kontrol et."};
    case Kind::confirmed: return {"İşlem tamamlandı", "İşlem zincire yazıldı ve doğrulandı."};
    case Kind::reverted: return {"İşlem geri alındı", "İşlem zincirde geri alındı; hiçbir durum değişmedi."};
    case Kind::replaced:
      return {"İşlem değiştirildi",
              "Aynı sıra numarası başka bir işlemde kullanıldı. Bu işlemi yeniden imzalama; güncel durumu kontrol et."};
    case Kind::expired:
      return {"İşlem süresi doldu", "İşlem süresi doldu. Güncel durumu kontrol edip sonra yeniden deneyebilirsin."};
    case Kind::cancelled: return {"İşlem durduruldu", "İşlem durduruldu. Güncel durumunu kontrol et."};
    case Kind::failed: return {"İşlem tamamlanamadı", kNativeGenericFailureMessage};
  }
  return {"", ""};
}

}  // namespace

std::string_view WalletCeremonyPhase::name() const { return enumName(kind); }

std::string WalletCeremonyPhase::title() const { return localized(textOf(kind).title); }

std::string WalletCeremonyPhase::message() const {
  if (kind == Kind::failed && !failureMessage.empty()) return failureMessage;
  return localized(textOf(kind).message);
}

WalletCeremonyPhase walletCeremonyPhase(V6WalletOperationStatus status) {
  using Kind = WalletCeremonyPhase::Kind;
  switch (status) {
    case V6WalletOperationStatus::prepared: return {Kind::awaitingAuthorization, {}};
    case V6WalletOperationStatus::approved: return {Kind::submitting, {}};
    case V6WalletOperationStatus::submitted: return {Kind::observing, {}};
    case V6WalletOperationStatus::unreconciled: return {Kind::unreconciled, {}};
    case V6WalletOperationStatus::confirmed: return {Kind::confirmed, {}};
    case V6WalletOperationStatus::reverted: return {Kind::reverted, {}};
    case V6WalletOperationStatus::replaced: return {Kind::replaced, {}};
    case V6WalletOperationStatus::expired: return {Kind::expired, {}};
    case V6WalletOperationStatus::cancelled: return {Kind::cancelled, {}};
    case V6WalletOperationStatus::failed: return {Kind::failed, {}};
  }
  return {Kind::failed, {}};
}

}  // namespace kovi
