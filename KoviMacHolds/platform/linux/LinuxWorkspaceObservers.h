#pragma once

#include <functional>
#include <map>
#include <optional>

#include "KoviMacHolds/platform/MacWorkspace.h"

namespace kovi::holds::desktop {

// The observers a Linux workspace keeps for the guard and the engine, and
// how a notification reaches them.
class LinuxWorkspaceObservers {
 public:
  MacObserverToken add(MacWorkspaceEvent event, std::function<void(const MacWorkspaceNotification&)> handler);
  // Removing a token that is unknown or already removed does nothing.
  void remove(MacObserverToken token);
  // Calls every observer of `event` registered when the call begins; one that
  // a handler removes meanwhile is not called.
  void notify(MacWorkspaceEvent event, std::optional<pid_t> processIdentifier);

 private:
  struct Observer {
    MacWorkspaceEvent event;
    std::function<void(const MacWorkspaceNotification&)> handler;
  };
  std::map<MacObserverToken, Observer> observers_;
  MacObserverToken nextToken_ = 1;
};

}  // namespace kovi::holds::desktop
