#include <librsvg/rsvg.h>

#include "quillon/platform/images/drawing/QNSurface.h"

namespace quillon::drawing {
namespace {

struct HandleRelease {
  void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
};

}  // namespace

Fault drawSVG(const QuillonDrawing& drawing, cairo_surface_t* target) {
  // Without a base address nothing outside the file is ever loaded. The reports of the library
  // quote the file, so they go no further.
  const std::unique_ptr<RsvgHandle, HandleRelease> handle(
      rsvg_handle_new_from_data(drawing.bytes, drawing.size, nullptr));
  if (!handle) return "a damaged SVG";
  rsvg_handle_set_dpi(handle.get(), 96);
  const Context context(cairo_create(target));
  cairo_scale(context.get(), drawing.width / drawing.sourceWidth,
              drawing.height / drawing.sourceHeight);
  const RsvgRectangle all{0, 0, drawing.sourceWidth, drawing.sourceHeight};
  const bool drawn = rsvg_handle_render_document(handle.get(), context.get(), &all, nullptr) != 0;
  return drawn && cairo_status(context.get()) == CAIRO_STATUS_SUCCESS
             ? nullptr
             : "an SVG that can't be drawn";
}

}  // namespace quillon::drawing
