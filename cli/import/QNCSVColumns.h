#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// Whose export a CSV file is; told by its header alone.
enum class QNCSVFormat { chromium, firefox, safari, bitwarden, generic };
std::string_view nameOfFormat(QNCSVFormat format);

/// Where a column's values go.
enum class QNCSVPlace : std::uint8_t {
  title,
  url,  // several columns may hold addresses; every other place has one column at most
  username,
  password,
  notes,
  oneTimePassword,       // a URL or a bare seed; kept as it is, usable or not
  favorite,              // "1" for a favorite
  kind,                  // "note" for a secure note
  createdMilliseconds,   // since 1970
  lastUsedMilliseconds,  // since 1970
  changedMilliseconds,   // of the password; kept in the notes if it differs from the creation
  formAction,            // the address that the form was sent to
  mark,                  // "0" for nothing; anything else is kept in the notes
  none,                  // kept in the notes
};

/// The header of a CSV file: what each column is called and where it goes.
struct QNCSVColumns {
  struct Column {
    std::string name;  // as in the file, without blanks around it
    QNCSVPlace place = QNCSVPlace::none;
  };
  QNCSVFormat format = QNCSVFormat::generic;
  std::vector<Column> columns;

  /// Names are compared without regard to case, accents, blanks and punctuation. Error 114 if
  /// fewer than two columns are known by name: the file has no header then, and its first line
  /// may be somebody's password, so the message doesn't show it.
  static QNResult<QNCSVColumns> fromHeader(std::span<const std::string_view> fields);
  [[nodiscard]] bool has(QNCSVPlace place) const;
};

}  // namespace quillon
