#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KoviKit/native/NativeErrorTable.h"
#include "KoviKit/wallet/V6WalletErrors.h"

namespace kovi {
namespace {

// Every code the wallet service answers operations with has its own text;
// none falls through to the generic one.
TEST(V6WalletErrorsTest, EveryWalletCodeHasItsOwnText) {
  const std::string_view codes[] = {
      "wallet_code_changed", "wallet_token_changed", "escrow_unavailable", "unsupported_escrow",
      "escrow_registry_collision", "test_balance_required", "settlement_unavailable",
      "wallet_settlement_policy_refused", "allocations_changed", "wallet_operation_pending",
      "wallet_action_blocked_by_pending_operation", "wallet_retry_unavailable", "wallet_action_not_available",
      "wallet_operation_not_found", "wallet_operation_expired", "wallet_operation_claimed",
      "wallet_submission_unreconciled", "wallet_operation_replaced", "wallet_review_changed",
      "v6_configuration_unavailable", "wallet_configuration_unavailable", "wallet_request_changed",
      "wallet_operation_changed", "invalid_wallet_operation", "invalid_wallet_signature", "wallet_receipt_mismatch",
      "wallet_configuration_changed", "invalid_wallet_action", "native_approval_required"};
  for (const std::string_view code : codes) {
    EXPECT_TRUE(v6WalletErrorTable().knows(code)) << code;
    EXPECT_NE(v6WalletErrorTable().messageFor(code), kNativeGenericFailureMessage) << code;
  }
  EXPECT_EQ(v6WalletErrorTable().messageFor("wallet_something_new"), kNativeGenericFailureMessage);
  EXPECT_EQ(v6WalletErrorTable().area, "v6/wallet");
}

// The wordings whose letters are easiest to get wrong: typographic
// apostrophes and the invite codes' own texts.
TEST(V6WalletErrorsTest, WordsTheCodeAsTheServiceMeansIt) {
  const struct {
    std::string_view code;
    std::string_view text;
  } cases[] = {
      {"wallet_action_not_available", "Kovi’in durumu değişti veya bu işlem için yetkin yok. Bilgileri yenile."},
      {"wallet_claim_not_open", "Ödeme, 24 saatlik güvenlik süresi bitince açılır. Açılış saatini kovi’te görebilirsin."},
      {"invitation_join_pending",
       "Bu davet için başlattığın katılım onayı hâlâ açık. Birkaç dakika sonra yeniden dene."},
      {"invite_not_found", "Bu davet kodu bulunamadı. Kodu kontrol et."},
      {"wallet_submission_unreconciled",
       "Zincir bu gönderimi kullanmış ama sonuç henüz doğrulanamadı. Tekrar onaylama; uygulama sonucu kontrol "
       "etmeye devam ediyor."},
  };
  for (const auto& c : cases) EXPECT_EQ(v6WalletErrorTable().messageFor(c.code), c.text) << c.code;
}

}  // namespace
}  // namespace kovi
