#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "cli/import/QNCSVColumns.h"
#include "cli/import/QNCSVReader.h"
#include "quillon/items/QNItem.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {

/// One record of a CSV file, its values sorted by where they go. All texts are views into the
/// reader's.
class QNCSVRow final {
 public:
  /// A value that has no place in an item. `column` counts from 0, and may be one behind the
  /// header's last.
  struct Kept {
    std::size_t column = 0;
    std::string_view value;
  };

  QNCSVRow(const QNCSVColumns& header, QNCSVReader::Fields fields);

  /// Is there nothing to make an item of?
  [[nodiscard]] bool isEmpty() const;
  [[nodiscard]] bool isNote() const { return _isNote; }
  /// The values that the item keeps in its notes, as "COLUMN: VALUE" lines.
  [[nodiscard]] const std::vector<Kept>& kept() const { return _kept; }
  /// An unsaved item of the vault: a login, or a secure note. Its title is the row's, or else the
  /// address's host, the address or the user name.
  [[nodiscard]] std::shared_ptr<QNItem> makeItem(const std::shared_ptr<QNProfile>& vault) const;

  /// What a column is called; "Column 7" behind the header's last.
  static std::string nameOfColumn(const QNCSVColumns& header, std::size_t column);

 private:
  void take(std::size_t column, std::string_view value);
  void takeAddresses(std::string_view value);
  void keepWhatANoteHasNot(QNCSVReader::Fields fields);
  [[nodiscard]] QNCSVPlace placeOf(std::size_t column) const;
  [[nodiscard]] std::optional<std::string> bestTitle() const;
  [[nodiscard]] QNSecret allNotes() const;

  const QNCSVColumns& _header;
  std::string_view _title, _username, _password, _notes, _formAction, _oneTimePassword;
  std::vector<std::string_view> _urls;
  std::optional<std::uint64_t> _created, _lastUsed;  // seconds
  bool _isFavorite = false;
  bool _isNote = false;
  std::vector<Kept> _kept;
};

/// The addresses of a value that may hold several, parted by commas. A comma inside the path or
/// query of an address isn't one of those, unless a scheme follows it.
std::vector<std::string_view> addressesIn(std::string_view value);

}  // namespace quillon
