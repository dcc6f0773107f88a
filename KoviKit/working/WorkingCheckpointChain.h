#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingCheckpoint.h"

namespace kovi {

// What the checkpoints of one session prove.
struct WorkingCheckpointChainReport {
  enum class Status {
    verified,      // a consistent chain ending in its `final` checkpoint
    pending,       // consistent so far; the `final` checkpoint has not arrived
    inconsistent,  // a link is broken: none of the chain's time is accepted
    none,          // no checkpoint yet
    unverifiable,  // consistent, but a checkpoint is not signed by the Mac's key: no time is accepted
  };

  Status status = Status::none;
  // The Turkish text shown for the status.
  std::string message;
  // The `active` time of a verified or pending chain; 0 otherwise.
  std::int64_t acceptedMS = 0;
  // The end of the chain's last segment, when a consistent chain has one.
  std::optional<UnixMillis> through;
  // The sequence of the first checkpoint that does not fit the chain.
  std::optional<std::int64_t> brokenAt;
  // Why the chain is inconsistent, in English, for logs and tools.
  std::string reason;

  bool operator==(const WorkingCheckpointChainReport&) const = default;
};

inline constexpr std::string_view kWorkingChainInconsistentMessage =
    "Oturum kayıtlarının tutarlılığı doğrulanamadı; bu kayıttan çalışma süresi kabul edilmedi.";
inline constexpr std::string_view kWorkingChainPendingMessage =
    "Son kayıtlar bekleniyor; oturumun doğrulama sonucu henüz kesinleşmedi.";
inline constexpr std::string_view kWorkingChainNotStartedMessage = "Mac çalışma oturumunu henüz başlatmadı.";
inline constexpr std::string_view kWorkingChainVerifiedMessage = "Oturum kayıtları doğrulandı.";

// Checks the checkpoints of one session, given in any order: sequences from 0
// without gaps or repeats, each `previousHash` equal to the hash of the
// checkpoint before (64 zeros for the first), one session, device and epoch,
// wall-clock and monotonic readings that never run backwards, segments sorted,
// non-empty and inside their checkpoint's span (after the previous
// checkpoint's `at`, up to its own), and nothing after a `final` checkpoint.
WorkingCheckpointChainReport verifyWorkingCheckpointChain(std::span<const WorkingCheckpoint> checkpoints);

template <>
struct EnumNames<WorkingCheckpointChainReport::Status> {
  static constexpr std::array table{
      std::pair{WorkingCheckpointChainReport::Status::verified, std::string_view("verified")},
      std::pair{WorkingCheckpointChainReport::Status::pending, std::string_view("pending")},
      std::pair{WorkingCheckpointChainReport::Status::inconsistent, std::string_view("inconsistent")},
      std::pair{WorkingCheckpointChainReport::Status::none, std::string_view("none")},
      std::pair{WorkingCheckpointChainReport::Status::unverifiable, std::string_view("unverifiable")},
  };
};

}  // namespace kovi
