#include "KoviMacHolds/platform/linux/LinuxAgentPreferences.h"

#include <string>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/purrl/PurrlCatIdentity.h"

namespace kovi::holds::desktop {

std::shared_ptr<KeyValueStore> linuxAgentPreferences(MacHoldsAgentOptions& options) {
  auto preferences = std::make_shared<FileKeyValueStore>(std::string(PurrlCatIdentity::preferencesDomain));
  if (!options.catStage) {
    options.catStage = [preferences] { return purrlCatStage(*preferences); };
  }
  return preferences;
}

}  // namespace kovi::holds::desktop
