#include <bit>
#include <csetjmp>
#include <cstdio>
// The header of the JPEG library needs the two above it.
#include <jpeglib.h>
// After it: the numbers of its warnings.
#include <jerror.h>

#include <algorithm>
#include <array>

#include "quillon/platform/images/drawing/QNSurface.h"

// The JPEG library reports an error by a jump. So the functions that call setjmp hold nothing with
// a destructor, and nothing that changes between setjmp and the jump but through pointers.

namespace quillon::drawing {
namespace {

/// Passes over the picture: a progressive file could ask for any number of them.
constexpr int kMaxScans = 40;
/// For what the library keeps of a progressive picture: 4096 by 4096 of three full components.
constexpr long kMaxMemory = 256L << 20;

struct ErrorManager {
  jpeg_error_mgr base;  // first: the library sees this alone
  std::jmp_buf jump;
};

ErrorManager& errorsOf(j_common_ptr info) {
  return *reinterpret_cast<ErrorManager*>(info->err);
}

[[noreturn]] void fail(j_common_ptr info) {
  std::longjmp(errorsOf(info).jump, 1);  // NOLINT(cert-err52-cpp): the library's own way out
}

// Levels below zero tell of damage, which the library would cover up with grey.
void note(j_common_ptr info, int level) {
  const int code = info->err->msg_code;
  const bool harmless =
      code == JWRN_EXTRANEOUS_DATA || code == JWRN_JFIF_MAJOR || code == JWRN_ADOBE_XFORM;
  if (level < 0 && !harmless) fail(info);
}

void ignore(j_common_ptr) {}

void limitScans(j_common_ptr info) {
  if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMaxScans) fail(info);
}

void setErrors(ErrorManager& errors) {
  jpeg_std_error(&errors.base);
  errors.base.error_exit = fail;
  errors.base.emit_message = note;
  errors.base.output_message = ignore;
}

// The order of bytes that 32-bit pixels have in memory; the fourth is left out.
constexpr J_COLOR_SPACE kPixels =
    std::endian::native == std::endian::little ? JCS_EXT_BGRX : JCS_EXT_XRGB;

struct Decoder {
  jpeg_decompress_struct info;
  ErrorManager errors;
  jpeg_progress_mgr progress;
  cairo_surface_t* surface;
};

bool start(Decoder& decoder, std::span<const std::uint8_t> bytes, std::uint32_t width,
           std::uint32_t height) {
  setErrors(decoder.errors);
  if (setjmp(decoder.errors.jump) != 0) return false;  // NOLINT(cert-err52-cpp)
  jpeg_create_decompress(&decoder.info);
  decoder.info.mem->max_memory_to_use = kMaxMemory;
  decoder.progress = {};
  decoder.progress.progress_monitor = limitScans;
  decoder.info.progress = &decoder.progress;
  jpeg_mem_src(&decoder.info, bytes.data(), bytes.size());
  jpeg_read_header(&decoder.info, TRUE);
  if (decoder.info.image_width != width || decoder.info.image_height != height) return false;
  decoder.info.out_color_space = kPixels;
  return true;
}

bool readRows(Decoder& decoder) {
  unsigned char* const pixels = cairo_image_surface_get_data(decoder.surface);
  const std::size_t stride =
      static_cast<std::size_t>(cairo_image_surface_get_stride(decoder.surface));
  if (setjmp(decoder.errors.jump) != 0) return false;  // NOLINT(cert-err52-cpp)
  jpeg_start_decompress(&decoder.info);
  while (decoder.info.output_scanline < decoder.info.output_height) {
    JSAMPROW row = pixels + decoder.info.output_scanline * stride;
    jpeg_read_scanlines(&decoder.info, &row, 1);
  }
  jpeg_finish_decompress(&decoder.info);
  return true;
}

struct Encoder {
  jpeg_compress_struct info;
  ErrorManager errors;
  jpeg_destination_mgr destination;
  std::array<JOCTET, 4096> buffer;
  const Output* output;
};

Encoder& encoderOf(j_compress_ptr info) {
  return *static_cast<Encoder*>(info->client_data);
}

void restart(j_compress_ptr info) {
  Encoder& encoder = encoderOf(info);
  encoder.destination.next_output_byte = encoder.buffer.data();
  encoder.destination.free_in_buffer = encoder.buffer.size();
}

boolean flush(j_compress_ptr info) {
  Encoder& encoder = encoderOf(info);
  if (!encoder.output->take(encoder.buffer.data(), encoder.buffer.size())) {
    fail(reinterpret_cast<j_common_ptr>(info));
  }
  restart(info);
  return TRUE;
}

void finish(j_compress_ptr info) {
  Encoder& encoder = encoderOf(info);
  const std::size_t used = encoder.buffer.size() - encoder.destination.free_in_buffer;
  if (!encoder.output->take(encoder.buffer.data(), used)) {
    fail(reinterpret_cast<j_common_ptr>(info));
  }
}

bool writeRows(Encoder& encoder, cairo_surface_t* surface, int quality) {
  unsigned char* const pixels = cairo_image_surface_get_data(surface);
  const std::size_t stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface));
  setErrors(encoder.errors);
  encoder.info.err = &encoder.errors.base;
  if (setjmp(encoder.errors.jump) != 0) return false;  // NOLINT(cert-err52-cpp)
  jpeg_create_compress(&encoder.info);
  encoder.destination = {nullptr, 0, restart, flush, finish};
  encoder.info.client_data = &encoder;
  encoder.info.dest = &encoder.destination;
  encoder.info.image_width = static_cast<JDIMENSION>(cairo_image_surface_get_width(surface));
  encoder.info.image_height = static_cast<JDIMENSION>(cairo_image_surface_get_height(surface));
  encoder.info.input_components = 4;
  encoder.info.in_color_space = kPixels;
  jpeg_set_defaults(&encoder.info);
  jpeg_set_quality(&encoder.info, quality, TRUE);
  encoder.info.optimize_coding = TRUE;
  // Full colour at each pixel: icons are small, and their coloured edges would fray.
  encoder.info.comp_info[0].h_samp_factor = 1;
  encoder.info.comp_info[0].v_samp_factor = 1;
  jpeg_start_compress(&encoder.info, TRUE);
  while (encoder.info.next_scanline < encoder.info.image_height) {
    JSAMPROW row = pixels + encoder.info.next_scanline * stride;
    jpeg_write_scanlines(&encoder.info, &row, 1);
  }
  jpeg_finish_compress(&encoder.info);
  return true;
}

Surface overWhite(cairo_surface_t* surface) {
  Surface opaque = newSurface(CAIRO_FORMAT_RGB24,
                              static_cast<std::uint32_t>(cairo_image_surface_get_width(surface)),
                              static_cast<std::uint32_t>(cairo_image_surface_get_height(surface)));
  const Context context(cairo_create(opaque.get()));
  cairo_set_source_rgb(context.get(), 1, 1, 1);
  cairo_paint(context.get());
  cairo_set_source_surface(context.get(), surface, 0, 0);
  cairo_paint(context.get());
  cairo_surface_flush(opaque.get());
  return opaque;
}

}  // namespace

Fault decodeJPEG(std::span<const std::uint8_t> bytes, std::uint32_t width, std::uint32_t height,
                 Surface& surface) {
  const auto decoder = std::make_unique<Decoder>();
  decoder->info.err = &decoder->errors.base;
  bool done = start(*decoder, bytes, width, height);
  if (done) {
    surface = newSurface(CAIRO_FORMAT_RGB24, width, height);
    decoder->surface = surface.get();
    done = drawable(surface) && readRows(*decoder);
    cairo_surface_mark_dirty(surface.get());
  }
  jpeg_destroy_decompress(&decoder->info);
  return done ? nullptr : "a JPEG that is damaged, of too many passes or of a rare kind";
}

Fault encodeJPEG(cairo_surface_t* surface, int quality, const Output& output) {
  const Surface opaque = overWhite(surface);
  if (!drawable(opaque)) return "no memory for the picture";
  const auto encoder = std::make_unique<Encoder>();
  encoder->output = &output;
  const bool done = writeRows(*encoder, opaque.get(), quality);
  jpeg_destroy_compress(&encoder->info);
  return done ? nullptr : "no JPEG could be made";
}

}  // namespace quillon::drawing
