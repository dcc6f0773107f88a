#import "KoviMacHolds/platform/mac/AppKitWorkspace.h"

#import <AppKit/AppKit.h>

#include "KoviKit/foundation/Trap.h"
#include "KoviMacHolds/MacHoldsIdentity.h"
#include "KoviMacHolds/MacHoldsMainAppLocation.h"
#import "KoviMacHolds/platform/mac/AppKitConversions.h"
#import "KoviMacHolds/platform/mac/AppKitRunningApplication.h"

namespace kovi::holds::mac {

namespace {

NSNotificationName notificationName(MacWorkspaceEvent event) {
  switch (event) {
    case MacWorkspaceEvent::didLaunchApplication:
      return NSWorkspaceDidLaunchApplicationNotification;
    case MacWorkspaceEvent::didTerminateApplication:
      return NSWorkspaceDidTerminateApplicationNotification;
    case MacWorkspaceEvent::didWake:
      return NSWorkspaceDidWakeNotification;
    case MacWorkspaceEvent::didActivateApplication:
      return NSWorkspaceDidActivateApplicationNotification;
  }
  // A nil name would observe every workspace notification.
  trap("AppKitWorkspace: unknown workspace event");
}

NSNotificationCenter* workspaceCenter() { return NSWorkspace.sharedWorkspace.notificationCenter; }

// The bundle lookups the main app's location rule asks for.
MacHoldsBundleLookup bundleLookup() {
  return {
      .bundleIdentifierAt = [](const std::filesystem::path& bundle) -> std::optional<std::string> {
        NSString* identifier = [NSBundle bundleWithURL:fileURL(bundle, true)].bundleIdentifier;
        if (identifier == nil) return std::nullopt;
        return toStdString(identifier);
      },
      .applicationWithIdentifier = [](std::string_view identifier) -> std::optional<std::filesystem::path> {
        NSURL* application = [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:toNSString(identifier)];
        if (application == nil) return std::nullopt;
        return std::filesystem::path(application.fileSystemRepresentation);
      },
  };
}

}  // namespace

AppKitWorkspace::~AppKitWorkspace() {
  for (const auto& [token, observer] : observers_) [workspaceCenter() removeObserver:observer];
}

std::vector<MacRunningApplication> AppKitWorkspace::runningApplications() {
  std::vector<MacRunningApplication> applications;
  for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
    applications.push_back(runningApplicationFrom(application));
  }
  return applications;
}

std::optional<MacRunningApplication> AppKitWorkspace::frontmostApplication() {
  NSRunningApplication* front = NSWorkspace.sharedWorkspace.frontmostApplication;
  if (front == nil) return std::nullopt;
  return runningApplicationFrom(front);
}

std::optional<MacRunningApplication> AppKitWorkspace::runningApplication(pid_t processIdentifier) {
  NSRunningApplication* application = [NSRunningApplication runningApplicationWithProcessIdentifier:processIdentifier];
  if (application == nil) return std::nullopt;
  return runningApplicationFrom(application);
}

bool AppKitWorkspace::hide(const MacRunningApplication& application) {
  // Hiding is a request the application may refuse; `hide` says whether it was accepted.
  NSRunningApplication* running =
      [NSRunningApplication runningApplicationWithProcessIdentifier:application.processIdentifier];
  return running != nil && [running hide];
}

void AppKitWorkspace::openMainApp() {
  const auto mainApp = locateMacHoldsMainApp(NSBundle.mainBundle.bundleURL.fileSystemRepresentation, bundleLookup());
  if (!mainApp) return;
  NSWorkspaceOpenConfiguration* configuration = [NSWorkspaceOpenConfiguration configuration];
  configuration.activates = YES;
  // Whether it opened changes nothing here: the shield is already gone.
  [NSWorkspace.sharedWorkspace openApplicationAtURL:fileURL(*mainApp, true)
                                      configuration:configuration
                                  completionHandler:nil];
}

bool AppKitWorkspace::anotherAgentIsRunning() {
  // The system lists an application from the moment it launches, before its
  // code runs, so of two copies started together the later one always sees
  // the earlier (both may see each other and leave; the next launch recovers).
  const pid_t self = NSRunningApplication.currentApplication.processIdentifier;
  NSArray<NSRunningApplication*>* agents =
      [NSRunningApplication runningApplicationsWithBundleIdentifier:toNSString(kMacHoldsAgentBundleID)];
  for (NSRunningApplication* agent in agents) {
    if (agent.processIdentifier != self) return true;
  }
  return false;
}

std::set<std::string> AppKitWorkspace::desktopIdentifiers() const {
  // Finder and System Settings are in the fixed spared set; the Mac's other
  // parts (Dock, menu extras, Spotlight) are not regular applications, which
  // the guard leaves alone anyway.
  return {};
}

MacObserverToken AppKitWorkspace::addObserver(MacWorkspaceEvent event,
                                              std::function<void(const MacWorkspaceNotification&)> handler) {
  // The engine and the guard hand in handlers that hold them weakly, so a
  // notification that arrives after either has gone does nothing.
  id<NSObject> observer = [workspaceCenter()
      addObserverForName:notificationName(event)
                  object:nil
                   queue:NSOperationQueue.mainQueue
              usingBlock:^(NSNotification* notification) {
                NSRunningApplication* application = notification.userInfo[NSWorkspaceApplicationKey];
                handler(MacWorkspaceNotification{
                    .event = event,
                    .processIdentifier =
                        application != nil ? std::optional<pid_t>(application.processIdentifier) : std::nullopt,
                });
              }];
  const MacObserverToken token = nextToken_++;
  observers_.emplace(token, observer);
  return token;
}

void AppKitWorkspace::removeObserver(MacObserverToken token) {
  const auto found = observers_.find(token);
  if (found == observers_.end()) return;
  [workspaceCenter() removeObserver:found->second];
  observers_.erase(found);
}

}  // namespace kovi::holds::mac
