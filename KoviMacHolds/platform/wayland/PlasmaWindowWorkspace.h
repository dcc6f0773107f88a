#pragma once

#include <map>
#include <memory>

#include "KoviMacHolds/platform/wayland/WaylandWindowWorkspace.h"
#include "KoviMacHolds/platform/wayland/protocols/plasma-window-management-client-protocol.h"

namespace kovi::holds::wayland {

// The workspace of KWin, from its Plasma window list. KWin offers that list
// only to a program whose installed .desktop file names the interface. It
// sends each change of a window as an event of its own: a window is reported
// once its initial state is complete, and from then on at every change.
class PlasmaWindowWorkspace final : public WaylandWindowWorkspace {
 public:
  PlasmaWindowWorkspace(WaylandDisplay& display, WaylandRunLoop& runLoop);
  ~PlasmaWindowWorkspace() override;

  // The window-management protocol's listeners; public for the C callbacks only.
  struct Window;
  void windowMapped(std::uint32_t id, const char* uuid);
  void windowUpdated(Window& window);
  void windowUnmapped(Window& window);
  std::uint32_t managerVersion() const;

 private:
  void requestMinimise(const void* handle) override;
  void requestActivate(const void* handle) override;

  org_kde_plasma_window_management* manager_ = nullptr;
  std::map<const void*, std::unique_ptr<Window>> windows_;
};

}  // namespace kovi::holds::wayland
