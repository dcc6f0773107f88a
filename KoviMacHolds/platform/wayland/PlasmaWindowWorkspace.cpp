#include "KoviMacHolds/platform/wayland/PlasmaWindowWorkspace.h"

namespace kovi::holds::wayland {

struct PlasmaWindowWorkspace::Window {
  PlasmaWindowWorkspace* workspace = nullptr;
  org_kde_plasma_window* handle = nullptr;
  WindowState state;
  // All of the window's initial state has arrived; before that its app_id
  // may still be missing.
  bool described = false;
};

namespace {

using Window = PlasmaWindowWorkspace::Window;

// The first version that marks the end of a window's initial state and can
// destroy a window object.
constexpr std::uint32_t kInitialStateVersion = ORG_KDE_PLASMA_WINDOW_INITIAL_STATE_SINCE_VERSION;
// The first version that announces windows by uuid, the id being deprecated.
constexpr std::uint32_t kUuidVersion = ORG_KDE_PLASMA_WINDOW_MANAGEMENT_WINDOW_WITH_UUID_SINCE_VERSION;

Window& windowOf(void* data) { return *static_cast<Window*>(data); }

void handleTitle(void*, org_kde_plasma_window*, const char*) {}

void handleAppId(void* data, org_kde_plasma_window*, const char* appId) {
  auto& window = windowOf(data);
  window.state.appId = appId;
  window.workspace->windowUpdated(window);
}

void handleState(void* data, org_kde_plasma_window*, std::uint32_t flags) {
  auto& window = windowOf(data);
  window.state.activated = (flags & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE) != 0;
  window.state.minimized = (flags & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_MINIMIZED) != 0;
  window.workspace->windowUpdated(window);
}

void handleInitialState(void* data, org_kde_plasma_window*) {
  auto& window = windowOf(data);
  window.described = true;
  window.workspace->windowUpdated(window);
}

void handleUnmapped(void* data, org_kde_plasma_window*) {
  auto& window = windowOf(data);
  window.workspace->windowUnmapped(window);
}

void ignoreNumber(void*, org_kde_plasma_window*, std::int32_t) {}
void ignoreUnsigned(void*, org_kde_plasma_window*, std::uint32_t) {}
void ignoreText(void*, org_kde_plasma_window*, const char*) {}
void ignoreEvent(void*, org_kde_plasma_window*) {}
void ignoreParent(void*, org_kde_plasma_window*, org_kde_plasma_window*) {}
void ignoreGeometry(void*, org_kde_plasma_window*, std::int32_t, std::int32_t, std::uint32_t, std::uint32_t) {}
void ignoreMenu(void*, org_kde_plasma_window*, const char*, const char*) {}

const org_kde_plasma_window_listener kWindowListener = {
    .title_changed = handleTitle,
    .app_id_changed = handleAppId,
    .state_changed = handleState,
    .virtual_desktop_changed = ignoreNumber,
    .themed_icon_name_changed = ignoreText,
    .unmapped = handleUnmapped,
    .initial_state = handleInitialState,
    .parent_window = ignoreParent,
    .geometry = ignoreGeometry,
    .icon_changed = ignoreEvent,
    .pid_changed = ignoreUnsigned,
    .virtual_desktop_entered = ignoreText,
    .virtual_desktop_left = ignoreText,
    .application_menu = ignoreMenu,
    .activity_entered = ignoreText,
    .activity_left = ignoreText,
    .resource_name_changed = ignoreText,
};

void handleShowDesktop(void*, org_kde_plasma_window_management*, std::uint32_t) {}

void handleWindow(void* data, org_kde_plasma_window_management*, std::uint32_t id) {
  auto& workspace = *static_cast<PlasmaWindowWorkspace*>(data);
  // From the uuid version on, every window also comes with its uuid.
  if (workspace.managerVersion() < kUuidVersion) workspace.windowMapped(id, nullptr);
}

void handleStackingOrder(void*, org_kde_plasma_window_management*, wl_array*) {}
void handleStackingOrderUuids(void*, org_kde_plasma_window_management*, const char*) {}

void handleWindowWithUuid(void* data, org_kde_plasma_window_management*, std::uint32_t id, const char* uuid) {
  static_cast<PlasmaWindowWorkspace*>(data)->windowMapped(id, uuid);
}

const org_kde_plasma_window_management_listener kManagerListener = {
    .show_desktop_changed = handleShowDesktop,
    .window = handleWindow,
    .stacking_order_changed = handleStackingOrder,
    .stacking_order_uuid_changed = handleStackingOrderUuids,
    .window_with_uuid = handleWindowWithUuid,
};

void destroyWindow(org_kde_plasma_window* handle) {
  if (org_kde_plasma_window_get_version(handle) >= kInitialStateVersion) {
    org_kde_plasma_window_destroy(handle);
  } else {
    wl_proxy_destroy(reinterpret_cast<wl_proxy*>(handle));
  }
}

}  // namespace

PlasmaWindowWorkspace::PlasmaWindowWorkspace(WaylandDisplay& display, WaylandRunLoop& runLoop)
    : WaylandWindowWorkspace(display, runLoop) {
  manager_ = display_.bind<org_kde_plasma_window_management>(org_kde_plasma_window_management_interface,
                                                              ORG_KDE_PLASMA_WINDOW_RESOURCE_NAME_CHANGED_SINCE_VERSION);
  if (manager_ != nullptr) org_kde_plasma_window_management_add_listener(manager_, &kManagerListener, this);
  readExistingWindows();
}

PlasmaWindowWorkspace::~PlasmaWindowWorkspace() {
  for (auto& [handle, window] : windows_) destroyWindow(window->handle);
  if (manager_ != nullptr) wl_proxy_destroy(reinterpret_cast<wl_proxy*>(manager_));
}

std::uint32_t PlasmaWindowWorkspace::managerVersion() const {
  return org_kde_plasma_window_management_get_version(manager_);
}

void PlasmaWindowWorkspace::windowMapped(std::uint32_t id, const char* uuid) {
  auto window = std::make_unique<Window>();
  window->workspace = this;
  window->handle = uuid != nullptr ? org_kde_plasma_window_management_get_window_by_uuid(manager_, uuid)
                                   : org_kde_plasma_window_management_get_window(manager_, id);
  // Without the initial-state event, all there is arrives in the next round
  // trip and each event stands on its own.
  window->described = managerVersion() < kInitialStateVersion;
  org_kde_plasma_window_add_listener(window->handle, &kWindowListener, window.get());
  windows_.emplace(window->handle, std::move(window));
}

void PlasmaWindowWorkspace::windowUpdated(Window& window) {
  // Each event is a confirmed state of its own, so a window activated here
  // came to the front.
  if (window.described) windowChanged(window.handle, window.state, window.state.activated);
}

void PlasmaWindowWorkspace::windowUnmapped(Window& window) {
  org_kde_plasma_window* handle = window.handle;
  destroyWindow(handle);
  windows_.erase(handle);  // `window` is gone from here on
  windowClosed(handle);
}

void PlasmaWindowWorkspace::requestMinimise(const void* handle) {
  org_kde_plasma_window_set_state(windows_.at(handle)->handle, ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_MINIMIZED,
                                  ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_MINIMIZED);
}

void PlasmaWindowWorkspace::requestActivate(const void* handle) {
  // Activating a minimised window brings it back first.
  org_kde_plasma_window_set_state(windows_.at(handle)->handle,
                                  ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE |
                                      ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_MINIMIZED,
                                  ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE);
}

}  // namespace kovi::holds::wayland
