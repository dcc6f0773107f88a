#include "KoviMacHolds/platform/wayland/WlrToplevelWorkspace.h"

#include <cstdint>

#include "KoviMacHolds/platform/wayland/SwayIpc.h"

namespace kovi::holds::wayland {

struct WlrToplevelWorkspace::Toplevel {
  WlrToplevelWorkspace* workspace = nullptr;
  zwlr_foreign_toplevel_handle_v1* handle = nullptr;
  // What the compositor sent since its last "done".
  WindowState pending;
  // Activated by any state event of the batch: sway can activate a new
  // window and hand the keyboard straight back to a layer surface (the
  // shield) within one batch; the window still came to the front.
  bool activatedInBatch = false;
};

namespace {

using Toplevel = WlrToplevelWorkspace::Toplevel;

Toplevel& toplevelOf(void* data) { return *static_cast<Toplevel*>(data); }

void handleTitle(void*, zwlr_foreign_toplevel_handle_v1*, const char*) {}

void handleAppId(void* data, zwlr_foreign_toplevel_handle_v1*, const char* appId) {
  toplevelOf(data).pending.appId = appId;
}

void handleOutput(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}

void handleState(void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
  auto& toplevel = toplevelOf(data);
  toplevel.pending.activated = false;
  toplevel.pending.minimized = false;
  const auto* values = static_cast<const std::uint32_t*>(states->data);
  for (std::size_t index = 0; index < states->size / sizeof(std::uint32_t); ++index) {
    if (values[index] == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED) {
      toplevel.pending.activated = true;
      toplevel.activatedInBatch = true;
    }
    if (values[index] == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED) toplevel.pending.minimized = true;
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
    : WaylandWindowWorkspace(display, runLoop), swaySocket_(std::move(swaySocket)) {
  manager_ = display_.bind<zwlr_foreign_toplevel_manager_v1>(zwlr_foreign_toplevel_manager_v1_interface, 3);
  if (manager_ != nullptr) zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &kManagerListener, this);
  seat_ = display_.bind<wl_seat>(wl_seat_interface, 1);
  readExistingWindows();
}

WlrToplevelWorkspace::~WlrToplevelWorkspace() {
  for (auto& [handle, toplevel] : toplevels_) zwlr_foreign_toplevel_handle_v1_destroy(toplevel->handle);
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

void WlrToplevelWorkspace::toplevelDone(Toplevel& toplevel) {
  windowChanged(toplevel.handle, toplevel.pending, toplevel.activatedInBatch);
  toplevel.activatedInBatch = false;
}

void WlrToplevelWorkspace::toplevelClosed(Toplevel& toplevel) {
  zwlr_foreign_toplevel_handle_v1* handle = toplevel.handle;
  zwlr_foreign_toplevel_handle_v1_destroy(handle);
  toplevels_.erase(handle);  // `toplevel` is gone from here on
  windowClosed(handle);
}

void WlrToplevelWorkspace::requestMinimise(const void* handle) {
  zwlr_foreign_toplevel_handle_v1_set_minimized(toplevels_.at(handle)->handle);
}

void WlrToplevelWorkspace::requestActivate(const void* handle) {
  if (seat_ != nullptr) zwlr_foreign_toplevel_handle_v1_activate(toplevels_.at(handle)->handle, seat_);
}

bool WlrToplevelWorkspace::hideByFallback(pid_t number) {
  if (!swaySocket_ || !swayMoveToScratchpad(*swaySocket_, appIdsOf(number))) return false;
  // Confirmed once sway no longer reports any of them in front.
  return display_.waitFor([&] { return allActivated(number, false); }, hideConfirmationTime);
}

}  // namespace kovi::holds::wayland
