#pragma once

#include <string_view>

#include "cli/arguments/QNArguments.h"
#include "quillon/items/QNItem.h"
#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNSecret.h"

namespace quillon {

/// The password from where `source` says; `prompt` is what a terminal shows.
QNResult<QNSecret> readPassword(const QNPasswordSource& source, std::string_view prompt);
/// A new password for the vault: asked twice on a terminal. Error with exit code 1 if the two
/// differ, 2 if it is empty or not UTF-8, which could not be typed on another system.
QNResult<QNSecret> readNewPassword(const QNPasswordSource& source);

/// A secret of an item: asked twice on the terminal, or from standard input, where the vault's own
/// password was read before. Error with exit code 1 if the two answers differ, 2 if it isn't
/// UTF-8. `instead` tells whoever has no terminal what to give: "the value with --option".
enum class QNSecretSource { prompt, nextLine, restOfInput };
QNResult<QNSecret> readItemSecret(QNSecretSource from, std::string_view prompt,
                                  std::string_view instead);
/// The same from a file, without one newline at its end.
QNResult<QNSecret> readItemSecretFrom(const std::filesystem::path& file);

/// The password of an item; `bitsEntropy` is set if it was generated.
struct QNMadePassword {
  QNSecret password;
  std::optional<double> bitsEntropy;
};
/// `from` isn't none. The vault's own password must have been read before.
QNResult<QNMadePassword> makeItemPassword(QNItemPassword from);
/// Gives it to an item of a kind that has a password.
void setItemPassword(QNItem& item, const QNMadePassword& made);

}  // namespace quillon
