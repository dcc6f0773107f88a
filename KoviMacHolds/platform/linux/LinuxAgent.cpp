#include "KoviMacHolds/platform/linux/LinuxAgent.h"

#include <string>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/purrl/PurrlCatIdentity.h"
#include "KoviMacHolds/platform/linux/LinuxLaunchIdentity.h"

namespace kovi::holds::desktop {

int runLinuxAgent(MacWorkspace& workspace, MacRunLoop& runLoop, LinuxShieldPanelMaker makeShieldPanel,
                  MacHoldsAgentOptions options) {
  LinuxLaunchIdentity launchIdentity;
  auto preferences = std::make_shared<FileKeyValueStore>(std::string(PurrlCatIdentity::preferencesDomain));
  if (!options.catStage) {
    options.catStage = [preferences] { return purrlCatStage(*preferences); };
  }
  MacHoldsClock clock = options.clock;
  auto makePanel = [makeShieldPanel = std::move(makeShieldPanel), preferences, clock] {
    return makeShieldPanel(PurrlFontStore(*preferences), clock);
  };
  MacHoldsAppDelegate delegate(MacHoldsPlatform{workspace, runLoop, launchIdentity, makePanel}, std::move(options));
  delegate.applicationDidFinishLaunching();
  return runLoop.run();
}

}  // namespace kovi::holds::desktop
