#include "tools/kovi/ErrorAreas.h"

#include <algorithm>
#include <array>

#include "KoviKit/evidence/WalkingEvidenceError.h"
#include "KoviKit/native/NativeAccountErrorTable.h"
#include "KoviKit/purrl/PurrlErrorTable.h"
#include "KoviKit/wallet/V6WalletErrors.h"
#include "KoviKit/working/WorkingErrorTable.h"

namespace kovi::tool {

std::span<const NativeErrorTable* const> errorAreas() {
  // One line per service area. An area joins `kovi errors message --area`
  // and the messages of `kovi call` by adding its table here (and its header
  // above); nothing else in the tool changes.
  static const std::array areas{
      &kNativeAccountErrorTable,
      &v6EvidenceErrorTable(),
      &v6WalletErrorTable(),
      &kWorkingErrorTable,
      &kPurrlErrorTable,
  };
  return areas;
}

const NativeErrorTable* findErrorArea(std::string_view area) {
  const auto areas = errorAreas();
  const auto found = std::ranges::find(areas, area, [](const NativeErrorTable* table) { return table->area; });
  return found != areas.end() ? *found : nullptr;
}

std::vector<std::string> errorAreaNames() {
  std::vector<std::string> names;
  for (const NativeErrorTable* table : errorAreas()) names.emplace_back(table->area);
  return names;
}

}  // namespace kovi::tool
