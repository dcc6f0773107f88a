// The X11 implementation of the desktop entry points the command line uses.
#include <memory>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/purrl/PurrlCatIdentity.h"
#include "KoviMacHolds/platform/MacHoldsDesktop.h"
#include "KoviMacHolds/platform/x11/CairoShieldPainter.h"
#include "KoviMacHolds/platform/x11/LinuxLaunchIdentity.h"
#include "KoviMacHolds/platform/x11/X11Display.h"
#include "KoviMacHolds/platform/x11/X11RunLoop.h"
#include "KoviMacHolds/platform/x11/X11ShieldPanel.h"
#include "KoviMacHolds/platform/x11/X11Workspace.h"

namespace kovi::holds {

std::expected<int, std::string> runMacHoldsAgent(MacHoldsAgentOptions options) {
  auto display = x11::X11Display::open();
  if (!display) return std::unexpected(display.error());

  x11::X11RunLoop runLoop(*display);
  x11::X11Workspace workspace(*display, runLoop);
  x11::LinuxLaunchIdentity launchIdentity;

  // The app group's shared preferences carry the font choices and the cat's level.
  auto preferences = std::make_shared<FileKeyValueStore>(std::string(PurrlCatIdentity::preferencesDomain));
  if (!options.catStage) {
    options.catStage = [preferences] { return purrlCatStage(*preferences); };
  }
  MacHoldsClock clock = options.clock;
  auto makeShieldPanel = [&, preferences, clock]() -> std::unique_ptr<MacShieldPanel> {
    return std::make_unique<x11::X11ShieldPanel>(*display, runLoop, PurrlFontStore(*preferences), clock);
  };

  MacHoldsAppDelegate delegate(MacHoldsPlatform{workspace, runLoop, launchIdentity, makeShieldPanel},
                               std::move(options));
  delegate.applicationDidFinishLaunching();
  return runLoop.run();
}

std::expected<void, std::string> renderMacHoldsShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                         const Calendar& calendar, const std::filesystem::path& file) {
  return x11::writeShieldPng(view, fonts, calendar, file);
}

}  // namespace kovi::holds
