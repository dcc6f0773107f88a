#pragma once

#include <functional>
#include <vector>

#include "KoviMacHolds/platform/linux/LinuxRunLoop.h"
#include "KoviMacHolds/platform/wayland/WaylandDisplay.h"

namespace kovi::holds::wayland {

// The agent's loop on a Wayland desktop: the Linux loop over the compositor
// connection. Protocol listeners only record what changed; what the agent
// does about it runs in the idle handlers, after each batch of events, so no
// handler runs inside another (hiding an application waits for the
// compositor and handles events meanwhile).
class WaylandRunLoop final : public desktop::LinuxRunLoop {
 public:
  explicit WaylandRunLoop(WaylandDisplay& display) : LinuxRunLoop(display.fd()), display_(display) {}
  ~WaylandRunLoop() override;

  void addIdleHandler(std::function<void()> handler) { idleHandlers_.push_back(std::move(handler)); }

 protected:
  void dispatchPending() override;
  bool connectionWoke(short revents) override;

 private:
  WaylandDisplay& display_;
  std::vector<std::function<void()>> idleHandlers_;
  bool readPrepared_ = false;
};

}  // namespace kovi::holds::wayland
