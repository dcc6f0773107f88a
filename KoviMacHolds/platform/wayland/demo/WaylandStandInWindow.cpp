// kovi-wayland-window APP_ID: maps one plain xdg-shell window carrying APP_ID
// and keeps it open until killed, standing in for that application on a
// Wayland desktop where foot cannot run (it divides by the zero physical
// size of KWin's virtual output).
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "KoviMacHolds/platform/wayland/protocols/xdg-shell-client-protocol.h"

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 200;

wl_compositor* gCompositor = nullptr;
wl_shm* gShm = nullptr;
xdg_wm_base* gWmBase = nullptr;

void handleGlobal(void*, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
  if (std::strcmp(interface, wl_compositor_interface.name) == 0) {
    gCompositor = static_cast<wl_compositor*>(wl_registry_bind(registry, name, &wl_compositor_interface, 1));
  } else if (std::strcmp(interface, wl_shm_interface.name) == 0) {
    gShm = static_cast<wl_shm*>(wl_registry_bind(registry, name, &wl_shm_interface, 1));
  } else if (std::strcmp(interface, xdg_wm_base_interface.name) == 0) {
    gWmBase = static_cast<xdg_wm_base*>(wl_registry_bind(registry, name, &xdg_wm_base_interface, 1));
  }
}
void handleGlobalRemove(void*, wl_registry*, std::uint32_t) {}

void handlePing(void*, xdg_wm_base* base, std::uint32_t serial) { xdg_wm_base_pong(base, serial); }

void handleSurfaceConfigure(void* data, xdg_surface* surface, std::uint32_t serial) {
  xdg_surface_ack_configure(surface, serial);
  *static_cast<bool*>(data) = true;
}

void handleToplevelConfigure(void*, xdg_toplevel*, std::int32_t, std::int32_t, wl_array*) {}
void handleToplevelClose(void*, xdg_toplevel*) {}
void handleBounds(void*, xdg_toplevel*, std::int32_t, std::int32_t) {}
void handleCapabilities(void*, xdg_toplevel*, wl_array*) {}

// A grey buffer of the window's size, or null.
wl_buffer* greyBuffer() {
  const int stride = kWidth * 4;
  const int size = stride * kHeight;
  const int fd = memfd_create("kovi-stand-in", MFD_CLOEXEC);
  if (fd < 0 || ftruncate(fd, size) != 0) return nullptr;
  void* data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  if (data == MAP_FAILED) return nullptr;
  std::memset(data, 0x80, size);
  wl_shm_pool* pool = wl_shm_create_pool(gShm, fd, size);
  wl_buffer* buffer = wl_shm_pool_create_buffer(pool, 0, kWidth, kHeight, stride, WL_SHM_FORMAT_XRGB8888);
  wl_shm_pool_destroy(pool);
  close(fd);
  return buffer;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s APP_ID\n", argv[0]);
    return 2;
  }
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) {
    std::fprintf(stderr, "%s: cannot connect to the Wayland display\n", argv[0]);
    return 1;
  }
  static const wl_registry_listener registryListener = {handleGlobal, handleGlobalRemove};
  wl_registry_add_listener(wl_display_get_registry(display), &registryListener, nullptr);
  wl_display_roundtrip(display);
  if (gCompositor == nullptr || gShm == nullptr || gWmBase == nullptr) {
    std::fprintf(stderr, "%s: the compositor offers no xdg-shell windows\n", argv[0]);
    return 1;
  }
  static const xdg_wm_base_listener wmBaseListener = {.ping = handlePing};
  xdg_wm_base_add_listener(gWmBase, &wmBaseListener, nullptr);
  wl_surface* surface = wl_compositor_create_surface(gCompositor);
  xdg_surface* shellSurface = xdg_wm_base_get_xdg_surface(gWmBase, surface);
  bool configured = false;
  static const xdg_surface_listener surfaceListener = {.configure = handleSurfaceConfigure};
  xdg_surface_add_listener(shellSurface, &surfaceListener, &configured);
  xdg_toplevel* toplevel = xdg_surface_get_toplevel(shellSurface);
  static const xdg_toplevel_listener toplevelListener = {.configure = handleToplevelConfigure,
                                                         .close = handleToplevelClose,
                                                         .configure_bounds = handleBounds,
                                                         .wm_capabilities = handleCapabilities};
  xdg_toplevel_add_listener(toplevel, &toplevelListener, nullptr);
  xdg_toplevel_set_app_id(toplevel, argv[1]);
  xdg_toplevel_set_title(toplevel, argv[1]);
  wl_surface_commit(surface);
  while (!configured) {
    if (wl_display_dispatch(display) < 0) return 1;
  }
  wl_buffer* buffer = greyBuffer();
  if (buffer == nullptr) return 1;
  wl_surface_attach(surface, buffer, 0, 0);
  wl_surface_commit(surface);
  while (wl_display_dispatch(display) >= 0) {
  }
  return 0;
}
