#pragma once

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "quillon/platform/images/drawing/quillon_images.h"

namespace quillon::drawing {

struct SurfaceRelease {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextRelease {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
/// Pixels; may be in an error state, which drawable() tells.
using Surface = std::unique_ptr<cairo_surface_t, SurfaceRelease>;
using Context = std::unique_ptr<cairo_t, ContextRelease>;

/// What went wrong, for a log; null for nothing. A text that is never released.
using Fault = const char*;

/// Where an encoder puts its bytes; false ends it.
struct Output {
  const QuillonDrawing* drawing;
  bool take(const std::uint8_t* bytes, std::size_t size) const {
    return drawing->take(drawing->context, bytes, size) != 0;
  }
};

inline Surface newSurface(cairo_format_t format, std::uint32_t width, std::uint32_t height) {
  return Surface(
      cairo_image_surface_create(format, static_cast<int>(width), static_cast<int>(height)));
}
inline bool drawable(const Surface& surface) {
  return surface && cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS;
}

// Decoders: a surface, or a fault.
Fault decodePNG(std::span<const std::uint8_t> bytes, Surface& surface);
/// A fault as well if the file tells another size than `width` and `height`.
Fault decodeJPEG(std::span<const std::uint8_t> bytes, std::uint32_t width, std::uint32_t height,
                 Surface& surface);
/// Draws over all of `target`.
Fault drawSVG(const QuillonDrawing& drawing, cairo_surface_t* target);

// Encoders. The surface is ARGB.
Fault encodePNG(cairo_surface_t* surface, const Output& output);
/// What is transparent lies over white. `quality` is 0 to 100.
Fault encodeJPEG(cairo_surface_t* surface, int quality, const Output& output);

}  // namespace quillon::drawing
