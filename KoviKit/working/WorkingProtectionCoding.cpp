#include "KoviKit/working/WorkingProtectionCoding.h"

namespace kovi {

Decoded<WorkingProtectionWindow> decodeWorkingProtectionWindow(const JsonView& json) {
  auto window = decodeRecord<WorkingProtectionWindow>(json);
  if (!window) return window;
  if (auto valid = window->validate(); !valid) return std::unexpected(json.error("InvalidWindow: " + valid.error().reason));
  return window;
}

}  // namespace kovi
