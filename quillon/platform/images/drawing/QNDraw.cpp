#include <algorithm>
#include <cmath>
#include <cstdio>

#include "quillon/platform/images/drawing/QNSurface.h"

namespace quillon::drawing {
namespace {

/// The filter takes no more than 16 pixels into one; this leaves it room.
constexpr double kMostInOneStep = 8;

std::uint32_t widthOf(const Surface& surface) {
  return static_cast<std::uint32_t>(cairo_image_surface_get_width(surface.get()));
}
std::uint32_t heightOf(const Surface& surface) {
  return static_cast<std::uint32_t>(cairo_image_surface_get_height(surface.get()));
}

/// Draws one surface over all of another, scaled.
void drawOver(cairo_surface_t* target, const Surface& source) {
  const double x = static_cast<double>(cairo_image_surface_get_width(target)) / widthOf(source);
  const double y = static_cast<double>(cairo_image_surface_get_height(target)) / heightOf(source);
  const Context context(cairo_create(target));
  cairo_scale(context.get(), x, y);
  cairo_set_source_surface(context.get(), source.get(), 0, 0);
  // Without padding the edges would fade into the nothing around the picture.
  cairo_pattern_set_extend(cairo_get_source(context.get()), CAIRO_EXTEND_PAD);
  cairo_pattern_set_filter(cairo_get_source(context.get()),
                           x == 1 && y == 1 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
  cairo_paint(context.get());
}

/// A picture that is many times larger than it is wanted is made smaller in steps.
bool approach(Surface& picture, std::uint32_t width, std::uint32_t height) {
  const auto next = [](std::uint32_t now, std::uint32_t wanted) {
    return std::max(wanted, static_cast<std::uint32_t>(std::ceil(now / kMostInOneStep)));
  };
  while (widthOf(picture) > width * kMostInOneStep || heightOf(picture) > height * kMostInOneStep) {
    Surface smaller = newSurface(CAIRO_FORMAT_ARGB32, next(widthOf(picture), width),
                                 next(heightOf(picture), height));
    if (!drawable(smaller)) return false;
    drawOver(smaller.get(), picture);
    picture = std::move(smaller);
  }
  return true;
}

bool passed(const QuillonDrawing& drawing, bool after, cairo_surface_t* canvas) {
  if (drawing.pass == nullptr) return true;
  cairo_surface_flush(canvas);
  auto* const pixels = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(canvas));
  if (drawing.pass(drawing.context, after ? 1 : 0, pixels, drawing.width, drawing.height) == 0) {
    return false;
  }
  cairo_surface_mark_dirty(canvas);
  return true;
}

Fault decoded(const QuillonDrawing& drawing, Surface& picture) {
  const std::span bytes(drawing.bytes, drawing.size);
  if (drawing.format == QUILLON_PNG) return decodePNG(bytes, picture);
  return decodeJPEG(bytes, static_cast<std::uint32_t>(drawing.sourceWidth),
                    static_cast<std::uint32_t>(drawing.sourceHeight), picture);
}

Fault drawPicture(const QuillonDrawing& drawing, cairo_surface_t* canvas) {
  if (drawing.format == QUILLON_SVG) return drawSVG(drawing, canvas);
  Surface picture;
  if (const Fault fault = decoded(drawing, picture)) return fault;
  if (!approach(picture, drawing.width, drawing.height)) return "no memory for the picture";
  drawOver(canvas, picture);
  return nullptr;
}

Fault draw(const QuillonDrawing& drawing) {
  const Surface canvas = newSurface(CAIRO_FORMAT_ARGB32, drawing.width, drawing.height);
  if (!drawable(canvas)) return "no memory for the picture";
  if (!passed(drawing, false, canvas.get())) return "the pass before it failed";
  if (const Fault fault = drawPicture(drawing, canvas.get())) return fault;
  if (!drawable(canvas)) return "no memory for the picture";
  if (!passed(drawing, true, canvas.get())) return "the pass after it failed";
  cairo_surface_flush(canvas.get());
  const Output output{&drawing};
  return drawing.encoding == QUILLON_PNG ? encodePNG(canvas.get(), output)
                                         : encodeJPEG(canvas.get(), drawing.quality, output);
}

}  // namespace
}  // namespace quillon::drawing

extern "C" {

[[gnu::visibility("default")]] std::uint32_t quillon_images_version() {
  return QUILLON_IMAGES_VERSION;
}

[[gnu::visibility("default")]] int quillon_images_draw(const QuillonDrawing* drawing, char* fault,
                                                       std::size_t faultSize) {
  // Only new throws here, when memory is short.
  const char* why = nullptr;
  try {
    why = quillon::drawing::draw(*drawing);
  } catch (...) {
    why = "no memory for the picture";
  }
  std::snprintf(fault, faultSize, "%s", why == nullptr ? "" : why);
  return why == nullptr ? 1 : 0;
}
}
