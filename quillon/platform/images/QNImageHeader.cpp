#include "quillon/platform/images/internal/QNImageHeader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

// What is read of a header. Numbers are big-endian.
//
//   PNG    8 signature; then the first chunk: 4 length (13), 4 "IHDR", 4 width, 4 height, ...
//   JPEG   segments behind ff d8: 1 ff (any number of them), 1 marker, 2 length (itself included);
//          the size stands in the first start of a frame, c0 to cf but for c4, c8 and cc:
//          1 precision, 2 height, 2 width

namespace quillon {
namespace {

constexpr std::array<std::uint8_t, 8> kPNG{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr std::array<std::uint8_t, 3> kJPEG{0xff, 0xd8, 0xff};
constexpr std::array<std::uint8_t, 8> kIHDR{0, 0, 0, 13, 'I', 'H', 'D', 'R'};

template <std::size_t N>
bool beginsWith(ByteView bytes, const std::array<std::uint8_t, N>& magic) {
  return bytes.size() >= N && std::equal(magic.begin(), magic.end(), bytes.begin());
}

std::uint32_t bigEndian(ByteView bytes) {
  std::uint32_t number = 0;
  for (const std::uint8_t byte : bytes) number = number << 8 | byte;
  return number;
}

QNResult<QNImageHeader> headerOfSize(std::uint32_t width, std::uint32_t height) {
  if (width == 0 || height == 0) return QNError::unreadable("it has no width or no height");
  return QNImageHeader{{static_cast<double>(width), static_cast<double>(height)}};
}

QNResult<QNImageHeader> readPNGHeader(ByteView encoded) {
  const ByteView chunk = encoded.subspan(kPNG.size());
  if (!beginsWith(chunk, kIHDR)) return QNError::unreadable("a PNG that doesn't begin with IHDR");
  if (chunk.size() < kIHDR.size() + 13 + 4) return QNError::unreadable("a PNG header cut short");
  return headerOfSize(bigEndian(chunk.subspan(8, 4)), bigEndian(chunk.subspan(12, 4)));
}

bool startsFrame(std::uint8_t marker) {
  return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

// Markers that stand alone, and those behind which no header comes.
bool endsHeaders(std::uint8_t marker) {
  return marker == 0 || marker == 0x01 || (marker >= 0xd0 && marker <= 0xda);
}

QNResult<QNImageHeader> readJPEGHeader(ByteView encoded) {
  ByteView rest = encoded.subspan(2);
  while (true) {
    if (rest.empty() || rest[0] != 0xff) return QNError::unreadable("a JPEG of broken segments");
    while (!rest.empty() && rest[0] == 0xff) rest = rest.subspan(1);
    if (rest.size() < 3) return QNError::unreadable("a JPEG header cut short");
    const std::uint8_t marker = rest[0];
    if (endsHeaders(marker)) return QNError::unreadable("a JPEG that tells no size");
    const std::size_t length = bigEndian(rest.subspan(1, 2));
    rest = rest.subspan(1);
    if (length < 2 || length > rest.size()) return QNError::unreadable("a JPEG header cut short");
    if (startsFrame(marker)) {
      if (length < 8) return QNError::unreadable("a JPEG frame cut short");
      return headerOfSize(bigEndian(rest.subspan(5, 2)), bigEndian(rest.subspan(3, 2)));
    }
    rest = rest.subspan(length);
  }
}

bool beginsAsSVG(std::string_view text) {
  if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  return text.starts_with("<?xml") || text.starts_with("<!--") || text.starts_with("<!DOCTYPE") ||
         text.starts_with("<svg");
}

}  // namespace

std::optional<QNImageFormat> imageFormatOf(ByteView encoded) {
  if (beginsWith(encoded, kPNG)) return QNImageFormat::png;
  if (beginsWith(encoded, kJPEG)) return QNImageFormat::jpeg;
  if (beginsAsSVG(textOf(encoded))) return QNImageFormat::svg;
  return std::nullopt;
}

QNResult<QNImageHeader> readImageHeader(ByteView encoded, QNImageFormat format) {
  const std::size_t limit = format == QNImageFormat::svg ? kMaxSVGBytes : kMaxImageBytes;
  if (encoded.size() > limit) {
    return QNError::unreadable(
        fmt::format("it is too long: {} bytes, more than {}", encoded.size(), limit));
  }
  switch (format) {
    case QNImageFormat::png:
      return readPNGHeader(encoded);
    case QNImageFormat::jpeg:
      return readJPEGHeader(encoded);
    case QNImageFormat::svg:
      break;
  }
  return readSVGHeader(textOf(encoded));
}

}  // namespace quillon
