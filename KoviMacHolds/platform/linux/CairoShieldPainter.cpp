#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"

#include <pango/pangocairo.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "KoviMacHolds/platform/linux/CairoCatPainter.h"
#include "KoviMacHolds/platform/linux/CairoGeometry.h"

namespace kovi::holds::desktop {

namespace {

struct LayoutDeleter {
  void operator()(PangoLayout* layout) const { g_object_unref(layout); }
};
using TextLayout = std::unique_ptr<PangoLayout, LayoutDeleter>;

// A Pango layout of one shield text in its face, size, wrap and spacing.
TextLayout textLayout(cairo_t* cr, const MacHoldsShieldText& text) {
  const MacHoldsShieldTextStyle& style = text.style;
  TextLayout layout(pango_cairo_create_layout(cr));
  // The family list is set as it is: parsed as a description, its last
  // words could read as style or size.
  PangoFontDescription* description = pango_font_description_new();
  pango_font_description_set_family(description, style.face.families.c_str());
  pango_font_description_set_weight(description, static_cast<PangoWeight>(style.face.weight));
  pango_font_description_set_absolute_size(description, style.pointSize * PANGO_SCALE);
  pango_layout_set_font_description(layout.get(), description);
  pango_font_description_free(description);
  if (style.wrapWidth) {
    pango_layout_set_width(layout.get(), static_cast<int>(*style.wrapWidth * PANGO_SCALE));
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD);
    pango_layout_set_alignment(layout.get(), PANGO_ALIGN_CENTER);
  }
  PangoAttrList* attributes = pango_attr_list_new();
  if (style.letterSpacing > 0) {
    pango_attr_list_insert(attributes,
                           pango_attr_letter_spacing_new(static_cast<int>(style.letterSpacing * PANGO_SCALE)));
  }
  if (style.uppercase) pango_attr_list_insert(attributes, pango_attr_text_transform_new(PANGO_TEXT_TRANSFORM_UPPERCASE));
  pango_layout_set_attributes(layout.get(), attributes);
  pango_attr_list_unref(attributes);
  pango_layout_set_text(layout.get(), text.text.c_str(), static_cast<int>(text.text.size()));
  return layout;
}

MacHoldsShieldSize measure(cairo_t* cr, const MacHoldsShieldText& text) {
  int width = 0;
  int height = 0;
  pango_layout_get_pixel_size(textLayout(cr, text).get(), &width, &height);
  return {static_cast<double>(width), static_cast<double>(height)};
}

MacHoldsShieldLayout place(cairo_t* cr, const MacHoldsShieldView& view, const MacHoldsShieldTexts& texts) {
  return MacHoldsShieldLayout::place(
      view.buttons(), MacHoldsShieldMeasures::of(texts, [cr](const MacHoldsShieldText& text) { return measure(cr, text); }));
}

void drawText(cairo_t* cr, const MacHoldsShieldText& text, const MacHoldsShieldRect& frame) {
  setSourceColor(cr, text.style.color);
  cairo_move_to(cr, frame.x, frame.y);
  pango_cairo_show_layout(cr, textLayout(cr, text).get());
}

// The "clock" symbol: a ring with two hands.
void drawClock(cairo_t* cr, const MacHoldsShieldRect& frame, const MacPurrlColor& color) {
  const double cx = frame.x + frame.width / 2, cy = frame.y + frame.height / 2, r = frame.width / 2 - 0.8;
  setSourceColor(cr, color);
  cairo_set_line_width(cr, 1.5);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_new_sub_path(cr);
  cairo_arc(cr, cx, cy, r, 0, 2 * std::numbers::pi);
  cairo_move_to(cr, cx, cy - r * 0.6);
  cairo_line_to(cr, cx, cy);
  cairo_line_to(cr, cx + r * 0.45, cy + r * 0.2);
  cairo_stroke(cr);
}

// The "arrow.up.forward.app" symbol: a rounded square with an arrow leaving it.
void drawOpenAppSymbol(cairo_t* cr, const MacHoldsShieldRect& frame, const MacPurrlColor& color) {
  setSourceColor(cr, color);
  cairo_set_line_width(cr, 1.5);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  roundedRectangle(cr, {frame.x + 0.75, frame.y + 0.75, frame.width - 1.5, frame.height - 1.5}, 3);
  cairo_stroke(cr);
  const double inset = frame.width * 0.3;
  cairo_move_to(cr, frame.x + inset, frame.maxY() - inset);
  cairo_line_to(cr, frame.maxX() - inset, frame.y + inset);
  cairo_move_to(cr, frame.x + frame.width * 0.42, frame.y + inset);
  cairo_line_to(cr, frame.maxX() - inset, frame.y + inset);
  cairo_line_to(cr, frame.maxX() - inset, frame.y + frame.height * 0.58);
  cairo_stroke(cr);
}

}  // namespace

MacHoldsShieldLayout CairoShieldPainter::layout(const MacHoldsShieldView& view, const Calendar& calendar) const {
  cairo_surface_t* scratch = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1);
  cairo_t* cr = cairo_create(scratch);
  const MacHoldsShieldLayout result = place(cr, view, MacHoldsShieldTexts::of(view, fonts_, calendar));
  cairo_destroy(cr);
  cairo_surface_destroy(scratch);
  return result;
}

void CairoShieldPainter::paint(cairo_t* cr, const MacHoldsShieldView& view, const Calendar& calendar,
                               std::optional<std::size_t> pressed) const {
  const MacHoldsShieldTexts texts = MacHoldsShieldTexts::of(view, fonts_, calendar);
  const MacHoldsShieldLayout layout = place(cr, view, texts);
  setSourceColor(cr, MacPurrlColors::paper);
  cairo_paint(cr);

  paintCat(cr, view.cat(), layout.cat);
  cairo_save(cr);
  cairo_translate(cr, layout.caption.x, layout.caption.y);
  cairo_rotate(cr, MacHoldsShieldLayout::captionAngle);
  drawText(cr, texts.caption, {0, 0, layout.caption.width, layout.caption.height});
  cairo_restore(cr);

  drawText(cr, texts.label, layout.label);
  drawText(cr, texts.headline, layout.headline);
  drawClock(cr, layout.clock, texts.time.style.color);
  drawText(cr, texts.time, layout.time);
  drawText(cr, texts.footnote, layout.footnote);

  const auto buttons = view.buttons();
  for (std::size_t index = 0; index < buttons.size(); ++index) {
    const MacHoldsShieldLayout::Button& placed = layout.buttons[index];
    const MacPurrlButtonStyle& style = buttons[index].style;
    roundedRectangle(cr, placed.frame, placed.cornerRadius);
    setSourceColor(cr, style.fill(pressed == index));
    cairo_fill_preserve(cr);
    setSourceColor(cr, style.border());
    cairo_set_line_width(cr, 1.5);
    cairo_stroke(cr);
    if (placed.symbol) drawOpenAppSymbol(cr, *placed.symbol, style.label());
    drawText(cr, texts.buttonTitles[index], placed.title);
  }
}

std::expected<void, std::string> writeShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                const Calendar& calendar, const std::filesystem::path& file) {
  const CairoShieldPainter painter(fonts);
  const MacHoldsShieldSize size = painter.layout(view, calendar).size;
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(size.width)),
                                                        static_cast<int>(std::ceil(size.height)));
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

}  // namespace kovi::holds::desktop
