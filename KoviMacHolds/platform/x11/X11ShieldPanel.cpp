#include "KoviMacHolds/platform/x11/X11ShieldPanel.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <cairo-xlib.h>
#include <unistd.h>

#include <cmath>
#include <cstring>

namespace kovi::holds::x11 {

namespace {

constexpr long kSourcePager = 2;

unsigned long paperPixel() {
  const auto& paper = MacPurrlColors::paper;
  auto channel = [](double value) { return static_cast<unsigned long>(std::lround(value * 255)); };
  return channel(paper.red) << 16 | channel(paper.green) << 8 | channel(paper.blue);
}

void setUtf8Property(const X11Display& display, Window window, Atom property, const std::string& value) {
  XChangeProperty(display.get(), window, property, display.atoms().utf8String, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(value.data()), static_cast<int>(value.size()));
}

}  // namespace

X11ShieldPanel::X11ShieldPanel(X11Display& display, X11RunLoop& runLoop, PurrlFontStore fonts, MacHoldsClock clock)
    : display_(display), painter_(fonts), clock_(std::move(clock)) {
  Display* dpy = display_.get();
  const auto& atoms = display_.atoms();
  window_ = XCreateSimpleWindow(dpy, display_.root(), 0, 0, static_cast<unsigned>(MacHoldsShieldLayout::width),
                                static_cast<unsigned>(MacHoldsShieldLayout::minimumHeight), 0, 0, paperPixel());
  XSelectInput(dpy, window_, ExposureMask | ButtonPressMask | ButtonReleaseMask | KeyPressMask | StructureNotifyMask);

  XClassHint classHint{const_cast<char*>("kovi-holds"), const_cast<char*>("KoviHolds")};
  XSetClassHint(dpy, window_, &classHint);
  XWMHints hints{};
  hints.flags = InputHint;
  hints.input = True;
  XSetWMHints(dpy, window_, &hints);
  const long pid = getpid();
  XChangeProperty(dpy, window_, atoms.netWmPid, XA_CARDINAL, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(&pid), 1);
  XChangeProperty(dpy, window_, atoms.netWmWindowType, XA_ATOM, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(&atoms.netWmWindowTypeDialog), 1);
  const Atom states[] = {atoms.netWmStateAbove, atoms.netWmStateSkipTaskbar, atoms.netWmStateSkipPager};
  XChangeProperty(dpy, window_, atoms.netWmState, XA_ATOM, 32, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(states), 3);
  Atom protocols[] = {atoms.wmDeleteWindow};
  XSetWMProtocols(dpy, window_, protocols, 1);

  surface_ = cairo_xlib_surface_create(dpy, window_, DefaultVisual(dpy, display_.screen()),
                                       static_cast<int>(MacHoldsShieldLayout::width),
                                       static_cast<int>(MacHoldsShieldLayout::minimumHeight));
  std::weak_ptr<bool> alive = alive_;
  runLoop.addEventHandler([this, alive](const XEvent& event) {
    if (!alive.expired()) handleEvent(event);
  });
}

X11ShieldPanel::~X11ShieldPanel() {
  alive_.reset();
  cairo_surface_destroy(surface_);
  XDestroyWindow(display_.get(), window_);
  XFlush(display_.get());
}

void X11ShieldPanel::setContent(MacHoldsShieldView view) {
  const std::string title = MacHoldsShieldView::title();
  XStoreName(display_.get(), window_, title.c_str());
  setUtf8Property(display_, window_, display_.atoms().netWmName, title);

  layout_ = painter_.layout(view, clock_.calendar());
  buttons_.setContent(view, layout_);
  view_ = std::move(view);
  const int width = static_cast<int>(std::ceil(layout_.size.width));
  const int height = static_cast<int>(std::ceil(layout_.size.height));
  // A fixed size: the content decides it, the person does not resize it.
  XSizeHints* sizeHints = XAllocSizeHints();
  sizeHints->flags = PMinSize | PMaxSize;
  sizeHints->min_width = sizeHints->max_width = width;
  sizeHints->min_height = sizeHints->max_height = height;
  XSetWMNormalHints(display_.get(), window_, sizeHints);
  XFree(sizeHints);
  XResizeWindow(display_.get(), window_, static_cast<unsigned>(width), static_cast<unsigned>(height));
  cairo_xlib_surface_set_size(surface_, width, height);
  if (visible_) redraw();
  XFlush(display_.get());
}

void X11ShieldPanel::bringForward() {
  Display* dpy = display_.get();
  if (!visible_) {
    const int width = static_cast<int>(std::ceil(layout_.size.width));
    const int height = static_cast<int>(std::ceil(layout_.size.height));
    const int x = (DisplayWidth(dpy, display_.screen()) - width) / 2;
    const int y = (DisplayHeight(dpy, display_.screen()) - height) / 2;
    XSizeHints* sizeHints = XAllocSizeHints();
    sizeHints->flags = USPosition | PMinSize | PMaxSize;
    sizeHints->x = x;
    sizeHints->y = y;
    sizeHints->min_width = sizeHints->max_width = width;
    sizeHints->min_height = sizeHints->max_height = height;
    XSetWMNormalHints(dpy, window_, sizeHints);
    XFree(sizeHints);
    XMoveWindow(dpy, window_, x, y);
    XMapRaised(dpy, window_);
    visible_ = true;
  } else {
    XRaiseWindow(dpy, window_);
  }
  const Atom active = display_.atoms().netActiveWindow;
  display_.sendRootMessage(window_, active, kSourcePager, CurrentTime);
  XFlush(dpy);
  // Hiding the held application made the window manager give the focus to
  // some other window; waiting until the shield has it means the agent reads
  // the shield, not that fallback, as the front window when it looks next.
  display_.waitFor([&] { return display_.windowProperty(display_.root(), active) == window_; }, activationTime);
}

void X11ShieldPanel::orderOut() {
  if (!visible_) return;
  XWithdrawWindow(display_.get(), window_, display_.screen());
  visible_ = false;
  buttons_.reset();
  XFlush(display_.get());
}

void X11ShieldPanel::handleEvent(const XEvent& event) {
  if (event.xany.window != window_) return;
  switch (event.type) {
    case Expose:
      if (event.xexpose.count == 0) redraw();
      return;
    case ButtonPress:
      if (event.xbutton.button == Button1 && buttons_.pointerPressed(event.xbutton.x, event.xbutton.y)) redraw();
      return;
    case ButtonRelease: {
      if (event.xbutton.button != Button1) return;
      const bool wasPressed = buttons_.pressed().has_value();
      // The action may replace the content; the copy keeps it alive while it runs.
      const auto action = buttons_.pointerReleased(event.xbutton.x, event.xbutton.y);
      if (wasPressed) redraw();
      if (action) action();
      return;
    }
    case KeyPress: {
      XKeyEvent key = event.xkey;
      const KeySym symbol = XLookupKeysym(&key, 0);
      if (symbol == XK_Return || symbol == XK_KP_Enter || symbol == XK_Escape) {
        if (const auto action = buttons_.defaultAction()) action();
      }
      return;
    }
    case ClientMessage:
      if (static_cast<Atom>(event.xclient.data.l[0]) == display_.atoms().wmDeleteWindow && view_ && view_->back) {
        view_->back();
      }
      return;
    default:
      return;
  }
}

void X11ShieldPanel::redraw() {
  if (!view_ || !visible_) return;
  cairo_t* cr = cairo_create(surface_);
  cairo_push_group(cr);
  painter_.paint(cr, *view_, clock_.calendar(), buttons_.pressed());
  cairo_pop_group_to_source(cr);
  cairo_paint(cr);
  cairo_destroy(cr);
  cairo_surface_flush(surface_);
  XFlush(display_.get());
}

}  // namespace kovi::holds::x11
