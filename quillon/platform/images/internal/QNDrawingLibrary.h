#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/images/QNImageOperations.h"
#include "quillon/platform/images/drawing/quillon_images.h"

namespace quillon {

/// What to make of a picture.
struct QNDrawingOrder {
  const QNImageSource* source = nullptr;
  std::uint32_t width = 0, height = 0;  // of the result, in pixels
  QNImageFormat encoding = QNImageFormat::png;
  int quality = 0;  // of JPEG, 0 to 100
  QNPixelPass prePass, postPass;
};

/// The image stack, a shared library of its own. It stays loaded. Any thread.
class QNDrawingLibrary final {
 public:
  /// Loaded at the first call; an error log if it can't be.
  static const QNDrawingLibrary& shared();
  /// Where shared() looks, in order: where the dynamic linker does by the program's own list, the
  /// build that this library came from, the installed folder.
  static std::vector<std::filesystem::path> places();

  /// Takes the first place that can be loaded. A path with a folder is passed over if somebody else
  /// could have put the file there: it must belong to root, to the user or to the owner of the
  /// program, and not everybody may write to it or its folder.
  explicit QNDrawingLibrary(const std::vector<std::filesystem::path>& places);
  QNDrawingLibrary(const QNDrawingLibrary&) = delete;
  QNDrawingLibrary& operator=(const QNDrawingLibrary&) = delete;

  [[nodiscard]] bool isLoaded() const noexcept { return _draw != nullptr; }
  /// Error 114 with the library's own words, or without a library.
  [[nodiscard]] QNResult<Bytes> draw(const QNDrawingOrder& order) const;

 private:
  std::string load(const std::filesystem::path& place);  // why it isn't; empty if it is

  QuillonImagesDraw _draw = nullptr;
};

}  // namespace quillon
