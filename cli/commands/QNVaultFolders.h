#pragma once

#include <string_view>
#include <vector>

#include "cli/arguments/QNArguments.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNItemFilter.h"
#include "quillon/organisation/QNFolder.h"

namespace quillon {

using QNFolderRef = std::shared_ptr<QNFolder>;

/// The folders of a vault, smart ones too, as people name them: by uuid, or by their titles from
/// the top, parted by "/".
class QNVaultFolders final {
 public:
  static QNResult<QNVaultFolders> read(const QNVaultSession& session) {
    return read(session.store(), session.vault());
  }
  static QNResult<QNVaultFolders> read(QNStore& store, const std::shared_ptr<QNProfile>& vault);

  /// By uuid first. Equal titles win over ones that differ in case and accents. Errors: exit code 4
  /// for none, 6 if it may be one that is damaged or missing, 5 for several, which are listed on
  /// standard error.
  [[nodiscard]] QNResult<QNFolderRef> choose(std::string_view name) const;
  /// The same, of those that hold items and folders; exit code 1 for a smart one.
  [[nodiscard]] QNResult<QNFolderRef> chooseOrdinary(std::string_view name) const;
  /// Of smart ones; exit code 1 for any other.
  [[nodiscard]] QNResult<QNFolderRef> chooseSmart(std::string_view name) const;
  /// The folder right in `parent`, or at the top, that a person names by its title, as choose()
  /// does; null if there is none.
  [[nodiscard]] QNResult<QNFolderRef> child(const QNFolderRef& parent,
                                            std::string_view title) const;
  /// The titles from the top to the folder of that uuid, as choose() takes them; nothing if there
  /// is no such folder.
  [[nodiscard]] std::optional<std::string> pathTo(std::string_view uuid) const;
  /// Also one in quarantine, which calls itself an ordinary one.
  [[nodiscard]] bool isSmart(const QNFolder& folder) const;
  /// Depth first, by title.
  [[nodiscard]] std::vector<QNFolderRef> all() const;
  [[nodiscard]] const std::vector<QNFolderRef>& inRowOrder() const { return _report.folders; }

  /// Tells the user of what isn't where or what it was. `done`, or `damaged` if rows are left out.
  [[nodiscard]] QNExit warn() const;

 private:
  explicit QNVaultFolders(QNFolderReport report) : _report(std::move(report)) {}
  // No row is left out.
  [[nodiscard]] bool isWhole() const { return _report.damaged.empty() && !_report.ledgerBroken; }
  QNFolderReport _report;
};

/// Keeps a filter to the folder that the user named, if one was, and to what lies below it if he
/// wants that. Gives what QNVaultFolders::warn() does, for a list that may be short. Errors: as
/// QNVaultFolders::chooseOrdinary() has them.
QNResult<QNExit> chooseFolderOf(QNItemFilter& filter, const QNVaultSession& session,
                                const QNFilterArguments& arguments);

/// What a folder is called, on a terminal.
std::string shownTitle(QNFolder& folder);

}  // namespace quillon
