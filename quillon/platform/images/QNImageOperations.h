#pragma once

#include <functional>
#include <optional>
#include <span>

#include "quillon/platform/images/QNImage.h"

namespace quillon {

// Each of these decodes foreign bytes. Whatever is damaged, too large or otherwise can't be drawn
// gives nothing and an error log; so does an image stack that isn't there. None changes its image.
// Any thread. Metadata of the file (places, comments) is in no result.

/// All pixels of a picture in the making: rows without gaps, ARGB of 32 bits each in the machine's
/// order, colours multiplied by alpha.
struct QNPixels {
  std::span<std::uint32_t> argb;
  std::uint32_t width = 0, height = 0;
};
/// Draws into them; an empty one does nothing. May throw: the picture then isn't made.
using QNPixelPass = std::function<void(QNPixels)>;

/// The picture as PNG or JPEG, in its own pixels but for those that its size() in points has no
/// room for: then it is scaled down into that size, its shape kept. An SVG has no pixels of its own
/// and is drawn at its size(). Nothing, without a log, for an absent image. JPEG has white where
/// the picture is transparent; `quality` is 0 to 1.
std::optional<Bytes> QNImagePNGRepresentation(const std::shared_ptr<const QNImage>& image);
std::optional<Bytes> QNImageJPGRepresentation(const std::shared_ptr<const QNImage>& image,
                                              float quality);

/// The picture scaled, up or down, to the largest that fits into `size` points, its shape kept;
/// `backingScale` pixels to the point. A PNG with the same template mark, its size() in points. The
/// passes draw before and after it. Null, without a log, for an absent image.
std::shared_ptr<const QNImage> mr_imageByScalingProportionallyToSize(
    const std::shared_ptr<const QNImage>& image, QNSize size, const QNPixelPass& prePass = {},
    const QNPixelPass& postPass = {}, double backingScale = 1);

}  // namespace quillon
