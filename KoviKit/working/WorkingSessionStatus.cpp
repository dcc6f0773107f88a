#include "KoviKit/working/WorkingSessionStatus.h"

#include <algorithm>

namespace kovi {
namespace {

using State = WorkingSessionState;
using Reason = WorkingSuspensionReason;

constexpr std::string_view kWaitingForStart = "Başlangıç bekleniyor";
constexpr std::string_view kCannotVerify = "Doğrulanamıyor";
constexpr std::string_view kMacCounting = "Mac’in kaydettiği süre sayılıyor.";
constexpr std::string_view kWaitingForMac = "Mac hazır olunca çalışma başlar. Henüz süre sayılmıyor.";
constexpr std::string_view kPaused =
    "Şu an çalışma sayılmıyor. Devam ettiğinde yalnızca yeni doğrulanan süre eklenir.";
constexpr std::string_view kVerificationStale =
    "Son doğrulama güncel değil. Bu aralıkta geçen süre kabul edilene kadar sayılmaz.";
constexpr std::string_view kPomodoroBreak = "Pomodoro · planlı mola";
constexpr std::string_view kPomodoroWork = "Pomodoro · çalışma aralığı";

bool pomodoroPhaseShown(const WorkingSessionEngine& engine) {
  return engine.policy().pomodoro && !engine.pastHardWindow();
}

}  // namespace

std::optional<std::string_view> workingSessionStatusLine(const WorkingSessionEngine& engine) {
  switch (engine.state()) {
    case State::preparing:
      return workingBlockingReasons(engine.policy(), engine.readiness()).empty() ? kWaitingForStart : kWaitingForMac;
    case State::active:
      if (engine.pastHardWindow()) return kPaused;
      if (engine.offlineBeyondLimit()) return kVerificationStale;
      if (engine.scheduledBreakActive()) return kPomodoroBreak;
      return pomodoroPhaseShown(engine) ? kPomodoroWork : kMacCounting;
    case State::possibleIdle:
      return engine.scheduledBreakActive() ? kPomodoroBreak : kPaused;
    case State::autoBreak:
    case State::manualBreak: return kPaused;
    case State::suspended: return kCannotVerify;
    case State::completed: break;
  }
  return std::nullopt;
}

WorkingProtectionObservation workingProtectionObservation(const WorkingSessionEngine& engine) {
  if (engine.state() == State::completed) return WorkingProtectionObservation::released;
  if (engine.state() == State::preparing) return WorkingProtectionObservation::unobserved;
  if (engine.offlineBeyondLimit()) return WorkingProtectionObservation::stale;
  const auto transport = engine.transport();
  if (transport == WorkingTransportState::offlineLocal || transport == WorkingTransportState::reconnecting) {
    return WorkingProtectionObservation::confirmation;
  }
  const auto reasons = workingBlockingReasons(engine.policy(), engine.readiness());
  const bool protectionMissing = std::ranges::any_of(reasons, [](Reason reason) {
    return reason >= Reason::appBlockingUnavailable && reason <= Reason::leaseUnavailable;
  });
  return protectionMissing ? WorkingProtectionObservation::unobserved : WorkingProtectionObservation::applied;
}

std::string_view workingProtectionStatusLine(const WorkingSessionEngine& engine) {
  if (engine.policy().requiresPhoneProtection && !engine.readiness().phoneProtection) {
    return "Bu kovi için iPhone koruması hazır değil. Koruma geçerli olana kadar yeni süre sayılmaz.";
  }
  switch (workingProtectionObservation(engine)) {
    case WorkingProtectionObservation::released: return "Koruma hâlâ açık. Kovi’i açınca yeniden doğrulanır.";
    case WorkingProtectionObservation::unobserved: return "Koruma kontrol edilmeli";
    case WorkingProtectionObservation::applied: return "Koruma bu kovi’in kurallarına uygun ve güncel.";
    case WorkingProtectionObservation::stale:
      return "Koruma doğrulaması güncel değil. Yeniden kontrol edilene kadar yeni süre sayılmaz.";
    case WorkingProtectionObservation::confirmation:
      return "Koruma ayarlandı ama doğrulama henüz gelmedi. Durumu yeniden kontrol et.";
  }
  return "Koruma kontrol edilmeli";
}

std::optional<std::string_view> workingExclusionReason(const WorkingSessionEngine& engine) {
  const State state = engine.state();
  if (state == State::preparing || state == State::completed) return std::nullopt;
  if (engine.pastHardWindow() && state == State::active) return "Oturum bitirme sınırından sonraki süre çalışma sayılmaz.";
  if (engine.scheduledBreakActive()) return "Planlı Pomodoro molaları çalışma süresine dahil edilmez.";
  if (engine.remoteBreakActive()) return "Uzaktan mola komutunun etkilediği süre çalışma sayılmadı.";
  if (state == State::possibleIdle || state == State::autoBreak || state == State::manualBreak) {
    return "Odak koşullarının sağlanmadığı süre çalışma sayılmadı.";
  }
  if (state == State::active) {
    if (engine.offlineBeyondLimit()) return "Süresi içinde tamamlanamayan cihaz kayıtları çalışma süresine eklenmedi.";
    return std::nullopt;
  }
  switch (engine.suspensionReason().value_or(Reason::observationGap)) {
    case Reason::activityUnavailable:
    case Reason::locked:
    case Reason::displaySleeping:
    case Reason::sleeping: return "Gerekli cihaz koşullarının doğrulanamadığı aralıklar çalışma süresine eklenmedi.";
    case Reason::appBlockingUnavailable:
    case Reason::websiteBlockingUnavailable:
    case Reason::phoneProtectionUnavailable:
    case Reason::leaseUnavailable: return "Gerekli odak koruması hazır olmayan süre çalışma sayılmadı.";
    case Reason::observationGap:
    case Reason::agentRestarted: return "Bazı cihaz kayıtları çalışma süresi olarak doğrulanamadı.";
    case Reason::persistenceFailure:
      return "Oturum kayıtlarının tutarlılığı doğrulanamadı; bu kayıttan çalışma süresi kabul edilmedi.";
    case Reason::handoff: return "Mac değişimi sırasındaki doğrulanamayan aralık çalışma sayılmadı.";
    case Reason::blockingViolation: return "Odak koşullarının sağlanmadığı süre çalışma sayılmadı.";
  }
  return std::nullopt;
}

}  // namespace kovi
