#include "KoviKit/working/WorkingErrorTable.h"

#include <array>

#include "KoviKit/working/WorkingRulesNotices.h"

namespace kovi {
namespace {

constexpr auto kWorkingMessages = std::to_array<NativeErrorMessage>({
    {"working_unavailable", "Çalışma servisine şu anda ulaşılamıyor. Biraz sonra yeniden dene."},
    {"working_mac_not_ready", "Mac’in henüz hazır değil. Mac’teki Kovi’i açıp izinleri kontrol et."},
    {"working_device_unavailable", "Bu cihaz şu anda kullanılamıyor. Cihazının kayıtlı ve bağlı olduğunu kontrol et."},
    {"working_mac_protection_missing", "Mac’te gereken odak korumaları açık değil. Korumaları açıp yeniden dene."},
    {"working_iphone_not_ready", "iPhone’un henüz hazır değil. iPhone’daki Kovi’i açıp korumaları kontrol et."},
    {"working_all_devices_not_ready", "Gereken cihazların hepsi hazır değil. Cihazlarını kontrol edip yeniden dene."},
    {"working_funded_deployment_required",
     "Ödüllü Kovi’in sözleşme kurulumu henüz tamamlanmadı. Biraz sonra yeniden dene."},
    {"working_contributed_only", "Bu işlem yalnız katkısını yatırmış katılımcılara açık."},
    {"working_runtime_policy_unavailable", "Oturum kuralları şu anda yüklenemedi. Kovi’i yenileyip yeniden dene."},
    {"working_approvals_missing",
     "Katılımcıların hepsi kuralları henüz onaylamadı. Onaylar tamamlanınca yeniden dene."},
    {"working_terms_changed", kWorkingRulesChangedMessage},
    {"working_session_conflict", "Oturum başka bir yerde değişti. Güncel durumu yenileyip tekrar dene."},
    {"working_session_already_open", "Zaten açık bir oturumun var. Önce onu bitir veya devam ettir."},
    {"working_outside_kovi", "Şu an Kovi’in çalışma zamanı dışındasın. Oturumu Kovi aralığında başlat."},
    {"working_start_invalid", "Oturum bu kurallarla başlatılamadı. Kuralları ve saati kontrol edip yeniden dene."},
    {"working_join_closed", "Bu Kovi’e katılma süresi doldu."},
    {"working_prepare_expired", "Hazırlık süresi doldu. Oturumu yeniden hazırla."},
    {"working_scheduled_arm_required",
     "Planlı oturum için Mac’in önceden hazırlanmalı. Mac’teki Kovi’i açıp planlı başlangıcı onayla."},
    {"working_scheduled_prepare_expired", "Planlı başlangıcın hazırlık süresi doldu. Durumu yenileyip yeniden hazırla."},
    {"working_scheduled_prepare_invalid",
     "Planlı başlangıç hazırlığı doğrulanamadı. Mac’teki Kovi’i yenileyip yeniden dene."},
    {"working_command_expired", "Bu isteğin süresi doldu. Güncel durumu yenileyip yeniden gönder."},
    {"working_command_superseded", "Oturuma daha yeni bir istek geldi. Güncel durumu kontrol et."},
    {"working_room_unavailable", "Bu Kovi’e şu anda ulaşılamıyor. Listeyi yenileyip tekrar dene."},
    {"working_visibility_closed", "Görünürlük ayarı artık değiştirilemez."},
    {"working_visibility_exceeds_rules", "Seçtiğin görünürlük, Kovi kurallarının izin verdiğinden fazlasını paylaşıyor."},
    {"working_finalization_not_ready", "Sonuç henüz hesaplanmadı. Kovi bitip kayıt süresi dolunca yeniden bak."},
    {"working_finalization_authorized", "Sonuç onaylandı; artık değiştirilemez."},
    {"working_finalization_already_authorized", "Sonuç zaten onaylanmış."},
    {"working_finalization_conflict", "Sonuç bu arada değişti. Yenileyip güncel sonucu incele."},
    {"working_finalization_evidence_invalid", "Sonucun kayıtları doğrulanamadı. Yenileyip tekrar dene."},
    {"working_finalization_unavailable", "Sonuç şu anda alınamıyor. Biraz sonra yeniden dene."},
    {"working_result_in_review", "Sonuç inceleniyor. İnceleme bitince yeniden bak."},
    {"working_review_unavailable", "İnceleme şu anda yapılamıyor. Biraz sonra yeniden dene."},
    {"working_reviewer_required", "Bu işlem için inceleyici yetkisi gerekir."},
    {"working_review_restore_unproven", "Geri kazanılan süre kayıtlarla kanıtlanamadı. Kanıtı ekleyip yeniden dene."},
    {"working_review_evidence_invalid", "İnceleme kanıtı doğrulanamadı. Kayıtları yenileyip tekrar dene."},
    {"working_review_decision_required", "Devam etmek için bir inceleme kararı seç."},
    {"working_review_closed", "İnceleme süresi doldu; yeni karar verilemez."},
    {"working_review_self_forbidden", "Kendi sonucunu inceleyemezsin."},
    {"working_dispute_conflict", "İtiraz bu arada değişti. Yenileyip güncel durumu kontrol et."},
    {"working_dispute_limit", "İtiraz sınırına ulaştın."},
    {"working_dispute_unavailable", "İtiraz şu anda açılamıyor. Biraz sonra yeniden dene."},
    {"working_dispute_evidence_forbidden", "Bu kayıtları itiraza ekleyemezsin."},
    {"working_already_claimed", "Bu ödemeyi zaten aldın."},
    {"working_nothing_to_claim", "Alınacak bir ödeme yok."},
    {"working_claim_conflict", "Ödeme talebi bu arada değişti. Yenileyip tekrar dene."},
    {"working_payout_precision_unavailable", "Ödeme payları bu tutarla kesin hesaplanamadı. Biraz sonra yeniden dene."},
    {"working_verifier_signature_invalid", "Doğrulayıcı imzası geçersiz. Kovi’i yenileyip yeniden dene."},
    {"working_binding_invalid", "Kovi bağlantısı doğrulanamadı. Yenileyip tekrar dene."},
    {"working_chain_binding_invalid", "Kovi’in zincir kaydı doğrulanamadı. Yenileyip tekrar dene."},
    {"working_temporarily_unavailable", "Çalışma servisi geçici olarak kullanılamıyor. Birkaç dakika sonra yeniden dene."},
    {"working_zero_lateness_unsupported",
     "Geç başlangıca hiç süre tanımayan kural henüz desteklenmiyor. Geç başlangıç için bir süre seç."},
});

}  // namespace

constexpr NativeErrorTable kWorkingErrorTable{"working", kWorkingMessages};

}  // namespace kovi
