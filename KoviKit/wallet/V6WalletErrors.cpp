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
};

constexpr NativeErrorTable kTable{"v6/wallet", kMessages};

}  // namespace

const NativeErrorTable& v6WalletErrorTable() { return kTable; }

}  // namespace kovi
