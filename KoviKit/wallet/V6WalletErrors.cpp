#include "KoviKit/wallet/V6WalletErrors.h"

#include <array>

namespace kovi {
namespace {

constexpr std::array kMessages{
    NativeErrorMessage{inviteErrorCode::notFound, "Bu davet kodu bulunamadı. Kodu kontrol et."},
    NativeErrorMessage{inviteErrorCode::invitationNotFound,
                       "Bu davet bulunamadı. Bağlantıyı ya da kodu kontrol et."},
    NativeErrorMessage{inviteErrorCode::joinPending,
                       "Bu davet için başlattığın katılım onayı hâlâ açık. Birkaç dakika sonra yeniden dene."},
    NativeErrorMessage{inviteErrorCode::updatePending,
                       "Bu davetteki bir değişiklik hâlâ işleniyor. Birkaç dakika sonra yeniden dene."},
    NativeErrorMessage{inviteErrorCode::noLongerValid, "Bu davet artık geçerli değil."},
    NativeErrorMessage{inviteErrorCode::linksUnavailable,
                       "Davet bağlantısı şu anda kullanılamıyor. Biraz sonra yeniden dene."},
    NativeErrorMessage{inviteErrorCode::signerUnavailable,
                       "Davet şu anda onaylanamıyor. Biraz sonra yeniden dene."},
    NativeErrorMessage{inviteErrorCode::creationUnavailable,
                       "Davet şu anda oluşturulamıyor. Biraz sonra yeniden dene."},
    NativeErrorMessage{inviteErrorCode::codeUnrecognized,
                       "Bu kovi bağlantısı tanınmadı. Kodu ya da bağlantıyı kontrol et."},
    NativeErrorMessage{walletErrorCode::codeChanged, "Cüzdan sözleşmesi değişti. Bilgileri yenileyip yeniden dene."},
    NativeErrorMessage{walletErrorCode::tokenChanged,
                       "Kovi’in kullandığı token değişti. Bilgileri yenileyip yeniden dene."},
    NativeErrorMessage{walletErrorCode::escrowUnavailable,
                       "Emanet hesabı şu anda kullanılamıyor. Hiçbir tutar aktarılmadı; biraz sonra yeniden dene."},
    NativeErrorMessage{walletErrorCode::unsupportedEscrow,
                       "Bu kovi’in emanet hesabı bu uygulama sürümünde desteklenmiyor. Uygulamayı güncelle."},
    NativeErrorMessage{walletErrorCode::escrowRegistryCollision,
                       "Bu kovi zincirde zaten kayıtlı. Taslağı yenileyip yeniden oluştur."},
    NativeErrorMessage{walletErrorCode::testBalanceRequired,
                       "Bakiyen bu katkı için yetmiyor. Profil > Bakiye ekranından bakiyeni artırabilirsin."},
    NativeErrorMessage{walletErrorCode::settlementUnavailable,
                       "Sonuçlar şu an kesinleştirilemiyor. Hiçbir tutar aktarılmadı; kovi’i daha sonra yeniden kontrol "
                       "et."},
    NativeErrorMessage{walletErrorCode::settlementPolicyRefused,
                       "Bu sonuç güvenlik kontrolünden geçmediği için gönderilmedi. Hiçbir tutar aktarılmadı; kovi’i "
                       "daha sonra yeniden kontrol et."},
    NativeErrorMessage{walletErrorCode::allocationsChanged,
                       "Dağıtım bilgileri değişti. Güncel dağıtımı inceleyip yeniden onayla."},
    NativeErrorMessage{walletErrorCode::operationPending, "Önce bekleyen işlemin durumunu kontrol et."},
    NativeErrorMessage{walletErrorCode::actionBlockedByPendingOperation,
                       "Önce bekleyen işlemin sonucunu kontrol et; yeni bir işlemi imzalama."},
    NativeErrorMessage{walletErrorCode::retryUnavailable,
                       "Bu işlemin yeniden gönderimi şu anda güvenli değil. Tekrar onaylama; durumu kontrol et."},
    NativeErrorMessage{walletErrorCode::actionNotAvailable,
                       "Kovi’in durumu değişti veya bu işlem için yetkin yok. Bilgileri yenile."},
    NativeErrorMessage{walletErrorCode::operationNotFound, "Bu işlem artık kayıtlı değil. Yeniden başlatabilirsin."},
    NativeErrorMessage{walletErrorCode::operationExpired,
                       "Bu işlemin süresi doldu. Hiçbir tutar aktarılmadı; yeniden başlatabilirsin."},
    NativeErrorMessage{walletErrorCode::operationClaimed,
                       "Bu işlem başka bir cihazda sürüyor. Tekrar onaylama; durumunu kontrol et."},
    NativeErrorMessage{walletErrorCode::submissionUnreconciled,
                       "Zincir bu gönderimi kullanmış ama sonuç henüz doğrulanamadı. Tekrar onaylama; uygulama sonucu "
                       "kontrol etmeye devam ediyor."},
    NativeErrorMessage{walletErrorCode::operationReplaced,
                       "Bu gönderim aynı sıra numarasını kullanan başka bir işlemle değiştirildi. Bu işlem geçerli "
                       "değil; ek ücret oluşmadı."},
    NativeErrorMessage{walletErrorCode::reviewChanged,
                       "Kurallar yeniden incelenmeli. Oluşturma ekranına dönüp güncel kuralları onayla."},
    NativeErrorMessage{walletErrorCode::v6ConfigurationUnavailable,
                       "Cüzdan ayarları şu anda alınamıyor. Biraz sonra yeniden dene."},
    NativeErrorMessage{walletErrorCode::configurationUnavailable,
                       "Cüzdan ayarları şu anda alınamıyor. Biraz sonra yeniden dene."},
    NativeErrorMessage{walletErrorCode::requestChanged,
                       "Bu işlem farklı koşullarla başlatılmış. Ekranı kapatıp yeniden başlat."},
    NativeErrorMessage{walletErrorCode::operationChanged,
                       "İşlem bu arada değişti. Güncel durumu kontrol edip yeniden onayla."},
    NativeErrorMessage{walletErrorCode::invalidOperation,
                       "Bu işlem doğrulanamadı. Tekrar onaylama; ekranı kapatıp yeniden başlat."},
    NativeErrorMessage{walletErrorCode::invalidSignature,
                       "Geçiş anahtarı onayı doğrulanamadı. İşlemi baştan başlatıp yeniden onayla."},
    NativeErrorMessage{walletErrorCode::receiptMismatch,
                       "Zincirdeki kayıt bu işlemle eşleşmedi. Tekrar onaylama; durumu birazdan tekrar kontrol et."},
    NativeErrorMessage{walletErrorCode::configurationChanged,
                       "Cüzdan ayarları değişti. Uygulamayı yenileyip yeniden dene."},
    NativeErrorMessage{walletErrorCode::invalidAction, "Bu işlem bu kovi için geçerli değil. Bilgileri yenile."},
    NativeErrorMessage{walletErrorCode::nativeApprovalRequired,
                       "Bu işlem uygulamadan geçiş anahtarınla onaylanmalı."},
    NativeErrorMessage{walletErrorCode::claimNotOpen,
                       "Ödeme, 24 saatlik güvenlik süresi bitince açılır. Açılış saatini kovi’te görebilirsin."},
};

constexpr NativeErrorTable kTable{"v6/wallet", kMessages};

}  // namespace

const NativeErrorTable& v6WalletErrorTable() { return kTable; }

}  // namespace kovi
