#include "KoviKit/working/WorkingScheduledReady.h"

namespace kovi {

std::string_view workingScheduledReadyFailureText(WorkingScheduledReady::Failure failure) {
  using Failure = WorkingScheduledReady::Failure;
  switch (failure) {
    case Failure::invalidSnapshot: return "Çalışma hazırlığı doğrulanamadı. Kovi’i yenileyip tekrar dene.";
    case Failure::changed: return "Kovi, hesap veya oturum değişti. Hazırlığı yeniden gözden geçir.";
    case Failure::noMac: return "Etkinlik izni hazır, bağlı bir Mac bulunamadı. Mac’te Kovi’i aç.";
    case Failure::expired: return "Bu hazırlık önerisinin süresi doldu. Güncel çalışma aralığını kontrol et.";
    case Failure::background: return "Hazırlığı onaylamak için Kovi’i ön planda aç.";
  }
  return {};
}

namespace {

bool describesAWindow(const WorkingScheduledReady& ready) {
  const bool identified = !ready.ownerID.empty() && !ready.roomID.empty() && !ready.rulesHash.empty() &&
                          !ready.windowID.empty() && !ready.sessionFingerprint.empty();
  return identified && ready.startsAt < ready.endsAt && ready.observedAt <= ready.endsAt;
}

}  // namespace

std::expected<void, WorkingScheduledReady::Failure> checkWorkingScheduledReady(
    const WorkingScheduledReady& ready, const WorkingScheduledReadyContext& context) {
  using Failure = WorkingScheduledReady::Failure;
  if (!describesAWindow(ready)) return std::unexpected(Failure::invalidSnapshot);
  if (ready.ownerID != context.ownerID || ready.roomID != context.roomID || ready.rulesHash != context.rulesHash ||
      ready.sessionFingerprint != context.sessionFingerprint) {
    return std::unexpected(Failure::changed);
  }
  if (context.now >= ready.endsAt) return std::unexpected(Failure::expired);
  if (ready.requiresPrearm && ready.availableMacIDs.empty()) return std::unexpected(Failure::noMac);
  if (!context.inForeground) return std::unexpected(Failure::background);
  return {};
}

}  // namespace kovi
