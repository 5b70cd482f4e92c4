#include "cli/QNToolError.h"

#include <fmt/format.h>

#include <system_error>

#include "store/QNStoreError.h"

namespace quillon {
namespace {

QNExit exitForStore(QNStoreErrorCode code) {
  switch (code) {
    case QNStoreErrorCode::notFound:
      return QNExit::notFound;
    case QNStoreErrorCode::notAStore:
    case QNStoreErrorCode::newerSchema:
    case QNStoreErrorCode::damaged:
    case QNStoreErrorCode::unreadableItem:
      return QNExit::damaged;
    case QNStoreErrorCode::diskFull:
    case QNStoreErrorCode::notWritable:
    case QNStoreErrorCode::inputOutput:
      return QNExit::fileError;
    case QNStoreErrorCode::exists:
    case QNStoreErrorCode::busy:
    case QNStoreErrorCode::lostRace:
    case QNStoreErrorCode::locked:
    case QNStoreErrorCode::sameFile:
    case QNStoreErrorCode::misplacedFolder:
      return QNExit::failed;
  }
  return QNExit::failed;
}

}  // namespace

QNError toolError(QNExit exit, std::string_view message) {
  return {std::string(QNToolErrorDomain), static_cast<std::int64_t>(exit), std::string(message)};
}

QNError fileError(const std::filesystem::path& file, int errorNumber) {
  return toolError(QNExit::fileError, fmt::format("{}: {}", file.string(),
                                                  std::generic_category().message(errorNumber)));
}

QNExit exitFor(const QNError& error) {
  if (error.domain == QNToolErrorDomain) return static_cast<QNExit>(error.code);
  if (error.domain != QNStoreErrorDomain) return QNExit::failed;
  return exitForStore(static_cast<QNStoreErrorCode>(error.code));
}

}  // namespace quillon
