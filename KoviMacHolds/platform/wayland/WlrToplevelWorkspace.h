#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>

#include "KoviMacHolds/platform/wayland/WaylandWindowWorkspace.h"
#include "KoviMacHolds/platform/wayland/protocols/wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"

namespace kovi::holds::wayland {

// The workspace of a wlroots compositor, from its foreign-toplevel list. The
// compositor sends a toplevel's state in batches closed by "done"; each
// batch is one confirmed state.
class WlrToplevelWorkspace final : public WaylandWindowWorkspace {
 public:
  // `swaySocket`: sway's IPC socket ($SWAYSOCK), for compositors that ignore minimise.
  WlrToplevelWorkspace(WaylandDisplay& display, WaylandRunLoop& runLoop, std::optional<std::filesystem::path> swaySocket);
  ~WlrToplevelWorkspace() override;

  // The toplevel protocol's listeners; public for the C callbacks only.
  struct Toplevel;
  void toplevelAnnounced(zwlr_foreign_toplevel_handle_v1* handle);
  void toplevelDone(Toplevel& toplevel);
  void toplevelClosed(Toplevel& toplevel);

 private:
  void requestMinimise(const void* handle) override;
  void requestActivate(const void* handle) override;
  bool hasHideFallback() const override { return swaySocket_.has_value(); }
  // Moves the application's windows to sway's scratchpad.
  bool hideByFallback(pid_t number) override;

  zwlr_foreign_toplevel_manager_v1* manager_ = nullptr;
  wl_seat* seat_ = nullptr;  // for activating the main app's window
  std::map<const void*, std::unique_ptr<Toplevel>> toplevels_;
  std::optional<std::filesystem::path> swaySocket_;
};

}  // namespace kovi::holds::wayland
