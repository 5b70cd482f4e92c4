#include <algorithm>
#include <map>
#include <mutex>

#include "quillon/platform/files/QNResources.h"
#include "quillon/platform/images/QNImage.h"
#include "quillon/platform/text/QNASCII.h"

namespace quillon {
namespace {

/// Pictures kept; there are fewer files. What comes on top of them is read at each call.
constexpr std::size_t kMaxKept = 1024;
/// Longest name, in bytes.
constexpr std::size_t kMaxNameBytes = 100;

// Names come from stored rows too: one must not lead out of the folder.
bool isFileName(std::string_view name) {
  const auto allowed = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
  };
  return !name.empty() && name.size() <= kMaxNameBytes &&
         std::all_of(name.begin(), name.end(), allowed);
}

std::shared_ptr<const QNImage> imageOfFile(std::string_view name) {
  const auto path = resourcePath("Icons/" + std::string(name) + ".svg");
  const auto content = fileContent(path, kMaxSVGBytes);
  return content ? QNImage::imageWithData(bytesOf(*content)) : nullptr;
}

struct KeptImages {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<const QNImage>, std::less<>> byName;
};

}  // namespace

std::shared_ptr<const QNImage> mr_imageNamed(std::string_view name) {
  static KeptImages kept;
  if (!isFileName(name)) return nullptr;
  const std::lock_guard lock(kept.mutex);
  const auto found = kept.byName.find(name);
  if (found != kept.byName.end()) return found->second;
  auto image = imageOfFile(name);
  // What isn't there isn't kept: names of rows that others wrote would pile up.
  if (image != nullptr && kept.byName.size() < kMaxKept) kept.byName.emplace(name, image);
  return image;
}

}  // namespace quillon
