#pragma once

#import <Foundation/Foundation.h>

#include <map>

#include "KoviMacHolds/platform/MacWorkspace.h"

namespace kovi::holds::mac {

// The Mac's shared workspace: its running applications, the front one,
// hiding one, opening the main app, and its notifications, all delivered on
// the main queue. Observers still registered when it goes are removed.
class AppKitWorkspace final : public MacWorkspace {
 public:
  AppKitWorkspace() = default;
  AppKitWorkspace(const AppKitWorkspace&) = delete;
  AppKitWorkspace& operator=(const AppKitWorkspace&) = delete;
  ~AppKitWorkspace() override;

  std::vector<MacRunningApplication> runningApplications() override;
  std::optional<MacRunningApplication> frontmostApplication() override;
  std::optional<MacRunningApplication> runningApplication(pid_t processIdentifier) override;
  bool hide(const MacRunningApplication& application) override;
  void openMainApp() override;
  bool anotherAgentIsRunning() override;
  std::set<std::string> desktopIdentifiers() const override;

  MacObserverToken addObserver(MacWorkspaceEvent event,
                               std::function<void(const MacWorkspaceNotification&)> handler) override;
  void removeObserver(MacObserverToken token) override;

 private:
  std::map<MacObserverToken, id<NSObject>> observers_;
  MacObserverToken nextToken_ = 1;
};

}  // namespace kovi::holds::mac
