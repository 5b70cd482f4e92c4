#include <fmt/format.h>

#include <ctime>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/output/QNItemJson.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"

namespace quillon {
namespace {

constexpr std::string_view kDots = "••••••••••";  // always as many: the length is a secret, too

std::string timeText(std::uint64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  if (seconds == 0 || localtime_r(&time, &local) == nullptr) return "";
  char text[64];
  return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local));
}

// Lines of "Name:     value"; an absent value has none.
class Sheet {
 public:
  explicit Sheet(QNOutput& out) : _out(out) {}

  void add(std::string_view name, std::optional<std::string_view> value) {
    if (!value || value->empty()) return;
    _out.text(padded(fmt::format("{}:", name), kNameWidth));
    _out.line(indented(shownLines(*value)));
  }
  void addSecret(std::string_view name, const std::optional<QNSecret>& value, bool reveal) {
    if (value) add(name, reveal ? value->reveal() : kDots);  // the user asked for it
  }

 private:
  static constexpr std::size_t kNameWidth = 12;
  // Lines of notes stand below each other.
  static std::string indented(const std::string& lines) {
    std::string text;
    for (const char c : lines) {
      text += c;
      if (c == '\n') text.append(kNameWidth, ' ');
    }
    return text;
  }
  QNOutput& _out;
};

void addFields(Sheet& sheet, QNItem& item, bool reveal) {
  auto* const login = dynamic_cast<QNLogin*>(&item);
  if (login == nullptr) return;
  for (const auto& field : login->loginFields().fields()) {
    if (field->designatedAsUsername() || field->designatedAsPassword()) continue;
    const bool shown = reveal || !isHidden(*field);
    sheet.addSecret(shownText(field->name().value_or("Field")), field->value(), shown);
  }
}

void addStrength(Sheet& sheet, QNItem& item) {
  if (item.shouldShowPasswordStrength()) {
    sheet.add("Strength", fmt::format("{} of 100", item.passwordStrength()));
  }
}

void addTags(Sheet& sheet, QNItem& item) {
  const auto tags = item.tags();
  if (!tags.empty()) sheet.add("Tags", fmt::format("{}", fmt::join(tags, ", ")));
}

QNCommandResult printSheet(QNItem& item, bool reveal) {
  QNOutput out;
  Sheet sheet(out);
  sheet.add("Title", item.title());
  sheet.add("Username", item.username());
  sheet.addSecret("Password", item.password(), reveal);
  for (const auto& url : item.URLs()) sheet.add("URL", url->URLString());
  addFields(sheet, item, reveal);
  sheet.add("Notes", item.notesPlain());
  addTags(sheet, item);
  addStrength(sheet, item);
  sheet.add("Created", timeText(item.createdAt()));
  sheet.add("Changed", timeText(item.updatedAt()));
  sheet.add("Last used", timeText(item.lastUsedTimestamp()));
  if (item.isFavorite()) sheet.add("Favorite", "yes");
  if (item.trashed()) sheet.add("In trash", "yes");
  sheet.add("UUID", *item.uuid());
  return out.finish();
}

std::optional<QNSecret> secretFrom(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return QNSecret(*text);
}

std::optional<QNSecret> valueOf(QNItem& item, QNFieldName field) {
  switch (field) {
    case QNFieldName::title:
      return secretFrom(item.title());
    case QNFieldName::username:
      return secretFrom(item.username());
    case QNFieldName::password:
      return item.password();
    case QNFieldName::url:
      return secretFrom(item.URLString());
    case QNFieldName::notes:
      return secretFrom(item.notesPlain());
  }
  return std::nullopt;
}

// The value itself for a pipe or file; a terminal never gets what it would obey.
QNCommandResult printField(QNItem& item, QNFieldName field) {
  const auto value = valueOf(item, field);
  if (!value || value->empty()) {
    return toolError(QNExit::notFound, fmt::format("the item has no {}", nameOfField(field)));
  }
  QNOutput out;
  const std::string_view text = value->reveal();  // the user asked for it
  if (out.isTerminal()) {
    out.line(shownLines(text));
  } else {
    out.line(text);
  }
  return out.finish();
}

QNRevealed revealedBy(const QNShowArguments& arguments) {
  if (arguments.reveal) return QNRevealed::everything;
  return arguments.field == QNFieldName::password ? QNRevealed::password : QNRevealed::nothing;
}

}  // namespace

QNCommandResult runCommand(Global global, const QNShowArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  if (global.json) return printJson(shownJson(*item.value(), revealedBy(arguments)));
  if (arguments.field) return printField(*item.value(), *arguments.field);
  return printSheet(*item.value(), arguments.reveal);
}

}  // namespace quillon
