#include "KoviKit/working/WorkingBootIdentity.h"

#include <time.h>

#include <cstring>

#include <chrono>

#if defined(__APPLE__)
#include <sys/sysctl.h>
#else
#include "KoviKit/foundation/FileIO.h"
#endif

namespace kovi {

std::expected<std::string, std::string> currentBootIdentity() {
#if defined(__APPLE__)
  char uuid[64] = {};
  std::size_t size = sizeof(uuid);
  if (::sysctlbyname("kern.bootsessionuuid", uuid, &size, nullptr, 0) != 0 || size == 0) {
    return std::unexpected(std::string("kern.bootsessionuuid is not available"));
  }
  return std::string(uuid, ::strnlen(uuid, size));
#else
  constexpr const char* kPath = "/proc/sys/kernel/random/boot_id";
  // A UUID and a line break; anything much longer is not a boot id.
  auto text = readFileLimited(kPath, 64);
  if (!text) return std::unexpected(std::string(kPath) + ": " + text.error().detail);
  while (!text->empty() && (text->back() == '\n' || text->back() == ' ')) text->pop_back();
  if (text->empty()) return std::unexpected(std::string(kPath) + ": empty");
  return *text;
#endif
}

WorkingClockReading currentWorkingClockReading() {
#if defined(__APPLE__)
  constexpr clockid_t kSinceBoot = CLOCK_MONOTONIC;
#else
  constexpr clockid_t kSinceBoot = CLOCK_BOOTTIME;
#endif
  timespec monotonic{};
  ::clock_gettime(kSinceBoot, &monotonic);
  const auto wall = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::system_clock::now().time_since_epoch());
  return {wall.count(), static_cast<std::int64_t>(monotonic.tv_sec) * 1000 + monotonic.tv_nsec / 1'000'000};
}

}  // namespace kovi
