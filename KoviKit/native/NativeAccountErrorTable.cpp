#include "KoviKit/native/NativeAccountErrorTable.h"

#include <array>

namespace kovi {
namespace {

constexpr std::string_view kInvalidRequestMessage =
    "Bu isteği doğrulayamadık. Uygulamayı kapatıp yeniden açtıktan sonra dene.";

constexpr auto kAccountMessages = std::to_array<NativeErrorMessage>({
    {"accounts_at_capacity",
     "Kovi şu anda yeni hesap açmaya kapalı. Kontenjan açıldığında yeniden deneyebilirsin."},
    {"accounts_unavailable", "Hesap servisi henüz kullanıma açık değil."},
    {"retry_registration", "Kayıt tamamlanamadı. Bir kez daha dene."},
    {"retry_sign_in", "Giriş tamamlanamadı. Bir kez daha dene."},
    {"sign_in_required", "Geçiş anahtarınla yeniden giriş yap."},
    {"rate_limited", "Şu an çok fazla istek var. Birkaç dakika sonra yeniden dene."},
    {"wallet_recovery_required",
     "Cüzdanına erişimini kaybetmemek için hesabını silmeden önce kurtarma bilgilerini saklamalısın."},
    {"invalid_wallet_recovery", "Kurtarma dosyası bu geçiş anahtarıyla eşleşmiyor. Doğru dosyayı seç."},
    {"expired_challenge", "Onay süresi doldu. Baştan başlayıp onayı hemen tamamla."},
    {"invalid_challenge", "Onay isteği eşleşmedi. İşlemi baştan başlatıp tekrar dene."},
    {"invalid_passkey",
     "Bu geçiş anahtarıyla giriş doğrulanamadı. Kovi için en son kaydettiğin geçiş anahtarını seçip yeniden dene."},
    {"invalid_wallet_credential",
     "Kurtarma dosyasındaki anahtar okunamadı. Kovi’ten kaydettiğin dosyayı seçtiğinden emin ol."},
    {"wrong_wallet_network", "Cüzdan ağı şu anda doğrulanamadı. Biraz sonra yeniden dene."},
    {"invalid_origin", kInvalidRequestMessage},
    {"invalid_request", kInvalidRequestMessage},
    {"internal_error", "Bizden kaynaklı bir sorun oldu. Birazdan tekrar dene."},
});

}  // namespace

constexpr NativeErrorTable kNativeAccountErrorTable{"account", kAccountMessages};

}  // namespace kovi
