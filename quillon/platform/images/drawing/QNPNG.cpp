#include <cstring>

#include "quillon/platform/images/drawing/QNSurface.h"

namespace quillon::drawing {
namespace {

cairo_status_t readBytes(void* closure, unsigned char* into, unsigned int length) {
  auto& rest = *static_cast<std::span<const std::uint8_t>*>(closure);
  if (length > rest.size()) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(into, rest.data(), length);
  rest = rest.subspan(length);
  return CAIRO_STATUS_SUCCESS;
}

cairo_status_t writeBytes(void* closure, const unsigned char* bytes, unsigned int length) {
  const auto& output = *static_cast<const Output*>(closure);
  return output.take(bytes, length) ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

}  // namespace

Fault decodePNG(std::span<const std::uint8_t> bytes, Surface& surface) {
  surface.reset(cairo_image_surface_create_from_png_stream(readBytes, &bytes));
  return drawable(surface) ? nullptr : "a damaged PNG";
}

Fault encodePNG(cairo_surface_t* surface, const Output& output) {
  const auto status = cairo_surface_write_to_png_stream(surface, writeBytes,
                                                        const_cast<Output*>(&output));  // NOLINT
  return status == CAIRO_STATUS_SUCCESS ? nullptr : "no PNG could be made";
}

}  // namespace quillon::drawing
