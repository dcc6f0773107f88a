#include "KoviMacHolds/platform/x11/CairoShieldPainter.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <memory>
#include <numbers>
#include <vector>

#include "KoviMacHolds/platform/x11/CairoCatPainter.h"

namespace kovi::holds::x11 {

namespace {

constexpr double kPadding = 28;
constexpr double kCatWidth = 96;
constexpr double kCatHeight = 110;
constexpr double kButtonGap = 12;
constexpr double kSymbolSize = 12;

struct LayoutDeleter {
  void operator()(PangoLayout* layout) const { g_object_unref(layout); }
};
using TextLayout = std::unique_ptr<PangoLayout, LayoutDeleter>;

struct Text {
  TextLayout layout;
  double width = 0;
  double height = 0;
};

// A text in `face` at `size` points, wrapped to `wrapWidth` and centred when given.
Text makeText(cairo_t* cr, const std::string& text, const PurrlFontFace& face, double size,
              std::optional<double> wrapWidth = std::nullopt, double letterSpacing = 0, bool uppercase = false) {
  TextLayout layout(pango_cairo_create_layout(cr));
  PangoFontDescription* description = pango_font_description_from_string(face.families.c_str());
  pango_font_description_set_weight(description, static_cast<PangoWeight>(face.weight));
  pango_font_description_set_absolute_size(description, size * PANGO_SCALE);
  pango_layout_set_font_description(layout.get(), description);
  pango_font_description_free(description);
  if (wrapWidth) {
    pango_layout_set_width(layout.get(), static_cast<int>(*wrapWidth * PANGO_SCALE));
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD);
    pango_layout_set_alignment(layout.get(), PANGO_ALIGN_CENTER);
  }
  PangoAttrList* attributes = pango_attr_list_new();
  if (letterSpacing > 0) pango_attr_list_insert(attributes, pango_attr_letter_spacing_new(static_cast<int>(letterSpacing * PANGO_SCALE)));
  if (uppercase) pango_attr_list_insert(attributes, pango_attr_text_transform_new(PANGO_TEXT_TRANSFORM_UPPERCASE));
  pango_layout_set_attributes(layout.get(), attributes);
  pango_attr_list_unref(attributes);
  pango_layout_set_text(layout.get(), text.c_str(), static_cast<int>(text.size()));
  int width = 0;
  int height = 0;
  pango_layout_get_pixel_size(layout.get(), &width, &height);
  return {std::move(layout), static_cast<double>(width), static_cast<double>(height)};
}

PurrlFontFace systemFace(int weight) {
  return {std::nullopt, "Cantarell, Noto Sans, DejaVu Sans, sans-serif", weight, PurrlFontFace::Design::standard};
}

// Everything placed, ready to paint or to measure.
struct Composition {
  double width = 0;
  double height = 0;
  CairoRect cat{};
  Text caption;
  double captionX = 0, captionY = 0;
  struct Placed {
    Text text;
    double x = 0, y = 0;
  };
  Placed label, headline, time, footnote;
  CairoRect clock{};
  struct Button {
    Text title;
    CairoRect frame{};
    bool hasSymbol = false;
  };
  std::vector<Button> buttons;
};

Composition compose(cairo_t* cr, const MacHoldsShieldView& view, const Calendar& calendar, const PurrlFontStore& fonts) {
  Composition c;
  c.width = CairoShieldPainter::minimumWidth;
  const double textWidth = c.width - 2 * kPadding;

  c.caption = makeText(cr, view.caption(), fonts.handFace(), 15);
  c.label = {makeText(cr, view.holdLabel(), fonts.headingFace(true), 11, std::nullopt, 1.4, true)};
  c.headline = {makeText(cr, view.headline(), fonts.headingFace(), 21, textWidth)};
  c.time = {makeText(cr, view.timeLine(calendar), systemFace(600), 12)};
  c.footnote = {makeText(cr, view.footnote(), fonts.handFace(), 14, textWidth)};
  for (const auto& button : view.buttons()) {
    Composition::Button placed{makeText(cr, button.title, fonts.headingFace(true), button.style.fontSize())};
    placed.hasSymbol = button.symbol.has_value();
    const double symbolSpace = placed.hasSymbol ? kSymbolSize + 6 : 0;
    placed.frame = {0, 0, placed.title.width + symbolSpace + 2 * button.style.horizontalPadding(), button.style.height()};
    c.buttons.push_back(std::move(placed));
  }

  double y = 22;
  c.cat = {(c.width - kCatWidth) / 2, y, kCatWidth, kCatHeight};
  c.captionX = c.cat.x + c.cat.width + 6;
  c.captionY = c.cat.y + c.cat.height * 0.55;
  y += kCatHeight + 10;
  auto centre = [&](Composition::Placed& placed, double gapAfter) {
    placed.x = (c.width - placed.text.width) / 2;
    placed.y = y;
    y += placed.text.height + gapAfter;
  };
  centre(c.label, 4);
  // Wrapped text is centred inside its wrap width.
  c.headline.x = kPadding;
  c.headline.y = y;
  y += c.headline.text.height + 8;
  const double timeRowWidth = kSymbolSize + 6 + c.time.text.width;
  c.clock = {(c.width - timeRowWidth) / 2, y + (c.time.text.height - kSymbolSize) / 2, kSymbolSize, kSymbolSize};
  c.time.x = c.clock.x + kSymbolSize + 6;
  c.time.y = y;
  y += c.time.text.height + 12;
  c.footnote.x = kPadding;
  c.footnote.y = y;
  y += c.footnote.text.height + 18;

  double rowWidth = -kButtonGap;
  for (const auto& button : c.buttons) rowWidth += button.frame.width + kButtonGap;
  double x = (c.width - rowWidth) / 2;
  double rowHeight = 0;
  for (auto& button : c.buttons) {
    button.frame.x = x;
    button.frame.y = y;
    x += button.frame.width + kButtonGap;
    rowHeight = std::max(rowHeight, button.frame.height);
  }
  y += rowHeight + 24;
  c.height = std::max(CairoShieldPainter::minimumHeight, y);
  return c;
}

void drawText(cairo_t* cr, const Text& text, double x, double y, const MacPurrlColor& color) {
  setSourceColor(cr, color);
  cairo_move_to(cr, x, y);
  pango_cairo_show_layout(cr, text.layout.get());
}

// The "clock" symbol: a ring with two hands.
void drawClock(cairo_t* cr, const CairoRect& frame, const MacPurrlColor& color) {
  const double cx = frame.x + frame.width / 2, cy = frame.y + frame.height / 2, r = frame.width / 2 - 0.8;
  setSourceColor(cr, color);
  cairo_set_line_width(cr, 1.5);
  cairo_new_sub_path(cr);
  cairo_arc(cr, cx, cy, r, 0, 2 * std::numbers::pi);
  cairo_move_to(cr, cx, cy - r * 0.6);
  cairo_line_to(cr, cx, cy);
  cairo_line_to(cr, cx + r * 0.45, cy + r * 0.2);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_stroke(cr);
}

// The "arrow.up.forward.app" symbol: a rounded square with an arrow leaving it.
void drawOpenAppSymbol(cairo_t* cr, const CairoRect& frame, const MacPurrlColor& color) {
  setSourceColor(cr, color);
  cairo_set_line_width(cr, 1.5);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  roundedRectangle(cr, {frame.x + 0.75, frame.y + 0.75, frame.width - 1.5, frame.height - 1.5}, 3);
  cairo_stroke(cr);
  const double inset = frame.width * 0.3;
  cairo_move_to(cr, frame.x + inset, frame.y + frame.height - inset);
  cairo_line_to(cr, frame.x + frame.width - inset, frame.y + inset);
  cairo_move_to(cr, frame.x + frame.width * 0.42, frame.y + inset);
  cairo_line_to(cr, frame.x + frame.width - inset, frame.y + inset);
  cairo_line_to(cr, frame.x + frame.width - inset, frame.y + frame.height * 0.58);
  cairo_stroke(cr);
}

}  // namespace

CairoShieldLayout CairoShieldPainter::layout(const MacHoldsShieldView& view, const Calendar& calendar) const {
  cairo_surface_t* scratch = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1);
  cairo_t* cr = cairo_create(scratch);
  const Composition c = compose(cr, view, calendar, fonts_);
  cairo_destroy(cr);
  cairo_surface_destroy(scratch);
  return {c.width, c.height, {c.buttons[0].frame, c.buttons[1].frame}};
}

void CairoShieldPainter::paint(cairo_t* cr, const MacHoldsShieldView& view, const Calendar& calendar,
                               std::optional<std::size_t> pressed) const {
  const Composition c = compose(cr, view, calendar, fonts_);
  setSourceColor(cr, MacPurrlColors::paper);
  cairo_paint(cr);

  paintCat(cr, view.cat(), c.cat);
  cairo_save(cr);
  cairo_translate(cr, c.captionX, c.captionY);
  cairo_rotate(cr, -0.12);
  drawText(cr, c.caption, 0, 0, MacPurrlColors::ink.withAlpha(0.7));
  cairo_restore(cr);

  drawText(cr, c.label.text, c.label.x, c.label.y, MacPurrlColors::accent);
  drawText(cr, c.headline.text, c.headline.x, c.headline.y, MacPurrlColors::ink);
  drawClock(cr, c.clock, MacPurrlColors::ink.withAlpha(0.8));
  drawText(cr, c.time.text, c.time.x, c.time.y, MacPurrlColors::ink.withAlpha(0.8));
  drawText(cr, c.footnote.text, c.footnote.x, c.footnote.y, MacPurrlColors::ink.withAlpha(0.75));

  const auto buttons = view.buttons();
  for (std::size_t index = 0; index < c.buttons.size(); ++index) {
    const auto& placed = c.buttons[index];
    const MacPurrlButtonStyle& style = buttons[index].style;
    roundedRectangle(cr, placed.frame, style.cornerRadius());
    setSourceColor(cr, style.fill(pressed == index));
    cairo_fill_preserve(cr);
    setSourceColor(cr, style.border());
    cairo_set_line_width(cr, 1.5);
    cairo_stroke(cr);
    double x = placed.frame.x + style.horizontalPadding();
    if (placed.hasSymbol) {
      drawOpenAppSymbol(cr, {x, placed.frame.y + (placed.frame.height - kSymbolSize) / 2, kSymbolSize, kSymbolSize},
                        style.label());
      x += kSymbolSize + 6;
    }
    drawText(cr, placed.title, x, placed.frame.y + (placed.frame.height - placed.title.height) / 2, style.label());
  }
}

std::expected<void, std::string> writeShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                const Calendar& calendar, const std::filesystem::path& file) {
  const CairoShieldPainter painter(fonts);
  const CairoShieldLayout size = painter.layout(view, calendar);
  cairo_surface_t* surface =
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(size.width), static_cast<int>(size.height));
  cairo_t* cr = cairo_create(surface);
  painter.paint(cr, view, calendar);
  cairo_destroy(cr);
  const cairo_status_t status = cairo_surface_write_to_png(surface, file.c_str());
  cairo_surface_destroy(surface);
  if (status != CAIRO_STATUS_SUCCESS) {
    return std::unexpected(file.string() + ": " + cairo_status_to_string(status));
  }
  return {};
}

}  // namespace kovi::holds::x11
