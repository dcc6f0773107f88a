#pragma once

#include <chrono>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "KoviMacHolds/platform/MacWorkspace.h"
#include "KoviMacHolds/platform/linux/LinuxAgentLock.h"
#include "KoviMacHolds/platform/linux/LinuxApplicationIdentity.h"
#include "KoviMacHolds/platform/linux/LinuxWorkspaceObservers.h"
#include "KoviMacHolds/platform/wayland/WaylandDisplay.h"
#include "KoviMacHolds/platform/wayland/WaylandRunLoop.h"
#include "KoviMacHolds/platform/wayland/protocols/wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"

namespace kovi::holds::wayland {

// The workspace of a wlroots compositor, from its foreign-toplevel list: an
// application is every toplevel whose app_id names the same application (the
// shared Linux table), and the front application is the one whose toplevel
// the compositor reports activated. The compositor does not say which
// process owns a toplevel, so each application gets a number of its own for
// the life of the agent, in the place of a process identifier.
class WlrToplevelWorkspace final : public MacWorkspace {
 public:
  // How long the compositor has to report a minimised (or, after the
  // scratchpad fallback, deactivated) toplevel before the hide counts as
  // refused.
  static constexpr std::chrono::milliseconds hideConfirmationTime{300};

  // `swaySocket`: sway's IPC socket ($SWAYSOCK), for compositors that ignore minimise.
  WlrToplevelWorkspace(WaylandDisplay& display, WaylandRunLoop& runLoop, std::optional<std::filesystem::path> swaySocket);
  ~WlrToplevelWorkspace() override;

  std::vector<MacRunningApplication> runningApplications() override;
  std::optional<MacRunningApplication> frontmostApplication() override;
  std::optional<MacRunningApplication> runningApplication(pid_t processIdentifier) override;
  // Minimises every toplevel of the application; once the compositor has
  // shown that it ignores that, moves them to sway's scratchpad instead.
  bool hide(const MacRunningApplication& application) override;
  void openMainApp() override;
  bool anotherAgentIsRunning() override { return lock_.anotherAgentIsRunning(); }
  std::set<std::string> desktopIdentifiers() const override;

  MacObserverToken addObserver(MacWorkspaceEvent event,
                               std::function<void(const MacWorkspaceNotification&)> handler) override {
    return observers_.add(event, std::move(handler));
  }
  void removeObserver(MacObserverToken token) override { observers_.remove(token); }

  // The toplevel protocol's listeners; public for the C callbacks only.
  struct Toplevel;
  void toplevelAnnounced(zwlr_foreign_toplevel_handle_v1* handle);
  void toplevelDone(Toplevel& toplevel);
  void toplevelClosed(Toplevel& toplevel);

 private:
  void deliverNotifications();
  pid_t numberFor(const std::string& bundleIdentifier);
  std::optional<MacRunningApplication> applicationOf(pid_t number) const;
  std::vector<Toplevel*> toplevelsOf(pid_t number) const;
  bool hideByMinimising(pid_t number);
  bool hideInScratchpad(pid_t number);

  WaylandDisplay& display_;
  zwlr_foreign_toplevel_manager_v1* manager_ = nullptr;
  wl_seat* seat_ = nullptr;  // for activating the main app's window
  std::map<zwlr_foreign_toplevel_handle_v1*, std::unique_ptr<Toplevel>> toplevels_;
  std::map<std::string, pid_t> numbers_;
  pid_t nextNumber_ = 1;
  std::uint64_t activations_ = 0;
  std::optional<std::filesystem::path> swaySocket_;
  // Set once the compositor let a minimise request go unanswered while the
  // scratchpad fallback is there.
  bool minimiseIgnored_ = false;
  // While the agent hides an application, the compositor moves the focus on
  // by itself; those activations are not the person's and are not reported.
  bool hiding_ = false;
  std::deque<MacWorkspaceNotification> queued_;
  desktop::LinuxWorkspaceObservers observers_;
  desktop::LinuxAgentLock lock_;
};

}  // namespace kovi::holds::wayland
