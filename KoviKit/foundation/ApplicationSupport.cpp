#include "KoviKit/foundation/ApplicationSupport.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace kovi {
namespace {

std::filesystem::path homeDirectory() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  if (const passwd* entry = ::getpwuid(::getuid()); entry != nullptr && entry->pw_dir != nullptr) return entry->pw_dir;
  return std::filesystem::current_path();
}

}  // namespace

std::filesystem::path applicationSupportDirectory() {
#ifdef __APPLE__
  return homeDirectory() / "Library" / "Application Support";
#else
  if (const char* dataHome = std::getenv("XDG_DATA_HOME"); dataHome != nullptr) {
    const std::filesystem::path configured(dataHome);
    if (configured.is_absolute()) return configured;
  }
  return homeDirectory() / ".local" / "share";
#endif
}

}  // namespace kovi
