#include "quillon/platform/files/QNResources.h"

#include <cstdlib>
#include <fstream>
#include <system_error>
#include <vector>

namespace quillon {
namespace {

std::filesystem::path findResourceFolder() {
  std::vector<std::filesystem::path> places;
  if (const char* const set = std::getenv("QUILLON_RESOURCES")) places.emplace_back(set);
  std::error_code failed;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", failed);
  if (!failed) places.push_back(program.parent_path().parent_path() / "share" / "quillon");
  places.emplace_back(QUILLON_INSTALLED_RESOURCES);
  places.emplace_back(QUILLON_SOURCE_RESOURCES);
  for (const auto& place : places) {
    if (std::filesystem::is_directory(place, failed)) return place;
  }
  return {};
}

}  // namespace

const std::filesystem::path& resourceFolder() {
  static const std::filesystem::path folder = findResourceFolder();
  return folder;
}

std::filesystem::path resourcePath(std::string_view name) {
  // A relative path would be one in the folder that the process happens to stand in.
  return resourceFolder().empty() ? std::filesystem::path() : resourceFolder() / name;
}

std::optional<std::string> fileContent(const std::filesystem::path& path, std::size_t limit) {
  std::error_code failed;
  const auto size = std::filesystem::file_size(path, failed);
  if (failed || size > limit) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  std::string content(static_cast<std::size_t>(size), '\0');
  if (!file.read(content.data(), static_cast<std::streamsize>(content.size()))) return std::nullopt;
  return content;
}

}  // namespace quillon
