#include "KoviKit/native/NativeErrorTable.h"

#include <algorithm>

#include "KoviKit/foundation/Localization.h"

namespace kovi {

bool NativeErrorTable::knows(std::string_view code) const {
  return std::ranges::any_of(messages, [&](const NativeErrorMessage& entry) { return entry.code == code; });
}

std::string NativeErrorTable::messageFor(std::string_view code) const {
  const auto found =
      std::ranges::find_if(messages, [&](const NativeErrorMessage& entry) { return entry.code == code; });
  return localized(found != messages.end() ? found->message : kNativeGenericFailureMessage);
}

}  // namespace kovi
