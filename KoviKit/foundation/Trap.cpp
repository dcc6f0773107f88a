#include "KoviKit/foundation/Trap.h"

#include <cstdio>
#include <cstdlib>

namespace kovi {

void trap(std::string_view message) {
  std::fprintf(stderr, "kovi: fatal: %.*s\n", static_cast<int>(message.size()), message.data());
  std::fflush(stderr);
  std::abort();
}

}  // namespace kovi
