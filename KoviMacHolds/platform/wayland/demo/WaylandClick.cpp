// kovi-wayland-click X Y WIDTH HEIGHT: clicks the primary button at (X, Y) of
// an output WIDTH × HEIGHT with a virtual pointer, for the desktop tests on
// headless sway (which has no pointer of its own).
#include <linux/input-event-codes.h>
#include <wayland-client.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <thread>

#include "KoviMacHolds/platform/wayland/protocols/wlr-virtual-pointer-unstable-v1-client-protocol.h"

namespace {

zwlr_virtual_pointer_manager_v1* gManager = nullptr;
wl_seat* gSeat = nullptr;

void handleGlobal(void*, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
  if (std::strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0) {
    gManager = static_cast<zwlr_virtual_pointer_manager_v1*>(
        wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1));
  } else if (std::strcmp(interface, wl_seat_interface.name) == 0 && gSeat == nullptr) {
    gSeat = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
  }
}
void handleGlobalRemove(void*, wl_registry*, std::uint32_t) {}

bool parse(const char* text, unsigned& value) {
  const std::string_view view(text);
  return std::from_chars(view.data(), view.data() + view.size(), value).ec == std::errc{};
}

std::uint32_t now() {
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch()).count());
}

// Gives the compositor and its clients time to see the new device before it is used.
void settle(wl_display* display) {
  wl_display_roundtrip(display);
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
}

}  // namespace

int main(int argc, char** argv) {
  unsigned x = 0, y = 0, width = 0, height = 0;
  if (argc != 5 || !parse(argv[1], x) || !parse(argv[2], y) || !parse(argv[3], width) || !parse(argv[4], height) ||
      x >= width || y >= height) {
    std::fprintf(stderr, "usage: %s X Y WIDTH HEIGHT (a point inside the output)\n", argv[0]);
    return 2;
  }
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) {
    std::fprintf(stderr, "%s: cannot connect to the Wayland display\n", argv[0]);
    return 1;
  }
  static const wl_registry_listener listener = {handleGlobal, handleGlobalRemove};
  wl_registry* registry = wl_display_get_registry(display);
  wl_registry_add_listener(registry, &listener, nullptr);
  wl_display_roundtrip(display);
  if (gManager == nullptr) {
    std::fprintf(stderr, "%s: the compositor offers no virtual pointers\n", argv[0]);
    return 1;
  }
  zwlr_virtual_pointer_v1* pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(gManager, gSeat);
  settle(display);
  zwlr_virtual_pointer_v1_motion_absolute(pointer, now(), x, y, width, height);
  zwlr_virtual_pointer_v1_frame(pointer);
  settle(display);
  zwlr_virtual_pointer_v1_button(pointer, now(), BTN_LEFT, WL_POINTER_BUTTON_STATE_PRESSED);
  zwlr_virtual_pointer_v1_frame(pointer);
  wl_display_roundtrip(display);
  zwlr_virtual_pointer_v1_button(pointer, now(), BTN_LEFT, WL_POINTER_BUTTON_STATE_RELEASED);
  zwlr_virtual_pointer_v1_frame(pointer);
  settle(display);
  zwlr_virtual_pointer_v1_destroy(pointer);
  zwlr_virtual_pointer_manager_v1_destroy(gManager);
  if (gSeat != nullptr) wl_seat_destroy(gSeat);
  wl_registry_destroy(registry);
  wl_display_roundtrip(display);
  wl_display_disconnect(display);
  return 0;
}
