#include "KoviKit/working/WorkingCommandOutcome.h"

namespace kovi {

std::string_view workingCommandOutcomeText(const WorkingCommandAcknowledgement& acknowledgement,
                                           std::string_view kind) {
  using Outcome = WorkingCommandAcknowledgement::Outcome;
  using Reason = WorkingCommandAcknowledgement::Reason;
  switch (acknowledgement.outcome) {
    case Outcome::applied:
      if (kind == kWorkingResumeCommandKind) {
        return "Mac devam isteğini onayladı. Yalnızca yeni doğrulanan çalışma sayılır.";
      }
      return "Mac isteği uyguladı. Bu onay çalışma süresi eklemez.";
    case Outcome::superseded: return "Oturuma daha yeni bir istek geldi. Güncel durumu kontrol et.";
    case Outcome::rejected:
      if (acknowledgement.reason == Reason::policyRejected) {
        return "Bu istek, onayladığın oturum kurallarıyla uygulanamadı.";
      }
      if (acknowledgement.reason == Reason::notReady) return "Mac’in izinlerini ve gereken odak korumalarını kontrol et.";
      break;
    case Outcome::expired: break;
  }
  // An expired delivery, a state conflict or a rejection without a stated
  // cause: the Mac's own view of the session is what to look at.
  return "Mac’teki oturumu kontrol edip durumu yenile.";
}

}  // namespace kovi
