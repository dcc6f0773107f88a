#include "KoviMacHolds/platform/linux/CairoCatPainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace kovi::holds::desktop {

namespace {

using Pose = MacPurrlCatPose;
constexpr double kPi = std::numbers::pi;

// The art is drawn in a 100 × 110 unit box and scaled to the frame.
constexpr double kUnitWidth = 100;
constexpr double kUnitHeight = 110;
constexpr double kOutline = 2.2;

constexpr MacPurrlColor kOutlineColor = MacPurrlColors::ink.withAlpha(0.9);
constexpr MacPurrlColor kPink = MacPurrlColor::sRGB(236, 134, 134);
constexpr MacPurrlColor kLedge = MacPurrlColor::sRGB(226, 214, 200);
constexpr MacPurrlColor kWhite = MacPurrlColor::sRGB(255, 255, 255);

// Where the head and body sit and how big they are. The kitten's head is
// large for its body, with big eyes and small ears: that is what reads as young.
struct Proportions {
  double headY, headRx, headRy;
  double bodyY, bodyRx, bodyRy;
  double eye;
  double ear;
  bool stripes;
};
constexpr Proportions kGrown{40, 29, 24, 80, 27, 25, 4.2, 20, true};
constexpr Proportions kKitten{47, 31, 27, 87, 21, 19, 5.8, 14, false};

enum class Eyes { open, wide, joyful, closed, halfLidded, teary };
enum class Mouth { calm, open, smile, frown, smirk };

struct Face {
  Eyes eyes;
  Mouth mouth;
  double tilt;  // head rotation in radians
};

Face faceFor(Pose pose) {
  switch (pose) {
    case Pose::idle: return {Eyes::open, Mouth::calm, 0};
    case Pose::curious: return {Eyes::wide, Mouth::calm, -0.21};
    case Pose::happy: return {Eyes::joyful, Mouth::smile, 0.05};
    case Pose::celebrate: return {Eyes::joyful, Mouth::smile, 0};
    case Pose::sad: return {Eyes::teary, Mouth::frown, 0.08};
    case Pose::sleepy: return {Eyes::closed, Mouth::calm, 0.14};
    case Pose::meow: return {Eyes::open, Mouth::open, -0.05};
    case Pose::wave: return {Eyes::joyful, Mouth::smile, -0.08};
    case Pose::peek: return {Eyes::wide, Mouth::calm, 0};
    case Pose::holdGems: return {Eyes::open, Mouth::smile, 0};
    case Pose::smug: return {Eyes::halfLidded, Mouth::smirk, 0.1};
    case Pose::stretch: return {Eyes::closed, Mouth::open, 0.3};
  }
  return {Eyes::open, Mouth::calm, 0};
}

void ellipse(cairo_t* cr, double cx, double cy, double rx, double ry) {
  cairo_save(cr);
  cairo_translate(cr, cx, cy);
  cairo_scale(cr, rx, ry);
  cairo_new_sub_path(cr);
  cairo_arc(cr, 0, 0, 1, 0, 2 * kPi);
  cairo_restore(cr);
}

void fillAndOutline(cairo_t* cr, const MacPurrlColor& fill, double width = kOutline) {
  setSourceColor(cr, fill);
  cairo_fill_preserve(cr);
  setSourceColor(cr, kOutlineColor);
  cairo_set_line_width(cr, width);
  cairo_stroke(cr);
}

void strokeWith(cairo_t* cr, const MacPurrlColor& color, double width) {
  setSourceColor(cr, color);
  cairo_set_line_width(cr, width);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  cairo_stroke(cr);
}

void paw(cairo_t* cr, double x, double y, double size = 1) {
  ellipse(cr, x, y, 7 * size, 5.2 * size);
  fillAndOutline(cr, MacPurrlColors::cream);
}

void tail(cairo_t* cr, Pose pose, const Proportions& p) {
  if (pose == Pose::peek) return;
  if (pose == Pose::stretch) {
    cairo_move_to(cr, 86, 84);
    cairo_curve_to(cr, 96, 72, 90, 52, 96, 44);
  } else {
    const double baseY = p.bodyY + p.bodyRy * 0.6;
    cairo_move_to(cr, 50 + p.bodyRx * 0.7, baseY);
    cairo_curve_to(cr, 50 + p.bodyRx + 18, baseY + 4, 50 + p.bodyRx + 20, baseY - 26, 50 + p.bodyRx + 8, baseY - 34);
  }
  cairo_path_t* path = cairo_copy_path(cr);
  strokeWith(cr, kOutlineColor, 9.5);
  cairo_append_path(cr, path);
  strokeWith(cr, MacPurrlColors::fur, 5.5);
  cairo_path_destroy(path);
}

void body(cairo_t* cr, Pose pose, const Proportions& p) {
  if (pose == Pose::peek) {
    // Only the head shows above a ledge.
    cairo_rectangle(cr, 4, 76, 92, 30);
    setSourceColor(cr, kLedge);
    cairo_fill(cr);
    cairo_move_to(cr, 4, 76);
    cairo_line_to(cr, 96, 76);
    strokeWith(cr, kOutlineColor, kOutline);
    return;
  }
  if (pose == Pose::stretch) {
    ellipse(cr, 60, 86, 30, 15);
    fillAndOutline(cr, MacPurrlColors::fur);
    ellipse(cr, 60, 92, 18, 7);
    setSourceColor(cr, MacPurrlColors::cream);
    cairo_fill(cr);
    return;
  }
  ellipse(cr, 50, p.bodyY, p.bodyRx, p.bodyRy);
  fillAndOutline(cr, MacPurrlColors::fur);
  ellipse(cr, 50, p.bodyY + p.bodyRy * 0.2, p.bodyRx * 0.55, p.bodyRy * 0.62);
  setSourceColor(cr, MacPurrlColors::cream);
  cairo_fill(cr);
}

void gem(cairo_t* cr, double cx, double cy, double size) {
  cairo_move_to(cr, cx, cy - size);
  cairo_line_to(cr, cx + size * 0.8, cy - size * 0.25);
  cairo_line_to(cr, cx, cy + size);
  cairo_line_to(cr, cx - size * 0.8, cy - size * 0.25);
  cairo_close_path(cr);
  fillAndOutline(cr, MacPurrlColors::gem, 1.6);
  cairo_move_to(cr, cx - size * 0.3, cy - size * 0.45);
  cairo_line_to(cr, cx, cy - size * 0.75);
  strokeWith(cr, kWhite, 1.4);
}

void paws(cairo_t* cr, Pose pose, const Proportions& p) {
  const double groundY = p.bodyY + p.bodyRy - 3;
  switch (pose) {
    case Pose::peek:
      paw(cr, 34, 76); paw(cr, 66, 76);
      return;
    case Pose::stretch:
      paw(cr, 12, 99); paw(cr, 26, 101); paw(cr, 84, 100);
      return;
    case Pose::celebrate:
      paw(cr, 17, p.headY + 2); paw(cr, 83, p.headY + 2);
      return;
    case Pose::wave:
      paw(cr, 40, groundY);
      paw(cr, 84, p.headY + 8, 1.1);
      for (double r : {10.0, 15.0}) {
        cairo_new_sub_path(cr);
        cairo_arc(cr, 84, p.headY + 8, r, -1.2, -0.3);
        strokeWith(cr, kOutlineColor.withAlpha(0.5), 1.5);
      }
      return;
    case Pose::holdGems:
      gem(cr, 50, p.bodyY - 3, 9);
      paw(cr, 39, p.bodyY + 1, 0.9); paw(cr, 61, p.bodyY + 1, 0.9);
      return;
    default:
      paw(cr, 41, groundY); paw(cr, 59, groundY);
      return;
  }
}

void ear(cairo_t* cr, const Proportions& p, double side, bool droop) {
  const double spread = droop ? 1.25 : 1;
  const double baseOuterX = side * p.headRx * 0.92, baseOuterY = -p.headRy * 0.3;
  const double tipX = side * p.headRx * 0.78 * spread, tipY = -p.headRy - p.ear * (droop ? 0.35 : 0.7);
  const double baseInnerX = side * p.headRx * 0.18, baseInnerY = -p.headRy * 0.9;
  cairo_move_to(cr, baseOuterX, baseOuterY);
  cairo_curve_to(cr, baseOuterX, baseOuterY - 8, tipX - side * 2, tipY + 2, tipX, tipY);
  cairo_curve_to(cr, tipX - side * 2, tipY + 3, baseInnerX + side * 6, baseInnerY - 4, baseInnerX, baseInnerY);
  cairo_close_path(cr);
  fillAndOutline(cr, MacPurrlColors::fur);
  cairo_move_to(cr, side * p.headRx * 0.72, -p.headRy * 0.55);
  cairo_line_to(cr, tipX * 0.93, tipY + 5);
  cairo_line_to(cr, side * p.headRx * 0.36, -p.headRy * 0.85);
  cairo_close_path(cr);
  setSourceColor(cr, kPink.withAlpha(0.8));
  cairo_fill(cr);
}

void eye(cairo_t* cr, Eyes eyes, double x, double y, double size, double side) {
  switch (eyes) {
    case Eyes::open:
    case Eyes::wide:
    case Eyes::teary: {
      const double scale = eyes == Eyes::wide ? 1.25 : 1;
      const double lookDown = eyes == Eyes::teary ? size * 0.3 : 0;
      ellipse(cr, x, y + lookDown, size * 0.8 * scale, size * scale);
      setSourceColor(cr, MacPurrlColors::ink);
      cairo_fill(cr);
      ellipse(cr, x + size * 0.3, y - size * 0.35 + lookDown, size * 0.3 * scale, size * 0.3 * scale);
      setSourceColor(cr, kWhite);
      cairo_fill(cr);
      if (eyes == Eyes::teary) {
        // Brows slanting up towards the middle.
        cairo_move_to(cr, x - side * size * 1.2, y - size * 1.9);
        cairo_line_to(cr, x + side * size * 0.9, y - size * 2.6);
        strokeWith(cr, kOutlineColor, 1.6);
      }
      return;
    }
    case Eyes::joyful:
      cairo_new_sub_path(cr);
      cairo_arc(cr, x, y + size * 0.6, size * 1.1, kPi * 1.15, kPi * 1.85);
      strokeWith(cr, MacPurrlColors::ink, 2.2);
      return;
    case Eyes::closed:
      cairo_new_sub_path(cr);
      cairo_arc(cr, x, y - size * 0.5, size * 1.1, kPi * 0.15, kPi * 0.85);
      strokeWith(cr, MacPurrlColors::ink, 2.2);
      return;
    case Eyes::halfLidded:
      cairo_save(cr);
      cairo_rectangle(cr, x - size * 2, y - size * 0.1, size * 4, size * 3);
      cairo_clip(cr);
      ellipse(cr, x, y, size * 0.85, size);
      setSourceColor(cr, MacPurrlColors::ink);
      cairo_fill(cr);
      cairo_restore(cr);
      cairo_move_to(cr, x - size * 1.1, y - size * 0.1);
      cairo_line_to(cr, x + size * 1.1, y - size * 0.1 - side * 0.6);
      strokeWith(cr, MacPurrlColors::ink, 2);
      return;
  }
}

void mouth(cairo_t* cr, Mouth kind, double y) {
  switch (kind) {
    case Mouth::calm:
      cairo_new_sub_path(cr);
      cairo_arc(cr, -2.6, y, 2.6, 0.1, kPi - 0.1);
      cairo_new_sub_path(cr);
      cairo_arc(cr, 2.6, y, 2.6, 0.1, kPi - 0.1);
      strokeWith(cr, kOutlineColor, 1.6);
      return;
    case Mouth::open:
      ellipse(cr, 0, y + 3.5, 3.8, 4.4);
      fillAndOutline(cr, MacPurrlColor::sRGB(120, 50, 50), 1.4);
      ellipse(cr, 0, y + 6, 2.4, 1.6);
      setSourceColor(cr, kPink);
      cairo_fill(cr);
      return;
    case Mouth::smile:
      cairo_move_to(cr, -5, y);
      cairo_curve_to(cr, -4, y + 6, 4, y + 6, 5, y);
      cairo_close_path(cr);
      fillAndOutline(cr, MacPurrlColor::sRGB(150, 60, 60), 1.4);
      return;
    case Mouth::frown:
      cairo_new_sub_path(cr);
      cairo_arc(cr, 0, y + 5, 4, kPi * 1.2, kPi * 1.8);
      strokeWith(cr, kOutlineColor, 1.6);
      return;
    case Mouth::smirk:
      cairo_move_to(cr, -4, y + 1);
      cairo_curve_to(cr, -1, y + 3, 3, y + 3, 6, y - 1.5);
      strokeWith(cr, kOutlineColor, 1.6);
      return;
  }
}

void head(cairo_t* cr, const Face& face, const Proportions& p, bool drooping) {
  ear(cr, p, -1, drooping);
  ear(cr, p, 1, drooping);
  ellipse(cr, 0, 0, p.headRx, p.headRy);
  fillAndOutline(cr, MacPurrlColors::fur);
  if (p.stripes) {
    for (double x : {-7.0, 0.0, 7.0}) {
      cairo_move_to(cr, x, -p.headRy + 2.5);
      cairo_line_to(cr, x * 0.7, -p.headRy + (x == 0 ? 10 : 8));
    }
    strokeWith(cr, MacPurrlColors::furShade, 2.4);
  } else {
    cairo_move_to(cr, 0, -p.headRy + 2.5);
    cairo_line_to(cr, 0, -p.headRy + 7);
    strokeWith(cr, MacPurrlColors::furShade, 2.4);
  }
  const double muzzleY = p.headRy * 0.42;
  ellipse(cr, 0, muzzleY, p.headRx * 0.38, p.headRy * 0.3);
  setSourceColor(cr, MacPurrlColors::cream);
  cairo_fill(cr);
  for (double side : {-1.0, 1.0}) {
    ellipse(cr, side * p.headRx * 0.6, p.headRy * 0.3, 5, 3);
    setSourceColor(cr, MacPurrlColors::accent.withAlpha(0.35));
    cairo_fill(cr);
    eye(cr, face.eyes, side * p.headRx * 0.38, -p.headRy * 0.05, p.eye, side);
    for (double dy : {-1.5, 2.5}) {
      cairo_move_to(cr, side * p.headRx * 0.5, muzzleY + dy * 0.6);
      cairo_line_to(cr, side * (p.headRx + 6), muzzleY + dy * 1.6);
    }
    strokeWith(cr, kOutlineColor.withAlpha(0.6), 1.1);
  }
  if (face.eyes == Eyes::teary) {
    const double x = -p.headRx * 0.38 - 1, y = p.eye * 1.6;
    cairo_move_to(cr, x, y);
    cairo_curve_to(cr, x - 3, y + 5, x - 2, y + 8, x, y + 8);
    cairo_curve_to(cr, x + 2, y + 8, x + 3, y + 5, x, y);
    setSourceColor(cr, MacPurrlColors::gem);
    cairo_fill(cr);
  }
  // Nose, then the mouth under it.
  const double noseY = muzzleY - p.headRy * 0.12;
  cairo_move_to(cr, -3, noseY - 1.5);
  cairo_line_to(cr, 3, noseY - 1.5);
  cairo_line_to(cr, 0, noseY + 1.8);
  cairo_close_path(cr);
  setSourceColor(cr, kPink);
  cairo_fill(cr);
  mouth(cr, face.mouth, noseY + 2);
}

// A "Z" drawn as three strokes.
void letterZ(cairo_t* cr, double x, double y, double size) {
  cairo_move_to(cr, x, y);
  cairo_line_to(cr, x + size, y);
  cairo_line_to(cr, x, y + size);
  cairo_line_to(cr, x + size, y + size);
  strokeWith(cr, MacPurrlColors::ink.withAlpha(0.7), 1.8);
}

void props(cairo_t* cr, Pose pose, const Proportions& p) {
  switch (pose) {
    case Pose::sleepy:
      letterZ(cr, 81, 20, 5);
      letterZ(cr, 88, 8, 6.5);
      letterZ(cr, 94, -6, 8);
      return;
    case Pose::curious:
      // A question mark: hook, stem and dot.
      cairo_new_sub_path(cr);
      cairo_arc(cr, 86, 10, 5, kPi, kPi * 2.4);
      cairo_line_to(cr, 86, 20);
      strokeWith(cr, MacPurrlColors::accent, 2.6);
      ellipse(cr, 86, 26, 1.6, 1.6);
      setSourceColor(cr, MacPurrlColors::accent);
      cairo_fill(cr);
      return;
    case Pose::celebrate: {
      constexpr std::array<std::array<double, 3>, 7> confetti{{
          {8, 10, 0.4}, {30, 2, -0.6}, {70, 4, 0.9}, {92, 14, -0.3}, {4, 46, 1.1}, {96, 40, 0.2}, {50, -4, 0.7}}};
      const std::array colors{MacPurrlColors::accent, MacPurrlColors::gem, MacPurrlColors::furShade};
      for (std::size_t index = 0; index < confetti.size(); ++index) {
        cairo_save(cr);
        cairo_translate(cr, confetti[index][0], confetti[index][1]);
        cairo_rotate(cr, confetti[index][2]);
        cairo_rectangle(cr, -2.5, -1.2, 5, 2.4);
        setSourceColor(cr, colors[index % colors.size()]);
        cairo_fill(cr);
        cairo_restore(cr);
      }
      return;
    }
    case Pose::meow:
      for (double r : {8.0, 13.0}) {
        cairo_new_sub_path(cr);
        cairo_arc(cr, 50 + p.headRx * 0.4, p.headY + p.headRy * 0.55, r, -0.5, 0.5);
        strokeWith(cr, MacPurrlColors::ink.withAlpha(0.5), 1.6);
      }
      return;
    case Pose::smug:
      for (double angle = 0; angle < kPi; angle += kPi / 2) {
        cairo_move_to(cr, 86 + 5 * std::cos(angle), 16 + 5 * std::sin(angle));
        cairo_line_to(cr, 86 - 5 * std::cos(angle), 16 - 5 * std::sin(angle));
      }
      strokeWith(cr, MacPurrlColors::accent, 1.8);
      return;
    default:
      return;
  }
}

}  // namespace

void paintCat(cairo_t* cr, const MacPurrlCat& cat, const MacHoldsShieldRect& frame) {
  const Proportions& p = cat.isKitten() ? kKitten : kGrown;
  const Face face = faceFor(cat.pose);

  cairo_save(cr);
  const double scale = std::min(frame.width / kUnitWidth, frame.height / kUnitHeight);
  cairo_translate(cr, frame.x + (frame.width - kUnitWidth * scale) / 2, frame.y + (frame.height - kUnitHeight * scale) / 2);
  cairo_scale(cr, scale, scale);

  if (cat.pose != Pose::peek) {
    ellipse(cr, 50, 106, 34, 3.5);
    setSourceColor(cr, MacPurrlColors::ink.withAlpha(0.08));
    cairo_fill(cr);
  }
  tail(cr, cat.pose, p);
  body(cr, cat.pose, p);
  if (cat.pose != Pose::celebrate && cat.pose != Pose::wave) paws(cr, cat.pose, p);

  cairo_save(cr);
  if (cat.pose == Pose::stretch) {
    cairo_translate(cr, 30, 74);
    cairo_scale(cr, 0.85, 0.85);
  } else {
    cairo_translate(cr, 50, p.headY);
  }
  cairo_rotate(cr, face.tilt);
  head(cr, face, p, cat.pose == Pose::sad);
  cairo_restore(cr);

  // Raised paws go in front of the head.
  if (cat.pose == Pose::celebrate || cat.pose == Pose::wave) paws(cr, cat.pose, p);
  props(cr, cat.pose, p);
  cairo_restore(cr);
}

}  // namespace kovi::holds::desktop
