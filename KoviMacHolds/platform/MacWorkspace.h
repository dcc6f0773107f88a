#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviMacHolds/platform/MacRunningApplication.h"

namespace kovi::holds {

// The workspace notifications the agent reacts to.
enum class MacWorkspaceEvent {
  didLaunchApplication,
  didTerminateApplication,
  didWake,
  didActivateApplication,
};

struct MacWorkspaceNotification {
  MacWorkspaceEvent event = MacWorkspaceEvent::didWake;
  // The application the notification is about; absent for didWake.
  std::optional<pid_t> processIdentifier;
};

using MacObserverToken = std::uint64_t;

// The desktop as the agent sees it: which applications run, which one is in
// front, hiding one, opening the main app and the notifications about all
// that. Everything is called and delivered on the agent's one thread.
class MacWorkspace {
 public:
  virtual ~MacWorkspace() = default;

  virtual std::vector<MacRunningApplication> runningApplications() = 0;
  virtual std::optional<MacRunningApplication> frontmostApplication() = 0;
  // The running application with this process identifier, if it still runs.
  virtual std::optional<MacRunningApplication> runningApplication(pid_t processIdentifier) = 0;

  // Asks the application to hide (never to quit). True only when the
  // platform confirmed that it is hidden.
  virtual bool hide(const MacRunningApplication& application) = 0;

  // Brings the main Kovi app up, launching it when needed; does nothing when
  // the main app cannot be found.
  virtual void openMainApp() = 0;

  // Whether another copy of the agent already runs for this user. A platform
  // answers this without a race: of two copies started together at most one
  // is told that it is alone.
  virtual bool anotherAgentIsRunning() = 0;

  // Identifiers of the desktop's own parts (file manager, panel, settings)
  // that are never held, in addition to the fixed always-spared set.
  virtual std::set<std::string> desktopIdentifiers() const = 0;

  virtual MacObserverToken addObserver(MacWorkspaceEvent event,
                                       std::function<void(const MacWorkspaceNotification&)> handler) = 0;
  // Removing a token that is unknown or already removed does nothing.
  virtual void removeObserver(MacObserverToken token) = 0;
};

}  // namespace kovi::holds
