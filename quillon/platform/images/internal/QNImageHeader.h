#pragma once

#include <optional>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/images/QNImage.h"

namespace quillon {

/// What an encoded picture tells without being decoded. Foreign bytes: everything is checked, in
/// one pass.
struct QNImageHeader {
  QNSize size;  // in pixels, both above zero
  double fillsPerPixel = 1, edges = 0;
};

/// By the first bytes alone; nothing for other formats.
std::optional<QNImageFormat> imageFormatOf(ByteView encoded);

/// Error 114 for bytes that are too many, cut short or not what the format demands.
QNResult<QNImageHeader> readImageHeader(ByteView encoded, QNImageFormat format);

/// The whole text of an SVG is read: it is refused unless it is plain shapes. The element that is
/// refused isn't named in the error, since foreign text doesn't belong into logs.
QNResult<QNImageHeader> readSVGHeader(std::string_view text);

}  // namespace quillon
