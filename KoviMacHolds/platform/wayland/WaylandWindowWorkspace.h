#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviMacHolds/platform/MacWorkspace.h"
#include "KoviMacHolds/platform/linux/LinuxAgentLock.h"
#include "KoviMacHolds/platform/linux/LinuxApplicationIdentity.h"
#include "KoviMacHolds/platform/linux/LinuxWorkspaceObservers.h"
#include "KoviMacHolds/platform/wayland/WaylandDisplay.h"
#include "KoviMacHolds/platform/wayland/WaylandRunLoop.h"

namespace kovi::holds::wayland {

// The workspace of a Wayland compositor that lists its windows to the agent,
// whatever protocol it lists them by: an application is every window whose
// app_id names the same application (the shared Linux table), and the front
// application is the one whose window the compositor reports activated. The
// compositor does not say which process owns a window, so each application
// gets a number of its own for the life of the agent, in the place of a
// process identifier. A protocol's workspace reports each window's confirmed
// state here and carries out minimise and activate requests.
class WaylandWindowWorkspace : public MacWorkspace {
 public:
  // How long the compositor has to report a minimised (or, after a fallback,
  // deactivated) window before the hide counts as refused.
  static constexpr std::chrono::milliseconds hideConfirmationTime{300};

  std::vector<MacRunningApplication> runningApplications() override;
  std::optional<MacRunningApplication> frontmostApplication() override;
  std::optional<MacRunningApplication> runningApplication(pid_t processIdentifier) override;
  // Minimises every window of the application; once the compositor has shown
  // that it ignores that, uses the protocol's fallback instead.
  bool hide(const MacRunningApplication& application) override;
  void openMainApp() override;
  bool anotherAgentIsRunning() override { return lock_.anotherAgentIsRunning(); }
  std::set<std::string> desktopIdentifiers() const override;

  MacObserverToken addObserver(MacWorkspaceEvent event,
                               std::function<void(const MacWorkspaceNotification&)> handler) override {
    return observers_.add(event, std::move(handler));
  }
  void removeObserver(MacObserverToken token) override { observers_.remove(token); }

 protected:
  // A window as the compositor last confirmed it. Windows are told apart by
  // `handle`, the protocol's object for each.
  struct WindowState {
    std::string appId;
    bool activated = false;
    bool minimized = false;
  };

  WaylandWindowWorkspace(WaylandDisplay& display, WaylandRunLoop& runLoop);
  // Reads the windows that exist already and forgets them as launches; the
  // protocol's workspace calls it once its listeners are in place.
  void readExistingWindows();

  // The compositor confirmed a window's state. `cameForward`: the window was
  // activated on the way to this state, even if something else (the shield)
  // took the keyboard back before the compositor confirmed it.
  void windowChanged(const void* handle, const WindowState& state, bool cameForward);
  void windowClosed(const void* handle);
  // The handles of the application's windows.
  std::vector<const void*> windowsOf(pid_t number) const;
  std::set<std::string> appIdsOf(pid_t number) const;
  bool allActivated(pid_t number, bool activated) const;

  // Asks the compositor to minimise or activate one window.
  virtual void requestMinimise(const void* handle) = 0;
  virtual void requestActivate(const void* handle) = 0;
  // Another way to hide the application where the compositor ignores
  // minimise (none by default), confirmed by the compositor.
  virtual bool hasHideFallback() const { return false; }
  virtual bool hideByFallback(pid_t /*number*/) { return false; }

  WaylandDisplay& display_;

 private:
  struct Window {
    WindowState state;
    bool announced = false;
    desktop::LinuxApplicationIdentity identity;
    pid_t number = 0;
    std::uint64_t activatedAt = 0;  // order of activation, for the front application
  };

  void deliverNotifications();
  pid_t numberFor(const std::string& bundleIdentifier);
  std::optional<MacRunningApplication> applicationOf(pid_t number) const;
  std::vector<const Window*> announcedWindowsOf(pid_t number) const;
  bool hideByMinimising(pid_t number);

  std::map<const void*, Window> windows_;
  std::map<std::string, pid_t> numbers_;
  pid_t nextNumber_ = 1;
  std::uint64_t activations_ = 0;
  // Set once the compositor let a minimise request go unanswered while a
  // fallback is there.
  bool minimiseIgnored_ = false;
  // While the agent hides an application, the compositor moves the focus on
  // by itself; those activations are not the person's and are not reported.
  bool hiding_ = false;
  std::deque<MacWorkspaceNotification> queued_;
  desktop::LinuxWorkspaceObservers observers_;
  desktop::LinuxAgentLock lock_;
};

}  // namespace kovi::holds::wayland
