#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/working/WorkingRules.h"

namespace kovi {

// What the user reads when a rule set cannot be used (Turkish, through the
// localization lookup).
inline constexpr std::string_view kWorkingRulesUnverifiableMessage =
    "Kovi’in kural özeti bu cihazda doğrulanamadı. Kovi’i yenileyip yeniden dene.";
inline constexpr std::string_view kWorkingUnsupportedRulesMessage =
    "Seçilen kurallardan biri henüz uygulanamıyor. Kuralları inceleyip kullanıma açık olmayan ayarları kontrol et.";
inline constexpr std::string_view kWorkingRulesChangedMessage =
    "Kurallar değişti veya onay eksik. Güncel kuralları yeniden incele.";
inline constexpr std::string_view kWorkingRulesReviewAtCreationMessage =
    "Kurallar yeniden incelenmeli. Oluşturma ekranına dönüp güncel kuralları onayla.";

// Rules received from the service for a kovi to work in. A document that
// fails the shape check, decoding or validation is never applied: the error
// is the message for the user (the reason itself is for logs, see
// `decodeWorkingRules`).
std::expected<WorkingRules, std::string> receivedWorkingRules(std::string_view text);

// Why a kovi with `rules` cannot be created on this version: the unsupported
// rules message when any rule is unsupported.
std::optional<std::string> workingCreationProblem(const WorkingRules& rules);

enum class WorkingConsentContext {
  joining,   // a member reviewing the rules of an existing kovi
  creating,  // the creator confirming the rules on the creation screen
};

// Why consent no longer covers `current`: no consent at all, or consent given
// to a rule set that differs in any field. The message depends on where the
// user must go to consent again.
std::optional<std::string> workingConsentProblem(const std::optional<WorkingRules>& consented,
                                                 const WorkingRules& current, WorkingConsentContext context);

}  // namespace kovi
