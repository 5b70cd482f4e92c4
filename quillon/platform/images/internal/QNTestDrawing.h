#pragma once
// For tests: the pixels of what was drawn, JPEGs and SVGs to draw, and what is reported of
// failures.

#include <cairo.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
// The header of the JPEG library needs <cstdio> above it.
#include <jpeglib.h>

#include <algorithm>
#include <array>

#include "quillon/platform/images/QNImageOperations.h"
#include "quillon/platform/images/internal/QNTestPictures.h"
#include "quillon/platform/log/MRLogger.h"

namespace quillon {

inline constexpr std::uint32_t kRed = 0xffff0000, kBlue = 0xff0000ff, kWhite = 0xffffffff;
inline constexpr std::uint32_t kBlack = 0xff000000;

// Reading results

struct QNTestPixels {
  int width = 0, height = 0;
  std::vector<std::uint32_t> argb;  // multiplied by alpha
  std::uint32_t at(int x, int y) const { return argb.at(static_cast<std::size_t>(y * width + x)); }
};

inline cairo_status_t readSome(void* closure, unsigned char* into, unsigned int length) {
  auto& rest = *static_cast<ByteView*>(closure);
  if (length > rest.size()) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(into, rest.data(), length);
  rest = rest.subspan(length);
  return CAIRO_STATUS_SUCCESS;
}

inline QNTestPixels pixelsOf(const std::optional<Bytes>& png) {
  QNTestPixels pixels;
  if (!png) {
    ADD_FAILURE() << "no PNG";
    return pixels;
  }
  ByteView rest(*png);
  cairo_surface_t* const surface = cairo_image_surface_create_from_png_stream(readSome, &rest);
  EXPECT_EQ(cairo_surface_status(surface), CAIRO_STATUS_SUCCESS);
  pixels.width = cairo_image_surface_get_width(surface);
  pixels.height = cairo_image_surface_get_height(surface);
  const unsigned char* const data = cairo_image_surface_get_data(surface);
  const bool opaque = cairo_image_surface_get_format(surface) == CAIRO_FORMAT_RGB24;
  for (int y = 0; y < pixels.height; ++y) {
    for (int x = 0; x < pixels.width; ++x) {
      std::uint32_t pixel = 0;
      std::memcpy(&pixel, data + y * cairo_image_surface_get_stride(surface) + 4 * x, 4);
      pixels.argb.push_back(opaque ? pixel | kBlack : pixel);
    }
  }
  cairo_surface_destroy(surface);
  return pixels;
}

/// The largest difference of any of the four parts.
inline int differenceOf(std::uint32_t a, std::uint32_t b) {
  int largest = 0;
  for (const int shift : {0, 8, 16, 24}) {
    const int one = static_cast<int>(a >> shift & 255), other = static_cast<int>(b >> shift & 255);
    largest = std::max(largest, std::abs(one - other));
  }
  return largest;
}

inline void expectAll(const QNTestPixels& pixels, std::uint32_t color, int tolerance = 0) {
  for (const std::uint32_t pixel : pixels.argb) {
    ASSERT_LE(differenceOf(pixel, color), tolerance) << std::hex << pixel;
  }
}

// Making pictures

inline std::shared_ptr<const QNImage> imageOf(ByteView encoded) {
  const auto image = QNImage::imageWithData(encoded);
  EXPECT_NE(image, nullptr);
  return image;
}

inline std::shared_ptr<const QNImage> plainImage(std::uint32_t width, std::uint32_t height,
                                                 std::uint32_t color = kRed) {
  return imageOf(pngOf(width, height, color));
}

inline std::shared_ptr<const QNImage> svgImage(std::string_view attributes,
                                               std::string_view content) {
  return imageOf(bytesOf("<svg xmlns='http://www.w3.org/2000/svg' " + std::string(attributes) +
                         ">" + std::string(content) + "</svg>"));
}

enum class QNTestJPEG { color, grey, cmyk };

/// A JPEG of one colour; with scans, a progressive one of that many passes.
inline Bytes jpegOf(unsigned width, unsigned height, std::array<JSAMPLE, 4> color,
                    QNTestJPEG kind = QNTestJPEG::color, int scans = 0) {
  const int components = kind == QNTestJPEG::grey ? 1 : kind == QNTestJPEG::cmyk ? 4 : 3;
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* made = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &made, &size);
  info.image_width = width;
  info.image_height = height;
  info.input_components = components;
  info.in_color_space = kind == QNTestJPEG::grey   ? JCS_GRAYSCALE
                        : kind == QNTestJPEG::cmyk ? JCS_CMYK
                                                   : JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, 95, TRUE);
  // The first scan has the averages; each other one frequency of one component.
  std::vector<jpeg_scan_info> script;
  for (int scan = 0; scan < scans; ++scan) {
    jpeg_scan_info one{};
    if (scan == 0) {
      one = {components, {0, 1, 2}, 0, 0, 0, 0};
    } else {
      const int frequency = 1 + (scan - 1) / components;
      one = {1, {(scan - 1) % components}, frequency, frequency, 0, 0};
    }
    script.push_back(one);
  }
  if (scans > 0) {
    info.scan_info = script.data();
    info.num_scans = scans;
  }
  jpeg_start_compress(&info, TRUE);
  std::vector<JSAMPLE> row;
  for (unsigned x = 0; x < width; ++x)
    row.insert(row.end(), color.begin(), color.begin() + components);
  for (unsigned y = 0; y < height; ++y) {
    JSAMPROW rows = row.data();
    jpeg_write_scanlines(&info, &rows, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  Bytes bytes(made, made + size);
  std::free(made);
  return bytes;
}

/// The reports of failed drawings, without their beginning.
inline std::vector<std::string> faultsIn(const MRCapturingSink& sink) {
  std::vector<std::string> faults;
  for (const std::string& text : sink.texts(MRLogKind::error)) {
    constexpr std::string_view kBeginning = "Failed to draw a picture: ";
    EXPECT_TRUE(text.starts_with(kBeginning)) << text;
    faults.push_back(text.substr(std::min(kBeginning.size(), text.size())));
  }
  return faults;
}

/// Neither a PNG nor a JPEG nor a smaller picture comes out, and each time the reason is told.
inline void expectUndrawable(const std::shared_ptr<const QNImage>& image,
                             const std::string& fault) {
  const MRCapturingSink sink;
  EXPECT_EQ(QNImagePNGRepresentation(image), std::nullopt);
  EXPECT_EQ(QNImageJPGRepresentation(image, 0.5f), std::nullopt);
  EXPECT_EQ(mr_imageByScalingProportionallyToSize(image, {8, 8}), nullptr);
  EXPECT_EQ(faultsIn(sink), (std::vector<std::string>{fault, fault, fault}));
}

/// In an SVG of 8 by 8.
inline constexpr const char* kLeftHalf = "<rect width='4' height='8' fill='red'/>";

}  // namespace quillon
