#include "KoviMacHolds/platform/wayland/WlrToplevelWorkspace.h"

#include <algorithm>
#include <cstdint>

#include "KoviMacHolds/MacHoldsIdentity.h"
#include "KoviMacHolds/platform/wayland/SwayIpc.h"

namespace kovi::holds::wayland {

struct WlrToplevelWorkspace::Toplevel {
  WlrToplevelWorkspace* workspace = nullptr;
  zwlr_foreign_toplevel_handle_v1* handle = nullptr;
  // What the compositor sent since its last "done", and what it confirmed.
  std::string pendingAppId;
  bool pendingActivated = false;
  bool pendingMinimized = false;
  // Activated by any state event of the batch: sway can activate a new
  // window and hand the keyboard straight back to a layer surface (the
  // shield) within one batch; the window still came to the front.
  bool activatedInBatch = false;
  std::string appId;
  bool activated = false;
  bool minimized = false;
  bool announced = false;  // a first "done" arrived
  desktop::LinuxApplicationIdentity identity;
  pid_t number = 0;
  std::uint64_t activatedAt = 0;  // order of activation, for the front application
};

namespace {

using Toplevel = WlrToplevelWorkspace::Toplevel;

Toplevel& toplevelOf(void* data) { return *static_cast<Toplevel*>(data); }

void handleTitle(void*, zwlr_foreign_toplevel_handle_v1*, const char*) {}

void handleAppId(void* data, zwlr_foreign_toplevel_handle_v1*, const char* appId) {
  toplevelOf(data).pendingAppId = appId;
}

void handleOutput(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}

void handleState(void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
  auto& toplevel = toplevelOf(data);
  toplevel.pendingActivated = false;
  toplevel.pendingMinimized = false;
  const auto* values = static_cast<const std::uint32_t*>(states->data);
  for (std::size_t index = 0; index < states->size / sizeof(std::uint32_t); ++index) {
    if (values[index] == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) {
      toplevel.pendingActivated = true;
      toplevel.activatedInBatch = true;
    }
    if (values[index] == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED) toplevel.pendingMinimized = true;
  }
}

void handleDone(void* data, zwlr_foreign_toplevel_handle_v1*) {
  auto& toplevel = toplevelOf(data);
  toplevel.workspace->toplevelDone(toplevel);
}

void handleClosed(void* data, zwlr_foreign_toplevel_handle_v1*) {
  auto& toplevel = toplevelOf(data);
  toplevel.workspace->toplevelClosed(toplevel);
}

void handleParent(void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {}

const zwlr_foreign_toplevel_handle_v1_listener kToplevelListener = {
    .title = handleTitle,
    .app_id = handleAppId,
    .output_enter = handleOutput,
    .output_leave = handleOutput,
    .state = handleState,
    .done = handleDone,
    .closed = handleClosed,
    .parent = handleParent,
};

void handleToplevel(void* data, zwlr_foreign_toplevel_manager_v1*, zwlr_foreign_toplevel_handle_v1* handle) {
  static_cast<WlrToplevelWorkspace*>(data)->toplevelAnnounced(handle);
}

void handleFinished(void*, zwlr_foreign_toplevel_manager_v1*) {}

const zwlr_foreign_toplevel_manager_v1_listener kManagerListener = {
    .toplevel = handleToplevel,
    .finished = handleFinished,
};

}  // namespace

WlrToplevelWorkspace::WlrToplevelWorkspace(WaylandDisplay& display, WaylandRunLoop& runLoop,
                                           std::optional<std::filesystem::path> swaySocket)
    : display_(display), swaySocket_(std::move(swaySocket)) {
  manager_ = display_.bind<zwlr_foreign_toplevel_manager_v1>(zwlr_foreign_toplevel_manager_v1_interface, 3);
  if (manager_ != nullptr) zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &kManagerListener, this);
  seat_ = display_.bind<wl_seat>(wl_seat_interface, 1);
  // The toplevels that exist already, each with its first state.
  wl_display_roundtrip(display_.get());
  wl_display_roundtrip(display_.get());
  queued_.clear();  // what was there before the agent is no launch
  runLoop.addIdleHandler([this] { deliverNotifications(); });
  runLoop.setWakeHandler([this] { queued_.push_back({MacWorkspaceEvent::didWake, std::nullopt}); });
}

WlrToplevelWorkspace::~WlrToplevelWorkspace() {
  for (auto& [handle, toplevel] : toplevels_) zwlr_foreign_toplevel_handle_v1_destroy(handle);
  if (manager_ != nullptr) zwlr_foreign_toplevel_manager_v1_destroy(manager_);
  if (seat_ != nullptr) wl_seat_destroy(seat_);
}

void WlrToplevelWorkspace::toplevelAnnounced(zwlr_foreign_toplevel_handle_v1* handle) {
  auto toplevel = std::make_unique<Toplevel>();
  toplevel->workspace = this;
  toplevel->handle = handle;
  zwlr_foreign_toplevel_handle_v1_add_listener(handle, &kToplevelListener, toplevel.get());
  toplevels_.emplace(handle, std::move(toplevel));
}

pid_t WlrToplevelWorkspace::numberFor(const std::string& bundleIdentifier) {
  const auto [entry, added] = numbers_.emplace(bundleIdentifier, nextNumber_);
  if (added) ++nextNumber_;
  return entry->second;
}

void WlrToplevelWorkspace::toplevelDone(Toplevel& toplevel) {
  const bool wasActivated = toplevel.activated;
  const bool isNew = !toplevel.announced;
  if (isNew || toplevel.appId != toplevel.pendingAppId) {
    toplevel.appId = toplevel.pendingAppId;
    toplevel.identity =
        desktop::linuxApplicationIdentity(desktop::LinuxWindowSystem::wayland, {toplevel.appId}, toplevel.appId);
    toplevel.announced = false;  // not counted while looking for the application's other toplevels
    const pid_t number =
        toplevel.identity.bundleIdentifier.empty() ? 0 : numberFor(toplevel.identity.bundleIdentifier);
    const bool launched = number != 0 && toplevelsOf(number).empty();
    toplevel.number = number;
    toplevel.announced = true;
    if (launched) queued_.push_back({MacWorkspaceEvent::didLaunchApplication, number});
  }
  toplevel.activated = toplevel.pendingActivated;
  toplevel.minimized = toplevel.pendingMinimized;
  const bool cameForward = toplevel.activatedInBatch && !wasActivated;
  toplevel.activatedInBatch = false;
  if (cameForward) {
    toplevel.activatedAt = ++activations_;
    if (!hiding_ && toplevel.number != 0) {
      queued_.push_back({MacWorkspaceEvent::didActivateApplication, toplevel.number});
    }
  }
}

void WlrToplevelWorkspace::toplevelClosed(Toplevel& toplevel) {
  const pid_t number = toplevel.number;
  zwlr_foreign_toplevel_handle_v1_destroy(toplevel.handle);
  toplevels_.erase(toplevel.handle);  // `toplevel` is gone from here on
  if (number != 0 && toplevelsOf(number).empty()) {
    queued_.push_back({MacWorkspaceEvent::didTerminateApplication, number});
  }
}

void WlrToplevelWorkspace::deliverNotifications() {
  while (!queued_.empty()) {
    const MacWorkspaceNotification note = queued_.front();
    queued_.pop_front();
    observers_.notify(note.event, note.processIdentifier);
  }
}

std::vector<Toplevel*> WlrToplevelWorkspace::toplevelsOf(pid_t number) const {
  std::vector<Toplevel*> result;
  for (const auto& [handle, toplevel] : toplevels_) {
    if (toplevel->announced && toplevel->number == number) result.push_back(toplevel.get());
  }
  return result;
}

std::optional<MacRunningApplication> WlrToplevelWorkspace::applicationOf(pid_t number) const {
  const auto toplevels = toplevelsOf(number);
  if (number == 0 || toplevels.empty()) return std::nullopt;
  const auto& identity = toplevels.front()->identity;
  return MacRunningApplication{number, identity.bundleIdentifier, identity.displayName, MacActivationPolicy::regular,
                               false};
}

std::vector<MacRunningApplication> WlrToplevelWorkspace::runningApplications() {
  std::set<pid_t> numbers;
  for (const auto& [handle, toplevel] : toplevels_) {
    if (toplevel->announced && toplevel->number != 0) numbers.insert(toplevel->number);
  }
  std::vector<MacRunningApplication> result;
  for (pid_t number : numbers) result.push_back(*applicationOf(number));
  return result;
}

std::optional<MacRunningApplication> WlrToplevelWorkspace::frontmostApplication() {
  const Toplevel* front = nullptr;
  for (const auto& [handle, toplevel] : toplevels_) {
    if (toplevel->activated && !toplevel->minimized && (front == nullptr || toplevel->activatedAt > front->activatedAt)) front = toplevel.get();
  }
  if (front == nullptr) return std::nullopt;
  return applicationOf(front->number);
}

std::optional<MacRunningApplication> WlrToplevelWorkspace::runningApplication(pid_t processIdentifier) {
  return applicationOf(processIdentifier);
}

bool WlrToplevelWorkspace::hide(const MacRunningApplication& application) {
  const auto toplevels = toplevelsOf(application.processIdentifier);
  if (toplevels.empty()) return false;
  hiding_ = true;
  const pid_t number = application.processIdentifier;
  const bool hidden = (!minimiseIgnored_ && hideByMinimising(number)) || hideInScratchpad(number);
  hiding_ = false;
  return hidden;
}

bool WlrToplevelWorkspace::hideByMinimising(pid_t number) {
  for (Toplevel* toplevel : toplevelsOf(number)) zwlr_foreign_toplevel_handle_v1_set_minimized(toplevel->handle);
  const bool minimised = display_.waitFor(
      [&] {
        const auto now = toplevelsOf(number);
        return std::ranges::all_of(now, [](const Toplevel* toplevel) { return toplevel->minimized; });
      },
      hideConfirmationTime);
  // Only with a fallback at hand is minimise given up for good: without one,
  // a compositor that was merely slow this once keeps being asked.
  if (!minimised && swaySocket_) minimiseIgnored_ = true;
  return minimised;
}

bool WlrToplevelWorkspace::hideInScratchpad(pid_t number) {
  if (!swaySocket_) return false;
  std::set<std::string> appIds;
  for (const Toplevel* toplevel : toplevelsOf(number)) appIds.insert(toplevel->appId);
  if (!swayMoveToScratchpad(*swaySocket_, appIds)) return false;
  // Confirmed once sway no longer reports any of them in front.
  return display_.waitFor(
      [&] {
        const auto now = toplevelsOf(number);
        return std::ranges::none_of(now, [](const Toplevel* toplevel) { return toplevel->activated; });
      },
      hideConfirmationTime);
}

void WlrToplevelWorkspace::openMainApp() {
  for (const auto& [handle, toplevel] : toplevels_) {
    if (seat_ != nullptr && toplevel->identity.bundleIdentifier == kMacHoldsMainAppBundleID) {
      zwlr_foreign_toplevel_handle_v1_activate(handle, seat_);
      wl_display_flush(display_.get());
      return;
    }
  }
  desktop::launchMainApp();
}

std::set<std::string> WlrToplevelWorkspace::desktopIdentifiers() const {
  return desktop::linuxDesktopIdentifiers(desktop::LinuxWindowSystem::wayland);
}

}  // namespace kovi::holds::wayland
