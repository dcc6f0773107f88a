#include "KoviKit/purrl/PurrlErrorTable.h"

#include <array>

namespace kovi {
namespace {

constexpr auto kPurrlMessages = std::to_array<NativeErrorMessage>({
    {"purrl_unavailable", "Kedine şu anda ulaşılamıyor. Biraz sonra yeniden dene."},
    {"mock_plan_not_found", "Bu deneme planı artık yok. Takvimi yenileyip tekrar bak."},
    {"mock_not_startable",
     "Bu denemeyi şu anda başlatamazsın. Planlanan saatten 15 dakika önce ile bir saat sonrası arasında başlatabilirsin."},
    {"daily_set_invalid", "Günlük hedef kaydedilemedi. Ders ve soru sayısını kontrol edip tekrar dene."},
});

}  // namespace

constexpr NativeErrorTable kPurrlErrorTable{"purrl", kPurrlMessages};

}  // namespace kovi
