#include "quillon/platform/images/internal/QNDrawingLibrary.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

// Code is loaded from there, so the place must be as safe as the program itself.
bool isSafe(const std::filesystem::path& path, uid_t programOwner) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return false;
  const bool ours =
      status.st_uid == 0 || status.st_uid == ::geteuid() || status.st_uid == programOwner;
  return ours && (status.st_mode & S_IWOTH) == 0;
}

bool isSafePlace(const std::filesystem::path& place) {
  struct stat program {};
  if (::stat("/proc/self/exe", &program) != 0) return false;
  return isSafe(place, program.st_uid) && isSafe(place.parent_path(), program.st_uid);
}

std::string lastFault() {
  const char* const fault = ::dlerror();
  return fault == nullptr ? "no reason given" : fault;
}

/// What the C side is given as its context: where it calls back to.
struct Call {
  const QNDrawingOrder* order;
  Bytes result;
};

// Nothing may be thrown through foreign code: whatever it is, the drawing then fails.
int take(void* context, const std::uint8_t* bytes, std::size_t size) {
  try {
    Bytes& result = static_cast<Call*>(context)->result;
    result.insert(result.end(), bytes, bytes + size);
    return 1;
  } catch (...) {
    return 0;
  }
}

int pass(void* context, int after, std::uint32_t* pixels, std::uint32_t width,
         std::uint32_t height) {
  try {
    const QNDrawingOrder& order = *static_cast<Call*>(context)->order;
    const QNPixelPass& run = after != 0 ? order.postPass : order.prePass;
    if (run) run({{pixels, std::size_t{width} * height}, width, height});
    return 1;
  } catch (...) {
    return 0;
  }
}

std::int32_t numberOf(QNImageFormat format) {
  switch (format) {
    case QNImageFormat::png:
      return QUILLON_PNG;
    case QNImageFormat::jpeg:
      return QUILLON_JPEG;
    case QNImageFormat::svg:
      break;
  }
  return QUILLON_SVG;
}

}  // namespace

std::vector<std::filesystem::path> QNDrawingLibrary::places() {
  return {QUILLON_IMAGES_FILE, QUILLON_BUILT_IMAGES, QUILLON_INSTALLED_IMAGES};
}

const QNDrawingLibrary& QNDrawingLibrary::shared() {
  static const QNDrawingLibrary* const library = new QNDrawingLibrary(places());  // for exit, too
  return *library;
}

QNDrawingLibrary::QNDrawingLibrary(const std::vector<std::filesystem::path>& places) {
  std::string faults;
  for (const auto& place : places) {
    const std::string fault = load(place);
    if (fault.empty()) return;
    faults += faults.empty() ? fault : "; " + fault;
  }
  log_error(DEBUG_IMAGESERVICE, "The image library can't be loaded, so no picture is drawn: {}",
            faults);
}

std::string QNDrawingLibrary::load(const std::filesystem::path& place) {
  if (place.has_parent_path() && !isSafePlace(place)) {
    return place.string() + ": not there, or somebody else's";
  }
  void* const library = ::dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return lastFault();
  const auto version =
      reinterpret_cast<QuillonImagesVersion>(::dlsym(library, "quillon_images_version"));
  const auto found = reinterpret_cast<QuillonImagesDraw>(::dlsym(library, "quillon_images_draw"));
  if (version == nullptr || found == nullptr || version() != QUILLON_IMAGES_VERSION) {
    return place.string() + ": of another version";
  }
  _draw = found;
  return {};
}

QNResult<Bytes> QNDrawingLibrary::draw(const QNDrawingOrder& order) const {
  if (!isLoaded()) return QNError::unreadable("the image library isn't loaded");
  Call call{&order, {}};
  QuillonDrawing drawing{};
  drawing.bytes = order.source->data.data();
  drawing.size = order.source->data.size();
  drawing.format = numberOf(order.source->format);
  drawing.sourceWidth = order.source->size.width;
  drawing.sourceHeight = order.source->size.height;
  drawing.width = order.width;
  drawing.height = order.height;
  drawing.encoding = numberOf(order.encoding);
  drawing.quality = order.quality;
  drawing.pass = pass;
  drawing.take = take;
  drawing.context = &call;
  std::array<char, 200> fault{};
  if (_draw(&drawing, fault.data(), fault.size()) == 0) return QNError::unreadable(fault.data());
  return std::move(call.result);
}

}  // namespace quillon
