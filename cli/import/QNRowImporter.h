#pragma once

#include <functional>

#include "cli/import/QNCSVImporter.h"

namespace quillon {

/// Name and version of the file that `quillon export` writes.
inline constexpr std::string_view kExportFormat = "quillon";
inline constexpr std::uint64_t kExportVersion = 1;

struct QNRowImportReport {
  std::uint64_t added = 0;
  std::uint64_t alreadyThere = 0;
  std::uint64_t differing = 0;       // of a uuid that the vault has with other content; left alone
  std::vector<std::string> damaged;  // uuids of items and folders that the vault has and can't
                                     // open; left alone
  std::uint64_t foldersAdded = 0;
  std::uint64_t foldersAlreadyThere = 0;       // whatever they are called there; left alone
  std::vector<std::string> foldersMovedToTop;  // uuids of added ones whose place isn't there; the
                                               // store finds them when it saves, so onlyTell
                                               // names none
};

/// Does the file begin as JSON does? No CSV that has columns of ours does.
bool looksLikeExport(ByteView content);

/// The folders and items of the file: its JSON and they are let go of together.
class QNExportFile final {
 public:
  /// Error, MRErrorDomain: no JSON, of another program, of a newer version.
  static QNResult<QNExportFile> read(ByteView content);
  [[nodiscard]] const JsonArray& items() const { return _content.at("items").get_array(); }
  [[nodiscard]] const JsonArray& folders() const { return _content.at("folders").get_array(); }

 private:
  explicit QNExportFile(JsonObject content) : _content(std::move(content)) {}
  JsonObject _content;
};

/// Adds the folders of an export to a vault, and then its items, uuids and times included, in one
/// transaction. What the vault has under its uuid is left as it is there; what was deleted comes
/// back. Errors: MRErrorDomain for what is wrong with the file. `progress` gets the number of items
/// so far.
QNResult<QNRowImportReport> importRows(QNStore& store, const std::shared_ptr<QNProfile>& vault,
                                       const QNExportFile& file, QNImportMode mode,
                                       const std::function<void(std::size_t)>& progress);

}  // namespace quillon
