#include "KoviMacHolds/platform/x11/X11Workspace.h"

#include <unistd.h>

#include <X11/Xutil.h>

#include <algorithm>

#include "KoviMacHolds/MacHoldsIdentity.h"
#include "KoviMacHolds/platform/linux/LinuxAgentLock.h"

namespace kovi::holds::x11 {

namespace {

// _NET_ACTIVE_WINDOW source indication of a pager: the window manager honours
// it without focus-stealing checks, as a click in a task bar would be.
constexpr long kSourcePager = 2;

}  // namespace

X11Workspace::X11Workspace(X11Display& display, X11RunLoop& runLoop) : display_(display) {
  XSelectInput(display_.get(), display_.root(), PropertyChangeMask);
  refreshClients(false);
  runLoop.addEventHandler([this](const XEvent& event) { handleEvent(event); });
  runLoop.setWakeHandler([this] { notify(MacWorkspaceEvent::didWake, std::nullopt); });
}

void X11Workspace::handleEvent(const XEvent& event) {
  if (event.type != PropertyNotify || event.xproperty.window != display_.root()) return;
  if (event.xproperty.atom == display_.atoms().netClientList) {
    refreshClients(true);
  } else if (event.xproperty.atom == display_.atoms().netActiveWindow) {
    activeWindowChanged();
  }
}

std::optional<X11Workspace::ClientWindow> X11Workspace::describeWindow(Window window) const {
  const auto pid = display_.cardinalProperty(window, display_.atoms().netWmPid);
  if (!pid || *pid <= 0) return std::nullopt;  // no process to speak of
  ClientWindow client;
  client.processIdentifier = static_cast<pid_t>(*pid);
  if (client.processIdentifier == getpid()) {
    client.identity = {std::string(kMacHoldsAgentBundleID), "Kovi"};
  } else {
    client.identity = x11ApplicationIdentity(display_.windowClass(window).value_or(X11WindowClass{}));
  }
  const auto& atoms = display_.atoms();
  for (Atom type : display_.atomListProperty(window, atoms.netWmWindowType)) {
    if (type == atoms.netWmWindowTypeDock || type == atoms.netWmWindowTypeDesktop) client.isDesktopPart = true;
  }
  return client;
}

void X11Workspace::refreshClients(bool notify) {
  const std::set<pid_t> before = processes();
  const auto windows = display_.windowListProperty(display_.root(), display_.atoms().netClientList);
  std::map<Window, ClientWindow> updated;
  for (Window window : windows) {
    if (auto known = clients_.find(window); known != clients_.end()) {
      updated.emplace(window, known->second);
    } else if (auto client = describeWindow(window)) {
      // WM_STATE changes of other clients' windows confirm hides; the
      // agent's own windows keep the event mask they were created with.
      if (client->processIdentifier != getpid()) XSelectInput(display_.get(), window, PropertyChangeMask);
      updated.emplace(window, std::move(*client));
    }
  }
  clients_ = std::move(updated);
  if (!notify) return;
  const std::set<pid_t> after = processes();
  for (pid_t pid : after) {
    if (!before.contains(pid)) this->notify(MacWorkspaceEvent::didLaunchApplication, pid);
  }
  for (pid_t pid : before) {
    if (!after.contains(pid)) this->notify(MacWorkspaceEvent::didTerminateApplication, pid);
  }
}

void X11Workspace::activeWindowChanged() {
  // The property is read now rather than trusted from the event: of changes
  // that queued up while the agent was busy (its own hide moving the focus
  // around, say) only the window in front now matters. It is reported even
  // when it was in front before, as it may have left and come back meanwhile.
  const auto active = display_.windowProperty(display_.root(), display_.atoms().netActiveWindow);
  if (!active) return;
  auto client = clients_.find(*active);
  if (client == clients_.end()) {
    // Activated before the client list mentioned it.
    refreshClients(true);
    client = clients_.find(*active);
    if (client == clients_.end()) return;
  }
  notify(MacWorkspaceEvent::didActivateApplication, client->second.processIdentifier);
}

std::set<pid_t> X11Workspace::processes() const {
  std::set<pid_t> result;
  for (const auto& [window, client] : clients_) result.insert(client.processIdentifier);
  return result;
}

std::optional<MacRunningApplication> X11Workspace::applicationOf(pid_t processIdentifier) const {
  std::optional<MacRunningApplication> application;
  for (const auto& [window, client] : clients_) {
    if (client.processIdentifier != processIdentifier) continue;
    const auto policy = client.isDesktopPart ? MacActivationPolicy::accessory : MacActivationPolicy::regular;
    if (!application || (application->activationPolicy != MacActivationPolicy::regular &&
                         policy == MacActivationPolicy::regular)) {
      // One ordinary window makes the whole process an ordinary application.
      auto identifier = client.identity.bundleIdentifier.empty()
                            ? std::nullopt
                            : std::optional<std::string>(client.identity.bundleIdentifier);
      application = MacRunningApplication{processIdentifier, std::move(identifier), client.identity.displayName, policy,
                                          false};
    }
  }
  return application;
}

std::vector<MacRunningApplication> X11Workspace::runningApplications() {
  std::vector<MacRunningApplication> result;
  for (pid_t pid : processes()) {
    if (auto application = applicationOf(pid)) result.push_back(std::move(*application));
  }
  return result;
}

std::optional<MacRunningApplication> X11Workspace::frontmostApplication() {
  const auto active = display_.windowProperty(display_.root(), display_.atoms().netActiveWindow);
  if (!active) return std::nullopt;
  const auto client = clients_.find(*active);
  if (client == clients_.end()) return std::nullopt;
  return applicationOf(client->second.processIdentifier);
}

std::optional<MacRunningApplication> X11Workspace::runningApplication(pid_t processIdentifier) {
  return applicationOf(processIdentifier);
}

bool X11Workspace::hide(const MacRunningApplication& application) {
  if (application.processIdentifier == getpid()) return false;
  std::vector<Window> windows;
  for (const auto& [window, client] : clients_) {
    if (client.processIdentifier == application.processIdentifier && !client.isDesktopPart) windows.push_back(window);
  }
  if (windows.empty()) return false;

  // The window being activated may still read Iconic: the window manager can
  // announce the activation before it has shown the window again. So the
  // active window is always asked, and a window only counts as hidden once
  // the window manager has changed its WM_STATE after the request.
  const auto active = display_.windowProperty(display_.root(), display_.atoms().netActiveWindow);
  std::vector<Window> asked;
  for (Window window : windows) {
    if (window == active || display_.wmState(window) != IconicState) {
      XIconifyWindow(display_.get(), window, display_.screen());
      asked.push_back(window);
    }
  }
  if (asked.empty()) return true;
  XFlush(display_.get());

  struct StateChanges {
    const std::vector<Window>* windows;
    Atom wmState;
  } wanted{&asked, display_.atoms().wmState};
  auto isStateChange = [](Display*, XEvent* event, XPointer argument) -> Bool {
    const auto* changes = reinterpret_cast<const StateChanges*>(argument);
    return event->type == PropertyNotify && event->xproperty.atom == changes->wmState &&
           std::ranges::find(*changes->windows, event->xproperty.window) != changes->windows->end();
  };
  std::set<Window> changed;
  return display_.waitFor(
      [&] {
        XEvent event;
        while (XCheckIfEvent(display_.get(), &event, isStateChange, reinterpret_cast<XPointer>(&wanted))) {
          changed.insert(event.xproperty.window);
        }
        return std::ranges::all_of(asked, [&](Window window) {
          return changed.contains(window) && display_.wmState(window) == IconicState;
        });
      },
      hideConfirmationTime);
}

void X11Workspace::openMainApp() {
  for (const auto& [window, client] : clients_) {
    if (client.identity.bundleIdentifier == kMacHoldsMainAppBundleID) {
      display_.sendRootMessage(window, display_.atoms().netActiveWindow, kSourcePager, CurrentTime);
      XFlush(display_.get());
      return;
    }
  }
  desktop::launchMainApp();
}

bool X11Workspace::anotherAgentIsRunning() { return lock_.anotherAgentIsRunning(); }

std::set<std::string> X11Workspace::desktopIdentifiers() const { return desktop::linuxDesktopIdentifiers(desktop::LinuxWindowSystem::x11); }

MacObserverToken X11Workspace::addObserver(MacWorkspaceEvent event,
                                           std::function<void(const MacWorkspaceNotification&)> handler) {
  return observers_.add(event, std::move(handler));
}

void X11Workspace::removeObserver(MacObserverToken token) { observers_.remove(token); }

void X11Workspace::notify(MacWorkspaceEvent event, std::optional<pid_t> processIdentifier) {
  observers_.notify(event, processIdentifier);
}

}  // namespace kovi::holds::x11
