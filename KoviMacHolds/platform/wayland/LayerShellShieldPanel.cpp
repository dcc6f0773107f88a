#include "KoviMacHolds/platform/wayland/LayerShellShieldPanel.h"

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <limits>
#include <utility>

#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviMacHolds/platform/wayland/ShieldBufferScale.h"

namespace kovi::holds::wayland {

// One shared-memory buffer the compositor reads the shield from; reused once
// the compositor has released it.
struct LayerShellShieldPanel::Buffer {
  wl_buffer* buffer = nullptr;
  void* data = MAP_FAILED;
  std::size_t size = 0;
  int width = 0;
  int height = 0;
  bool busy = false;

  ~Buffer() {
    if (buffer != nullptr) wl_buffer_destroy(buffer);
    if (data != MAP_FAILED) munmap(data, size);
  }
};

namespace {

constexpr const char* kNamespace = "kovi-shield";

LayerShellShieldPanel& panelOf(void* data) { return *static_cast<LayerShellShieldPanel*>(data); }

void handleBufferRelease(void* data, wl_buffer*) { static_cast<bool*>(data)[0] = false; }
const wl_buffer_listener kBufferListener = {.release = handleBufferRelease};

void handleConfigure(void* data, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t, std::uint32_t) {
  panelOf(data).configured(serial);
}
void handleClosed(void* data, zwlr_layer_surface_v1*) { panelOf(data).closedByCompositor(); }
const zwlr_layer_surface_v1_listener kLayerSurfaceListener = {.configure = handleConfigure, .closed = handleClosed};

void handleCapabilities(void* data, wl_seat*, std::uint32_t capabilities) {
  panelOf(data).seatCapabilities(capabilities);
}
void handleSeatName(void*, wl_seat*, const char*) {}
const wl_seat_listener kSeatListener = {.capabilities = handleCapabilities, .name = handleSeatName};

void handlePointerEnter(void* data, wl_pointer*, std::uint32_t, wl_surface* surface, wl_fixed_t x, wl_fixed_t y) {
  panelOf(data).pointerEntered(surface, wl_fixed_to_double(x), wl_fixed_to_double(y));
}
void handlePointerLeave(void* data, wl_pointer*, std::uint32_t, wl_surface*) { panelOf(data).pointerLeft(); }
void handlePointerMotion(void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
  panelOf(data).pointerMoved(wl_fixed_to_double(x), wl_fixed_to_double(y));
}
void handlePointerButton(void* data, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t button,
                         std::uint32_t state) {
  panelOf(data).pointerButton(button, state);
}
void handlePointerAxis(void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {}
void handlePointerFrame(void*, wl_pointer*) {}
void handlePointerAxisSource(void*, wl_pointer*, std::uint32_t) {}
void handlePointerAxisStop(void*, wl_pointer*, std::uint32_t, std::uint32_t) {}
void handlePointerAxisDiscrete(void*, wl_pointer*, std::uint32_t, std::int32_t) {}
const wl_pointer_listener kPointerListener = {
    .enter = handlePointerEnter,
    .leave = handlePointerLeave,
    .motion = handlePointerMotion,
    .button = handlePointerButton,
    .axis = handlePointerAxis,
    .frame = handlePointerFrame,
    .axis_source = handlePointerAxisSource,
    .axis_stop = handlePointerAxisStop,
    .axis_discrete = handlePointerAxisDiscrete,
    .axis_value120 = nullptr,
};

// The keymap is not needed: Return, keypad Enter and Escape are told by
// their key codes, which no layout moves.
void handleKeymap(void*, wl_keyboard*, std::uint32_t, std::int32_t fd, std::uint32_t) { close(fd); }
void handleKeyboardEnter(void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {}
void handleKeyboardLeave(void*, wl_keyboard*, std::uint32_t, wl_surface*) {}
void handleKey(void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t key, std::uint32_t state) {
  if (state == WL_KEYBOARD_KEY_STATE_PRESSED) panelOf(data).keyPressed(key);
}
void handleModifiers(void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {}
void handleRepeatInfo(void*, wl_keyboard*, std::int32_t, std::int32_t) {}
const wl_keyboard_listener kKeyboardListener = {
    .keymap = handleKeymap,
    .enter = handleKeyboardEnter,
    .leave = handleKeyboardLeave,
    .key = handleKey,
    .modifiers = handleModifiers,
    .repeat_info = handleRepeatInfo,
};

void handleOutputGeometry(void*, wl_output*, std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                          const char*, const char*, std::int32_t) {}
void handleOutputMode(void*, wl_output*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t) {}
void handleOutputDone(void*, wl_output*) {}
void handleOutputScale(void* data, wl_output* output, std::int32_t scale) { panelOf(data).outputScaled(output, scale); }
void handleOutputText(void*, wl_output*, const char*) {}
const wl_output_listener kOutputListener = {
    .geometry = handleOutputGeometry,
    .mode = handleOutputMode,
    .done = handleOutputDone,
    .scale = handleOutputScale,
    .name = handleOutputText,
    .description = handleOutputText,
};

void handleSurfaceEnter(void* data, wl_surface*, wl_output* output) { panelOf(data).surfaceEntered(output); }
void handleSurfaceLeave(void* data, wl_surface*, wl_output* output) { panelOf(data).surfaceLeft(output); }
const wl_surface_listener kSurfaceListener = {.enter = handleSurfaceEnter, .leave = handleSurfaceLeave};

// The first version of wl_output that tells its scale.
constexpr std::uint32_t kOutputScaleVersion = WL_OUTPUT_SCALE_SINCE_VERSION;

int pixels(double points) { return static_cast<int>(std::ceil(points)); }

}  // namespace

LayerShellShieldPanel::LayerShellShieldPanel(WaylandDisplay& display, WaylandRunLoop& runLoop, PurrlFontStore fonts,
                                             MacHoldsClock clock)
    : display_(display), painter_(fonts), clock_(std::move(clock)) {
  compositor_ = display_.bind<wl_compositor>(wl_compositor_interface, 4);
  shm_ = display_.bind<wl_shm>(wl_shm_interface, 1);
  layerShell_ = display_.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 4);
  seat_ = display_.bind<wl_seat>(wl_seat_interface, 5);
  if (seat_ != nullptr) wl_seat_add_listener(seat_, &kSeatListener, this);
  for (wl_output* output : display_.bindAll<wl_output>(wl_output_interface, kOutputScaleVersion)) {
    outputScales_.emplace(output, 1);
    wl_output_add_listener(output, &kOutputListener, this);
  }
  std::weak_ptr<bool> alive = alive_;
  runLoop.addIdleHandler([this, alive] {
    if (!alive.expired()) runQueuedAction();
  });
}

LayerShellShieldPanel::~LayerShellShieldPanel() {
  alive_.reset();
  destroySurface();
  buffers_.clear();
  if (pointer_ != nullptr) wl_pointer_destroy(pointer_);
  if (keyboard_ != nullptr) wl_keyboard_destroy(keyboard_);
  if (seat_ != nullptr) wl_seat_destroy(seat_);
  for (const auto& [output, scale] : outputScales_) wl_output_destroy(output);
  if (layerShell_ != nullptr) zwlr_layer_shell_v1_destroy(layerShell_);
  if (shm_ != nullptr) wl_shm_destroy(shm_);
  if (compositor_ != nullptr) wl_compositor_destroy(compositor_);
  wl_display_flush(display_.get());
}

void LayerShellShieldPanel::setContent(MacHoldsShieldView view) {
  layout_ = painter_.layout(view, clock_.calendar());
  buttons_.setContent(view, layout_);
  view_ = std::move(view);
  if (layerSurface_ != nullptr) {
    zwlr_layer_surface_v1_set_size(layerSurface_, static_cast<std::uint32_t>(pixels(layout_.size.width)),
                                   static_cast<std::uint32_t>(pixels(layout_.size.height)));
  }
  if (visible_) redraw();
}

void LayerShellShieldPanel::bringForward() {
  if (visible_ || compositor_ == nullptr || layerShell_ == nullptr || shm_ == nullptr) return;
  surface_ = wl_compositor_create_surface(compositor_);
  wl_surface_add_listener(surface_, &kSurfaceListener, this);
  surfaceOutputs_.clear();
  updateScale();
  layerSurface_ = zwlr_layer_shell_v1_get_layer_surface(layerShell_, surface_, nullptr,
                                                        ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, kNamespace);
  zwlr_layer_surface_v1_add_listener(layerSurface_, &kLayerSurfaceListener, this);
  // No anchor: the compositor centres the surface on the output.
  zwlr_layer_surface_v1_set_anchor(layerSurface_, 0);
  zwlr_layer_surface_v1_set_size(layerSurface_, static_cast<std::uint32_t>(pixels(layout_.size.width)),
                                 static_cast<std::uint32_t>(pixels(layout_.size.height)));
  // On demand where the compositor speaks it: the shield takes the keyboard
  // when it appears or is clicked, yet the person can still bring another
  // window to the front, as with a floating panel. Older compositors only
  // know exclusive, which keeps the keyboard until the shield goes.
  zwlr_layer_surface_v1_set_keyboard_interactivity(
      layerSurface_, zwlr_layer_surface_v1_get_version(layerSurface_) >= ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND_SINCE_VERSION
                         ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND
                         : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
  configured_ = false;
  wl_surface_commit(surface_);
  // Hiding the held application moved the compositor's focus elsewhere; the
  // shield is only shown once the compositor has placed it, so the next look
  // at the desktop already finds it.
  if (!display_.waitFor([&] { return configured_ || layerSurface_ == nullptr; }, configureTime) ||
      layerSurface_ == nullptr) {
    destroySurface();
    return;
  }
  visible_ = true;
  redraw();
}

void LayerShellShieldPanel::orderOut() {
  if (!visible_ && surface_ == nullptr) return;
  destroySurface();
  wl_display_flush(display_.get());
}

void LayerShellShieldPanel::destroySurface() {
  if (layerSurface_ != nullptr) zwlr_layer_surface_v1_destroy(layerSurface_);
  if (surface_ != nullptr) wl_surface_destroy(surface_);
  layerSurface_ = nullptr;
  surface_ = nullptr;
  visible_ = false;
  configured_ = false;
  pointerInside_ = false;
  buttons_.reset();
}

void LayerShellShieldPanel::configured(std::uint32_t serial) {
  if (layerSurface_ == nullptr) return;
  zwlr_layer_surface_v1_ack_configure(layerSurface_, serial);
  const bool first = !configured_;
  configured_ = true;
  if (!first && visible_) redraw();
}

void LayerShellShieldPanel::closedByCompositor() {
  // The output went away; the next showing makes a new surface.
  destroySurface();
}

LayerShellShieldPanel::Buffer* LayerShellShieldPanel::freeBuffer(int width, int height) {
  std::erase_if(buffers_, [&](const auto& buffer) {
    return !buffer->busy && (buffer->width != width || buffer->height != height);
  });
  for (const auto& buffer : buffers_) {
    if (!buffer->busy) return buffer.get();
  }
  // The layout keeps the shield a few hundred points each way; a pool over
  // 2 GiB would be a layout fault, and the shield is then not drawn.
  const std::int64_t stride = checkedMul<std::int64_t>(width, 4);
  const std::int64_t size = checkedMul<std::int64_t>(stride, height);
  if (width <= 0 || height <= 0 || size > std::numeric_limits<std::int32_t>::max()) return nullptr;
  const int fd = memfd_create("kovi-shield", MFD_CLOEXEC);
  if (fd < 0) return nullptr;
  auto buffer = std::make_unique<Buffer>();
  buffer->size = static_cast<std::size_t>(size);
  buffer->width = width;
  buffer->height = height;
  if (ftruncate(fd, static_cast<off_t>(size)) == 0) {
    buffer->data = mmap(nullptr, buffer->size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  }
  if (buffer->data == MAP_FAILED) {
    close(fd);
    return nullptr;
  }
  wl_shm_pool* pool = wl_shm_create_pool(shm_, fd, static_cast<std::int32_t>(size));
  buffer->buffer = wl_shm_pool_create_buffer(pool, 0, width, height, static_cast<std::int32_t>(stride),
                                             WL_SHM_FORMAT_ARGB8888);
  wl_shm_pool_destroy(pool);
  close(fd);
  wl_buffer_add_listener(buffer->buffer, &kBufferListener, &buffer->busy);
  buffers_.push_back(std::move(buffer));
  return buffers_.back().get();
}

void LayerShellShieldPanel::outputScaled(wl_output* output, std::int32_t scale) {
  outputScales_[output] = scale;
  updateScale();
}

void LayerShellShieldPanel::surfaceEntered(wl_output* output) {
  surfaceOutputs_.insert(output);
  updateScale();
}

void LayerShellShieldPanel::surfaceLeft(wl_output* output) {
  surfaceOutputs_.erase(output);
  updateScale();
}

void LayerShellShieldPanel::updateScale() {
  std::vector<std::int32_t> onSurface;
  std::vector<std::int32_t> all;
  for (const auto& [output, scale] : outputScales_) {
    all.push_back(scale);
    if (surfaceOutputs_.contains(output)) onSurface.push_back(scale);
  }
  // A buffer scale needs version 3 of the compositor interface.
  const bool scalable = compositor_ != nullptr &&
                        wl_compositor_get_version(compositor_) >= WL_SURFACE_SET_BUFFER_SCALE_SINCE_VERSION;
  const std::int32_t scale = scalable ? shieldBufferScale(onSurface, all) : 1;
  if (scale == bufferScale_) return;
  bufferScale_ = scale;
  if (visible_) redraw();
}

void LayerShellShieldPanel::redraw() {
  if (!view_ || !visible_ || surface_ == nullptr) return;
  // Laid out in logical units, drawn in the output's pixels.
  const int width = pixels(layout_.size.width);
  const int height = pixels(layout_.size.height);
  Buffer* buffer = freeBuffer(checkedMul<int>(width, bufferScale_), checkedMul<int>(height, bufferScale_));
  if (buffer == nullptr) return;
  // Cairo's ARGB32 is the compositor's ARGB8888 on a little-endian machine.
  cairo_surface_t* image = cairo_image_surface_create_for_data(static_cast<unsigned char*>(buffer->data),
                                                               CAIRO_FORMAT_ARGB32, buffer->width, buffer->height,
                                                               buffer->width * 4);
  cairo_t* cr = cairo_create(image);
  cairo_scale(cr, bufferScale_, bufferScale_);
  painter_.paint(cr, *view_, clock_.calendar(), buttons_.pressed());
  cairo_destroy(cr);
  cairo_surface_flush(image);
  cairo_surface_destroy(image);
  buffer->busy = true;
  if (wl_surface_get_version(surface_) >= WL_SURFACE_SET_BUFFER_SCALE_SINCE_VERSION) {
    wl_surface_set_buffer_scale(surface_, bufferScale_);
  }
  wl_surface_attach(surface_, buffer->buffer, 0, 0);
  wl_surface_damage(surface_, 0, 0, width, height);
  wl_surface_commit(surface_);
  wl_display_flush(display_.get());
}

void LayerShellShieldPanel::seatCapabilities(std::uint32_t capabilities) {
  const bool hasPointer = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
  const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
  if (hasPointer && pointer_ == nullptr) {
    pointer_ = wl_seat_get_pointer(seat_);
    wl_pointer_add_listener(pointer_, &kPointerListener, this);
  } else if (!hasPointer && pointer_ != nullptr) {
    wl_pointer_release(pointer_);
    pointer_ = nullptr;
  }
  if (hasKeyboard && keyboard_ == nullptr) {
    keyboard_ = wl_seat_get_keyboard(seat_);
    wl_keyboard_add_listener(keyboard_, &kKeyboardListener, this);
  } else if (!hasKeyboard && keyboard_ != nullptr) {
    wl_keyboard_release(keyboard_);
    keyboard_ = nullptr;
  }
}

void LayerShellShieldPanel::pointerEntered(wl_surface* surface, double x, double y) {
  pointerInside_ = surface != nullptr && surface == surface_;
  pointerX_ = x;
  pointerY_ = y;
}

void LayerShellShieldPanel::pointerLeft() { pointerInside_ = false; }

void LayerShellShieldPanel::pointerMoved(double x, double y) {
  pointerX_ = x;
  pointerY_ = y;
}

void LayerShellShieldPanel::pointerButton(std::uint32_t button, std::uint32_t state) {
  if (!pointerInside_ || !visible_ || button != BTN_LEFT) return;
  if (state == WL_POINTER_BUTTON_STATE_PRESSED) {
    if (buttons_.pointerPressed(pointerX_, pointerY_)) redraw();
    return;
  }
  const bool wasPressed = buttons_.pressed().has_value();
  queuedAction_ = buttons_.pointerReleased(pointerX_, pointerY_);
  if (wasPressed) redraw();
}

void LayerShellShieldPanel::keyPressed(std::uint32_t key) {
  if (!visible_) return;
  if (key == KEY_ENTER || key == KEY_KPENTER || key == KEY_ESC) queuedAction_ = buttons_.defaultAction();
}

void LayerShellShieldPanel::runQueuedAction() {
  // The action may replace the content or the panel's state; it runs from
  // its own copy.
  const auto action = std::exchange(queuedAction_, {});
  if (action) action();
}

}  // namespace kovi::holds::wayland
