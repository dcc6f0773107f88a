#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/wallet/V6WalletOperation.h"

namespace kovi {

// Where a wallet operation's ceremony stands, with what the member reads.
struct WalletCeremonyPhase {
  enum class Kind {
    preparing,
    awaitingAuthorization,
    submitting,
    observing,
    unreconciled,
    confirmed,
    reverted,
    replaced,
    expired,
    cancelled,
    failed,
  };

  Kind kind = Kind::preparing;
  // Only for `failed`: why, in the member's words.
  std::string failureMessage;

  static WalletCeremonyPhase failed(std::string message) { return {Kind::failed, std::move(message)}; }

  // "observing"
  std::string_view name() const;
  // The heading: "Zincirde doğrulanıyor".
  std::string title() const;
  // The sentence under it: "İşlem zincire yazıldı; onay bekleniyor. …".
  std::string message() const;

  bool operator==(const WalletCeremonyPhase&) const = default;
};

template <>
struct EnumNames<WalletCeremonyPhase::Kind> {
  using Kind = WalletCeremonyPhase::Kind;
  static constexpr std::array table{
      std::pair{Kind::preparing, std::string_view("preparing")},
      std::pair{Kind::awaitingAuthorization, std::string_view("awaitingAuthorization")},
      std::pair{Kind::submitting, std::string_view("submitting")},
      std::pair{Kind::observing, std::string_view("observing")},
      std::pair{Kind::unreconciled, std::string_view("unreconciled")},
      std::pair{Kind::confirmed, std::string_view("confirmed")},
      std::pair{Kind::reverted, std::string_view("reverted")},
      std::pair{Kind::replaced, std::string_view("replaced")},
      std::pair{Kind::expired, std::string_view("expired")},
      std::pair{Kind::cancelled, std::string_view("cancelled")},
      std::pair{Kind::failed, std::string_view("failed")},
  };
};

// The phase an operation of this status is in: prepared → awaiting
// authorisation, approved → submitting, submitted → observing, the rest
// the phase of the same name (a failed operation with the generic text).
WalletCeremonyPhase walletCeremonyPhase(V6WalletOperationStatus status);

// The member's texts that are not a phase's own.
namespace walletCeremonyText {
// A changed account or session stopped the ceremony.
inline constexpr std::string_view fenceTripped = "Hesap veya oturum değişti. İşlemin güncel durumunu kontrol et.";
// The server could not prepare the operation.
inline constexpr std::string_view preparationFailed =
    "İşlem hazırlanamadı, bu yüzden hiçbir şey gönderilmedi. Yeniden dene.";
// Checking the status.
inline constexpr std::string_view statusCheck =
    "Durumu kontrol etmek aynı işlemi okur; yeni katkı başlatmaz. Sonuç kesinleşene kadar işlemi başarısız sayma ve "
    "yeni katkı gönderme.";
// The answer to a submission was lost.
inline constexpr std::string_view submissionUnconfirmed =
    "Gönderim sonucu henüz doğrulanamadı. Aynı onaylı işlemi yeniden gönderebilirsin; ikinci bir katkı oluşmaz.";
}  // namespace walletCeremonyText

}  // namespace kovi
