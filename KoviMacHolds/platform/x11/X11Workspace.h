#pragma once

#include <X11/Xlib.h>

#include <chrono>
#include <map>
#include <optional>
#include <set>

#include "KoviMacHolds/platform/MacWorkspace.h"
#include "KoviMacHolds/platform/linux/LinuxAgentLock.h"
#include "KoviMacHolds/platform/linux/LinuxWorkspaceObservers.h"
#include "KoviMacHolds/platform/x11/X11ApplicationIdentity.h"
#include "KoviMacHolds/platform/x11/X11Display.h"
#include "KoviMacHolds/platform/x11/X11RunLoop.h"

namespace kovi::holds::x11 {

// The workspace of an X11 desktop run by an EWMH window manager. An
// application is the process behind top-level windows (_NET_WM_PID), named by
// their WM_CLASS. The front application follows _NET_ACTIVE_WINDOW on the root
// window; launches and terminations follow _NET_CLIENT_LIST; both arrive as
// PropertyNotify events, so nothing is polled.
class X11Workspace final : public MacWorkspace {
 public:
  // How long the window manager has to confirm that a hidden application's
  // windows are iconic before the hide counts as refused.
  static constexpr std::chrono::milliseconds hideConfirmationTime{500};

  X11Workspace(X11Display& display, X11RunLoop& runLoop);

  std::vector<MacRunningApplication> runningApplications() override;
  std::optional<MacRunningApplication> frontmostApplication() override;
  std::optional<MacRunningApplication> runningApplication(pid_t processIdentifier) override;
  // Iconifies every top-level window of the application and waits for the
  // window manager to set their WM_STATE to Iconic.
  bool hide(const MacRunningApplication& application) override;
  // Activates a running Kovi window, or starts `kovi-app` from PATH.
  void openMainApp() override;
  bool anotherAgentIsRunning() override;
  std::set<std::string> desktopIdentifiers() const override;

  MacObserverToken addObserver(MacWorkspaceEvent event,
                               std::function<void(const MacWorkspaceNotification&)> handler) override;
  void removeObserver(MacObserverToken token) override;

 private:
  struct ClientWindow {
    pid_t processIdentifier = 0;
    desktop::LinuxApplicationIdentity identity;
    bool isDesktopPart = false;  // a dock or the desktop window
  };

  void handleEvent(const XEvent& event);
  // Re-reads _NET_CLIENT_LIST and reports the processes that came and went.
  void refreshClients(bool notify);
  void activeWindowChanged();
  std::optional<ClientWindow> describeWindow(Window window) const;
  std::optional<MacRunningApplication> applicationOf(pid_t processIdentifier) const;
  std::set<pid_t> processes() const;
  void notify(MacWorkspaceEvent event, std::optional<pid_t> processIdentifier);

  X11Display& display_;
  std::map<Window, ClientWindow> clients_;
  desktop::LinuxWorkspaceObservers observers_;
  desktop::LinuxAgentLock lock_;
};

}  // namespace kovi::holds::x11
