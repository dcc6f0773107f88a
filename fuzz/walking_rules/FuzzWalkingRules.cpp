// Walking rules come from the service and from files. Whatever the bytes, the
// decoder must answer without crashing, and rules it accepts must survive the
// round trip through their canonical text unchanged (or their hash would not
// identify them), then plan windows and describe themselves.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KoviKit/evidence/V6WalkingContext.h"
#include "KoviKit/evidence/WalkingDayWindowVerifier.h"
#include "KoviKit/evidence/WalkingRuleDescription.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto context = kovi::decodeJsonText<kovi::V6WalkingContext>(text)) (void)context->verifyRulesHash();

  const auto rules = kovi::decodeJsonText<kovi::WalkingKoviRules>(text);
  if (!rules) return 0;
  const auto again = kovi::decodeJsonText<kovi::WalkingKoviRules>(rules->canonicalJson());
  if (!again || *again != *rules) __builtin_trap();

  constexpr kovi::UnixMillis start = 1777894620000;  // 2026-05-04T14:37:00+03:00
  const auto review = kovi::WalkingDayWindowVerifier::review(*rules, start,
                                                             kovi::WalkingDayWindowVerifier::serverWindows(*rules));
  if (const auto windows = review.windowsForEvidence()) {
    if (windows->size() != static_cast<std::size_t>(rules->durationDays)) __builtin_trap();
    for (const auto& window : *windows) {
      if (window.end <= window.start) __builtin_trap();
    }
  }
  (void)kovi::WalkingRuleDescription::describe(*rules, "tr");
  return 0;
}
