// kovi-screenshot FILE: saves the whole X11 screen as a PNG, for the demo.
#include <X11/Xlib.h>
#include <cairo-xlib.h>
#include <cairo.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FILE.png\n", argv[0]);
    return 2;
  }
  Display* display = XOpenDisplay(nullptr);
  if (display == nullptr) {
    std::fprintf(stderr, "%s: cannot open the X display\n", argv[0]);
    return 1;
  }
  const int screen = DefaultScreen(display);
  const int width = DisplayWidth(display, screen);
  const int height = DisplayHeight(display, screen);
  cairo_surface_t* root =
      cairo_xlib_surface_create(display, DefaultRootWindow(display), DefaultVisual(display, screen), width, height);
  cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  cairo_t* cr = cairo_create(image);
  cairo_set_source_surface(cr, root, 0, 0);
  cairo_paint(cr);
  cairo_destroy(cr);
  const cairo_status_t status = cairo_surface_write_to_png(image, argv[1]);
  cairo_surface_destroy(image);
  cairo_surface_destroy(root);
  XCloseDisplay(display);
  if (status != CAIRO_STATUS_SUCCESS) {
    std::fprintf(stderr, "%s: %s: %s\n", argv[0], argv[1], cairo_status_to_string(status));
    return 1;
  }
  return 0;
}
