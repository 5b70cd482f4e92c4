#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// The folder of the data files. In this order: the environment variable QUILLON_RESOURCES, the
/// folder share/quillon beside the running program's folder, the installed folder, the source
/// tree that this library was built from. Empty if none of them exists. Asked once.
const std::filesystem::path& resourceFolder();

/// A file or folder in it; an empty path, which names nothing, if there is no resource folder.
std::filesystem::path resourcePath(std::string_view name);

/// Whole content of a file of at most `limit` bytes; nothing if it can't be read or is longer.
std::optional<std::string> fileContent(const std::filesystem::path& path, std::size_t limit);

}  // namespace quillon
