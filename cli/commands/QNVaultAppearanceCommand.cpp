// vault icon and vault color: how a vault looks.

#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/output/QNColorText.h"
#include "cli/output/QNNewFile.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNInput.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

constexpr std::size_t kMaxPictureBytes = std::size_t{64} << 20;

JsonObject iconJson(const QNProfile& vault) {
  const auto icon = vault.iconData();
  return {{"vault", vault.profileName().value_or("")},
          {"bytes", icon ? Json(icon->size()) : Json()}};
}

JsonObject colorJson(const QNProfile& vault) {
  const auto color = vault.profileColor();
  return {{"vault", vault.profileName().value_or("")},
          {"color", color ? Json(textOfColor(*color)) : Json()}};
}

// The vault scales and encodes it; why it can't stands in its log.
QNResult<QNDone> setIcon(QNProfile& vault, const std::filesystem::path& file) {
  const auto content = readFile(file, kMaxPictureBytes);
  if (!content) return content.error();
  const auto image = QNImage::imageWithData(content.value());
  const std::string where = shownText(file.string());
  if (image == nullptr) {
    return toolError(QNExit::failed, fmt::format("{}: no picture that can be read; PNG, JPEG "
                                                 "and SVG of plain shapes can",
                                                 where));
  }
  vault.setIconData(std::nullopt);
  vault.setCustomIcon(image);
  if (vault.iconData()) return QNDone{};
  return toolError(QNExit::failed,
                   fmt::format("{}: the picture can't be the icon of a vault", where));
}

QNResult<QNDone> saveIcon(const QNProfile& vault, const std::filesystem::path& file) {
  const auto icon = vault.iconData();
  if (!icon) return toolError(QNExit::notFound, "the vault has no icon");
  return writeNewFile(file, *icon);
}

QNResult<QNDone> changeIcon(const QNVaultSession& session, const QNVaultIconArguments& arguments) {
  QNProfile& vault = *session.vault();
  if (arguments.clear) {
    vault.setCustomIcon(nullptr);
  } else if (const auto set = setIcon(vault, arguments.set); !set) {
    return set;
  }
  return session.store().saveVault(vault);
}

}  // namespace

QNCommandResult runCommand(Global global, const QNVaultIconArguments& arguments) {
  const bool changes = arguments.clear || !arguments.set.empty();
  const auto session = QNVaultSession::open(
      global, changes ? QNStore::Access::readWrite : QNStore::Access::readOnly);
  if (!session) return session.error();
  const QNProfile& vault = *session.value().vault();
  QNResult<QNDone> done = QNDone{};
  if (changes) done = changeIcon(session.value(), arguments);
  if (!arguments.save.empty()) done = saveIcon(vault, arguments.save);
  if (!done) return done.error();
  if (global.json) return printJson(iconJson(vault));
  if (changes || !arguments.save.empty()) return QNExit::done;
  const auto icon = vault.iconData();
  QNOutput out;
  out.line(icon ? localizedFormat("%jd bytes", std::to_string(icon->size()))
                : QNLocalizedString("no icon"));
  return out.finish();
}

QNCommandResult runCommand(Global global, const QNVaultColorArguments& arguments) {
  const auto color = arguments.set ? colorFromText(*arguments.set) : std::nullopt;
  if (arguments.set && !color) {
    return toolError(QNExit::wrongUsage, "a colour is told as #RRGGBB, six hexadecimal digits");
  }
  const bool changes = arguments.clear || arguments.set;
  const auto session = QNVaultSession::open(
      global, changes ? QNStore::Access::readWrite : QNStore::Access::readOnly);
  if (!session) return session.error();
  QNProfile& vault = *session.value().vault();
  if (changes) {
    vault.setProfileColor(color);
    const auto saved = session.value().store().saveVault(vault);
    if (!saved) return saved.error();
  }
  if (global.json) return printJson(colorJson(vault));
  if (changes) return QNExit::done;
  QNOutput out;
  out.line(vault.profileColor() ? textOfColor(*vault.profileColor())
                                : QNLocalizedString("no colour"));
  return out.finish();
}

}  // namespace quillon
