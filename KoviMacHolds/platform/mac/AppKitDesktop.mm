// The AppKit implementation of the desktop entry points the command line uses.
#import <AppKit/AppKit.h>

#include <memory>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/purrl/PurrlCatIdentity.h"
#include "KoviMacHolds/platform/MacHoldsDesktop.h"
#import "KoviMacHolds/platform/mac/AppKitConversions.h"
#import "KoviMacHolds/platform/mac/AppKitRunLoop.h"
#import "KoviMacHolds/platform/mac/AppKitShieldPanel.h"
#import "KoviMacHolds/platform/mac/AppKitWorkspace.h"
#import "KoviMacHolds/platform/mac/BundleLaunchIdentity.h"
#import "KoviMacHolds/platform/mac/KoviHoldsAppDelegate.h"
#import "KoviMacHolds/platform/mac/KoviShieldView.h"

namespace kovi::holds {

std::expected<int, std::string> runMacHoldsAgent(MacHoldsAgentOptions options) {
  @autoreleasepool {
    NSApplication* application = NSApplication.sharedApplication;
    // No Dock icon and no menu bar, like the bundle's LSUIElement says; the
    // shield panel is the agent's only window.
    [application setActivationPolicy:NSApplicationActivationPolicyAccessory];

    mac::AppKitRunLoop runLoop;
    mac::AppKitWorkspace workspace;
    mac::BundleLaunchIdentity launchIdentity;

    // The app group's shared preferences carry the font choices and the cat's level.
    auto preferences = std::make_shared<FileKeyValueStore>(std::string(PurrlCatIdentity::preferencesDomain));
    if (!options.catStage) {
      options.catStage = [preferences] { return purrlCatStage(*preferences); };
    }
    MacHoldsClock clock = options.clock;
    auto makeShieldPanel = [preferences, clock]() -> std::unique_ptr<MacShieldPanel> {
      return std::make_unique<mac::AppKitShieldPanel>(PurrlFontStore(*preferences), clock);
    };

    MacHoldsAppDelegate agent(MacHoldsPlatform{workspace, runLoop, launchIdentity, makeShieldPanel},
                              std::move(options));
    // NSApplication holds its delegate weakly; this reference keeps it for the run.
    KoviHoldsAppDelegate* delegate = [[KoviHoldsAppDelegate alloc] initWithAgent:&agent];
    application.delegate = delegate;
    return runLoop.run();
  }
}

std::expected<void, std::string> renderMacHoldsShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                         const Calendar& calendar, const std::filesystem::path& file) {
  @autoreleasepool {
    KoviShieldView* content = [[KoviShieldView alloc] initWithFrame:NSZeroRect];
    [content showShield:view fonts:fonts calendar:calendar];
    const NSSize size = content.intrinsicContentSize;
    content.frame = NSMakeRect(0, 0, size.width, size.height);

    NSBitmapImageRep* bitmap = [content bitmapImageRepForCachingDisplayInRect:content.bounds];
    if (bitmap == nil) return std::unexpected(file.string() + ": cannot make a bitmap for the shield");
    [content cacheDisplayInRect:content.bounds toBitmapImageRep:bitmap];
    NSData* png = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    if (png == nil) return std::unexpected(file.string() + ": cannot encode the shield as PNG");
    NSError* error = nil;
    if (![png writeToURL:mac::fileURL(file, false) options:NSDataWritingAtomic error:&error]) {
      return std::unexpected(file.string() + ": " + mac::toStdString(error.localizedDescription));
    }
    return {};
  }
}

}  // namespace kovi::holds
