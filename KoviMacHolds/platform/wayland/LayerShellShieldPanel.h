#pragma once

#include <cairo.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "KoviMacHolds/MacHoldsLog.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"
#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"
#include "KoviMacHolds/platform/linux/ShieldButtons.h"
#include "KoviMacHolds/platform/wayland/WaylandDisplay.h"
#include "KoviMacHolds/platform/wayland/WaylandRunLoop.h"
#include "KoviMacHolds/platform/wayland/protocols/wlr-layer-shell-unstable-v1-client-protocol.h"

namespace kovi::holds::wayland {

// The shield as a layer-shell surface on the overlay layer: above every
// window, centred on the output the compositor picks, taking the keyboard
// while it shows, painted into shared memory with the shared Cairo painter.
// It is laid out in logical units and drawn at the integer scale of the
// densest output it is on, so it is sharp on a HiDPI screen. Clicks on the
// buttons run their actions; Return and Escape run the default one ("Back to
// focus"). Actions run from the loop's idle pass, never from
// inside a protocol listener.
class LayerShellShieldPanel final : public MacShieldPanel {
 public:
  // How long showing the panel waits for the compositor's first configure.
  static constexpr std::chrono::milliseconds configureTime{500};

  LayerShellShieldPanel(WaylandDisplay& display, WaylandRunLoop& runLoop, PurrlFontStore fonts, MacHoldsClock clock);
  ~LayerShellShieldPanel() override;

  void setContent(MacHoldsShieldView view) override;
  void bringForward() override;
  void orderOut() override;
  bool isVisible() const override { return visible_; }

  // The protocol's listeners; public for the C callbacks only.
  void configured(std::uint32_t serial);
  void closedByCompositor();
  void seatCapabilities(std::uint32_t capabilities);
  void pointerEntered(wl_surface* surface, double x, double y);
  void pointerLeft();
  void pointerMoved(double x, double y);
  void pointerButton(std::uint32_t button, std::uint32_t state);
  void keyPressed(std::uint32_t key);
  void outputScaled(wl_output* output, std::int32_t scale);
  void surfaceEntered(wl_output* output);
  void surfaceLeft(wl_output* output);

 private:
  struct Buffer;
  Buffer* freeBuffer(int width, int height);
  void redraw();
  void destroySurface();
  void runQueuedAction();
  // Redraws when the scale the shield should be drawn at has changed.
  void updateScale();

  WaylandDisplay& display_;
  desktop::CairoShieldPainter painter_;
  MacHoldsClock clock_;
  wl_compositor* compositor_ = nullptr;
  wl_shm* shm_ = nullptr;
  zwlr_layer_shell_v1* layerShell_ = nullptr;
  wl_seat* seat_ = nullptr;
  wl_pointer* pointer_ = nullptr;
  wl_keyboard* keyboard_ = nullptr;
  wl_surface* surface_ = nullptr;
  std::map<wl_output*, std::int32_t> outputScales_;
  std::set<wl_output*> surfaceOutputs_;
  std::int32_t bufferScale_ = 1;
  zwlr_layer_surface_v1* layerSurface_ = nullptr;
  std::vector<std::unique_ptr<Buffer>> buffers_;
  std::optional<MacHoldsShieldView> view_;
  MacHoldsShieldLayout layout_;
  desktop::ShieldButtons buttons_;
  bool configured_ = false;
  bool visible_ = false;
  bool pointerInside_ = false;
  double pointerX_ = 0;
  double pointerY_ = 0;
  std::function<void()> queuedAction_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace kovi::holds::wayland
