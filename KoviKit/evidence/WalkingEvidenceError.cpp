#include "KoviKit/evidence/WalkingEvidenceError.h"

#include <array>

namespace kovi {
namespace {

constexpr std::string_view kWriterMoved =
    "Bu cihaz artık Sağlık ölçümü paylaşamıyor. Paylaşımı bu cihaza taşıdıktan sonra yeniden dene.";
constexpr std::string_view kSubmissionDropped =
    "Bekleyen Sağlık paylaşımı artık kabul edilemiyor. Sağlık verisi yeniden okunup yeni bir paylaşım hazırlanacak.";
constexpr std::string_view kKeyRenewed = "Cihaz doğrulaması yenilendi. İşlemi yeniden dene.";

constexpr std::array kMessages{
    // Rules, windows and buckets.
    NativeErrorMessage{walkingErrorCode::rulesHashMismatch,
                       "Kovi’in kural özeti bu cihazda doğrulanamadı. Kovi’i yenileyip yeniden dene."},
    NativeErrorMessage{walkingErrorCode::dayWindowsInvalid,
                       "Kovi’in gün aralıkları bu cihazda doğrulanamadı. Kovi’i yenileyip yeniden dene."},
    NativeErrorMessage{walkingErrorCode::bucketAlignmentInvalid,
                       "Sağlık verisindeki 15 dakikalık aralıklar kovi’in günüyle eşleşmedi. Sağlık verisini "
                       "yeniden okuyup tekrar dene."},
    NativeErrorMessage{walkingErrorCode::noClosedBucket,
                       "İlk 15 dakikalık aralık henüz kapanmadı. Kapandıktan sonra yeniden oku."},
    NativeErrorMessage{walkingErrorCode::noReadableData,
                       "Bu aralıkta okunabilir Sağlık verisi bulunamadı. Bu, sıfır adım veya izin reddi anlamına "
                       "gelmez. Daha sonra yeniden oku."},
    NativeErrorMessage{walkingErrorCode::healthSharingDisabled,
                       "Bu hesap için Sağlık erişimini ve paylaşımı açıp tekrar dene."},
    NativeErrorMessage{walkingErrorCode::readFailed, "Sağlık verisi şu anda okunamadı. Biraz sonra yeniden oku."},
    // Submissions.
    NativeErrorMessage{walkingErrorCode::evidencePending,
                       "Önce bekleyen gönderimin sonucuna bak. O netleşmeden yeni ölçüm gönderilmez."},
    NativeErrorMessage{walkingErrorCode::revisionConflict,
                       "Günün ölçümü başka bir paylaşımla güncellendi. Sağlık verisi yeniden okunup tekrar denenecek."},
    NativeErrorMessage{"walking_evidence_writer_device_mismatch", kWriterMoved},
    NativeErrorMessage{"walking_evidence_writer_epoch_stale", kWriterMoved},
    NativeErrorMessage{"walking_evidence_writer_epoch_unknown", kWriterMoved},
    NativeErrorMessage{"walking_evidence_request_conflict", kSubmissionDropped},
    NativeErrorMessage{"walking_evidence_request_rejected", kSubmissionDropped},
    NativeErrorMessage{"walking_evidence_payload_too_large", kSubmissionDropped},
    // The device key and its assertions.
    NativeErrorMessage{"attestation_unsupported",
                       "Bu cihaz uygulama bütünlüğü doğrulamasını desteklemiyor. Katkılı kovi’e katılmak ya da "
                       "Sağlık kanıtı doğrulamak için desteklenen bir iPhone gerekiyor."},
    NativeErrorMessage{"challenge_expired", "Doğrulama isteğinin süresi doldu. Yeniden dene."},
    NativeErrorMessage{"device_key_not_registered",
                       "Bu cihazın uygulama bütünlüğü anahtarı kayıtlı değil. Katkılı işlemden önce kaydedilmesi "
                       "gerekiyor."},
    NativeErrorMessage{"assertion_failed", "Sağlık kanıtı bu cihazda imzalanamadı. Yeniden dene."},
    NativeErrorMessage{"attestation_failed", "Cihaz doğrulaması tamamlanamadı. Bağlantını kontrol edip yeniden dene."},
    NativeErrorMessage{"attestation_challenge_invalid",
                       "Doğrulama isteği anlaşılamadı. Uygulamayı güncelleyip yeniden dene."},
    // Server refusals of the key or the assertion: the app registers a new
    // key, and the user is told to try again.
    NativeErrorMessage{"attestation_required", kKeyRenewed},
    NativeErrorMessage{"attestation_binding_unavailable", kKeyRenewed},
    NativeErrorMessage{"attestation_policy_mismatch", kKeyRenewed},
    NativeErrorMessage{"assertion_invalid", kKeyRenewed},
    NativeErrorMessage{"attestation_key_unknown", kKeyRenewed},
    NativeErrorMessage{"challenge_consumed", kKeyRenewed},
    NativeErrorMessage{"device_key_conflict", kKeyRenewed},
    NativeErrorMessage{"attestation_invalid_chain", kKeyRenewed},
    NativeErrorMessage{"attestation_nonce_mismatch", kKeyRenewed},
    NativeErrorMessage{"attestation_environment_mismatch", kKeyRenewed},
    NativeErrorMessage{"assertion_counter_replay", kKeyRenewed},
};

constexpr NativeErrorTable kTable{"v6/evidence", kMessages};

}  // namespace

const NativeErrorTable& v6EvidenceErrorTable() { return kTable; }

}  // namespace kovi
