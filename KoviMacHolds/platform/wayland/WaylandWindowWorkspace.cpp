#include "KoviMacHolds/platform/wayland/WaylandWindowWorkspace.h"

#include <algorithm>

#include "KoviMacHolds/MacHoldsIdentity.h"

namespace kovi::holds::wayland {

WaylandWindowWorkspace::WaylandWindowWorkspace(WaylandDisplay& display, WaylandRunLoop& runLoop) : display_(display) {
  runLoop.addIdleHandler([this] { deliverNotifications(); });
  runLoop.setWakeHandler([this] { queued_.push_back({MacWorkspaceEvent::didWake, std::nullopt}); });
}

void WaylandWindowWorkspace::readExistingWindows() {
  // The windows are announced in one round trip and described in the next.
  wl_display_roundtrip(display_.get());
  wl_display_roundtrip(display_.get());
  queued_.clear();  // what was there before the agent is no launch
}

pid_t WaylandWindowWorkspace::numberFor(const std::string& bundleIdentifier) {
  const auto [entry, added] = numbers_.emplace(bundleIdentifier, nextNumber_);
  if (added) ++nextNumber_;
  return entry->second;
}

void WaylandWindowWorkspace::windowChanged(const void* handle, const WindowState& state, bool cameForward) {
  Window& window = windows_[handle];
  const bool wasActivated = window.state.activated;
  if (!window.announced || window.state.appId != state.appId) {
    window.identity =
        desktop::linuxApplicationIdentity(desktop::LinuxWindowSystem::wayland, {state.appId}, state.appId);
    window.announced = false;  // not counted while looking for the application's other windows
    const pid_t number = window.identity.bundleIdentifier.empty() ? 0 : numberFor(window.identity.bundleIdentifier);
    const bool launched = number != 0 && announcedWindowsOf(number).empty();
    window.number = number;
    window.announced = true;
    if (launched) queued_.push_back({MacWorkspaceEvent::didLaunchApplication, number});
  }
  window.state = state;
  if (cameForward && !wasActivated) {
    window.activatedAt = ++activations_;
    if (!hiding_ && window.number != 0) queued_.push_back({MacWorkspaceEvent::didActivateApplication, window.number});
  }
}

void WaylandWindowWorkspace::windowClosed(const void* handle) {
  const auto found = windows_.find(handle);
  if (found == windows_.end()) return;
  const pid_t number = found->second.number;
  windows_.erase(found);
  if (number != 0 && announcedWindowsOf(number).empty()) {
    queued_.push_back({MacWorkspaceEvent::didTerminateApplication, number});
  }
}

void WaylandWindowWorkspace::deliverNotifications() {
  while (!queued_.empty()) {
    const MacWorkspaceNotification note = queued_.front();
    queued_.pop_front();
    observers_.notify(note.event, note.processIdentifier);
  }
}

std::vector<const WaylandWindowWorkspace::Window*> WaylandWindowWorkspace::announcedWindowsOf(pid_t number) const {
  std::vector<const Window*> result;
  for (const auto& [handle, window] : windows_) {
    if (window.announced && window.number == number) result.push_back(&window);
  }
  return result;
}

std::vector<const void*> WaylandWindowWorkspace::windowsOf(pid_t number) const {
  std::vector<const void*> result;
  for (const auto& [handle, window] : windows_) {
    if (window.announced && window.number == number) result.push_back(handle);
  }
  return result;
}

std::set<std::string> WaylandWindowWorkspace::appIdsOf(pid_t number) const {
  std::set<std::string> result;
  for (const Window* window : announcedWindowsOf(number)) result.insert(window->state.appId);
  return result;
}

bool WaylandWindowWorkspace::allActivated(pid_t number, bool activated) const {
  return std::ranges::all_of(announcedWindowsOf(number),
                             [&](const Window* window) { return window->state.activated == activated; });
}

std::optional<MacRunningApplication> WaylandWindowWorkspace::applicationOf(pid_t number) const {
  const auto windows = announcedWindowsOf(number);
  if (number == 0 || windows.empty()) return std::nullopt;
  const auto& identity = windows.front()->identity;
  return MacRunningApplication{number, identity.bundleIdentifier, identity.displayName, MacActivationPolicy::regular,
                               false};
}

std::vector<MacRunningApplication> WaylandWindowWorkspace::runningApplications() {
  std::set<pid_t> numbers;
  for (const auto& [handle, window] : windows_) {
    if (window.announced && window.number != 0) numbers.insert(window.number);
  }
  std::vector<MacRunningApplication> result;
  for (pid_t number : numbers) result.push_back(*applicationOf(number));
  return result;
}

std::optional<MacRunningApplication> WaylandWindowWorkspace::frontmostApplication() {
  const Window* front = nullptr;
  for (const auto& [handle, window] : windows_) {
    if (window.announced && window.state.activated && !window.state.minimized &&
        (front == nullptr || window.activatedAt > front->activatedAt)) {
      front = &window;
    }
  }
  if (front == nullptr) return std::nullopt;
  return applicationOf(front->number);
}

std::optional<MacRunningApplication> WaylandWindowWorkspace::runningApplication(pid_t processIdentifier) {
  return applicationOf(processIdentifier);
}

bool WaylandWindowWorkspace::hide(const MacRunningApplication& application) {
  const pid_t number = application.processIdentifier;
  if (number == 0 || windowsOf(number).empty()) return false;
  hiding_ = true;
  const bool hidden = (!minimiseIgnored_ && hideByMinimising(number)) || hideByFallback(number);
  hiding_ = false;
  return hidden;
}

bool WaylandWindowWorkspace::hideByMinimising(pid_t number) {
  for (const void* handle : windowsOf(number)) requestMinimise(handle);
  const bool minimised = display_.waitFor(
      [&] {
        return std::ranges::all_of(announcedWindowsOf(number), [](const Window* window) { return window->state.minimized; });
      },
      hideConfirmationTime);
  // Only with a fallback at hand is minimise given up for good: without one,
  // a compositor that was merely slow this once keeps being asked.
  if (!minimised && hasHideFallback()) minimiseIgnored_ = true;
  return minimised;
}

void WaylandWindowWorkspace::openMainApp() {
  for (const auto& [handle, window] : windows_) {
    if (window.announced && window.identity.bundleIdentifier == kMacHoldsMainAppBundleID) {
      requestActivate(handle);
      wl_display_flush(display_.get());
      return;
    }
  }
  desktop::launchMainApp();
}

std::set<std::string> WaylandWindowWorkspace::desktopIdentifiers() const {
  return desktop::linuxDesktopIdentifiers(desktop::LinuxWindowSystem::wayland);
}

}  // namespace kovi::holds::wayland
