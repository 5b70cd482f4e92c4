#pragma once
// For tests: pictures made byte by byte, so that they don't depend on what is tested.

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

inline void appendBigEndian(Bytes& bytes, std::uint32_t number) {
  for (const int shift : {24, 16, 8, 0})
    bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

inline std::uint32_t crc32Of(ByteView bytes) {
  static const auto table = [] {
    std::array<std::uint32_t, 256> sums{};
    for (std::uint32_t i = 0; i < 256; ++i) {
      sums[i] = i;
      for (int bit = 0; bit < 8; ++bit) {
        sums[i] = (sums[i] >> 1) ^ ((sums[i] & 1) != 0 ? 0xedb88320u : 0u);
      }
    }
    return sums;
  }();
  std::uint32_t crc = 0xffffffffu;
  for (const std::uint8_t byte : bytes) crc = table[(crc ^ byte) & 255] ^ (crc >> 8);
  return ~crc;
}

/// A chunk of a PNG: length, name, content, check sum.
inline void appendChunk(Bytes& png, std::string_view name, ByteView content) {
  appendBigEndian(png, static_cast<std::uint32_t>(content.size()));
  const std::size_t start = png.size();
  png.insert(png.end(), name.begin(), name.end());
  png.insert(png.end(), content.begin(), content.end());
  appendBigEndian(png, crc32Of(ByteView(png).subspan(start)));
}

/// A zlib stream that stores its content as it is.
inline Bytes storedStream(ByteView content) {
  Bytes stream{0x78, 0x01};
  std::uint32_t a = 1, b = 0;
  for (const std::uint8_t byte : content) {
    a = (a + byte) % 65521;
    b = (b + a) % 65521;
  }
  do {
    const ByteView block = content.first(std::min<std::size_t>(content.size(), 65535));
    content = content.subspan(block.size());
    const auto size = static_cast<std::uint16_t>(block.size());
    const auto inverse = static_cast<std::uint16_t>(~size);
    for (const int byte :
         {content.empty() ? 1 : 0, size & 255, size >> 8, inverse & 255, inverse >> 8}) {
      stream.push_back(static_cast<std::uint8_t>(byte));
    }
    stream.insert(stream.end(), block.begin(), block.end());
  } while (!content.empty());
  appendBigEndian(stream, b << 16 | a);
  return stream;
}

inline Bytes pngBeginning(std::uint32_t width, std::uint32_t height) {
  Bytes png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  Bytes header;
  appendBigEndian(header, width);
  appendBigEndian(header, height);
  const Bytes form{8, 6, 0, 0, 0};  // red, green, blue, alpha, of 8 bits each
  header.insert(header.end(), form.begin(), form.end());
  appendChunk(png, "IHDR", header);
  return png;
}

using QNTestColor = std::function<std::uint32_t(std::uint32_t x, std::uint32_t y)>;

/// A PNG of these colours, 0xAARRGGBB each (not multiplied by alpha).
inline Bytes pngOf(std::uint32_t width, std::uint32_t height, const QNTestColor& color) {
  Bytes rows;
  for (std::uint32_t y = 0; y < height; ++y) {
    rows.push_back(0);  // no filter
    for (std::uint32_t x = 0; x < width; ++x) {
      const std::uint32_t pixel = color(x, y);
      for (const int shift : {16, 8, 0, 24}) {
        rows.push_back(static_cast<std::uint8_t>(pixel >> shift));
      }
    }
  }
  Bytes png = pngBeginning(width, height);
  appendChunk(png, "IDAT", storedStream(rows));
  appendChunk(png, "IEND", {});
  return png;
}

inline Bytes pngOf(std::uint32_t width, std::uint32_t height, std::uint32_t color) {
  return pngOf(width, height, [color](std::uint32_t, std::uint32_t) { return color; });
}

/// Opaque colours of no order, the same at each call. `mask` leaves colours out: the more bits, the
/// less can be packed.
inline QNTestColor noise(std::uint32_t mask = 0xffffff) {
  return [mask](std::uint32_t x, std::uint32_t y) {
    std::uint64_t z = (std::uint64_t{x} << 32 | y) + 0x9e3779b97f4a7c15u;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return 0xff000000u | (static_cast<std::uint32_t>(z ^ (z >> 31)) & mask);
  };
}

/// Each of red, green and blue none or all: what JPEG packs worst.
inline QNTestColor harshNoise() {
  return [plain = noise()](std::uint32_t x, std::uint32_t y) {
    const std::uint32_t bits = plain(x, y);
    return 0xff000000u | ((bits & 1) * 0xffu) | ((bits >> 1 & 1) * 0xff00u) |
           ((bits >> 2 & 1) * 0xff0000u);
  };
}

}  // namespace quillon
