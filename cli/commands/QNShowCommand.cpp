#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNItemChoice.h"
#include "cli/commands/QNVaultFolders.h"
#include "cli/fields/QNCategoryNames.h"
#include "cli/fields/QNFieldChoice.h"
#include "cli/fields/QNFieldValue.h"
#include "cli/fields/QNItemEditing.h"
#include "cli/output/QNItemJson.h"
#include "cli/output/QNLabels.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "cli/output/QNTimeText.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

constexpr std::size_t kNameWidth = 12;

// Lines of "Name:     value"; an absent value has none.
class Sheet {
 public:
  Sheet(QNOutput& out, std::size_t width, std::string_view margin = "")
      : _out(out), _width(width), _margin(margin) {}

  void add(std::string_view name, std::optional<std::string_view> value) {
    if (value && !value->empty()) addShown(name, shownLines(*value));
  }
  // What the language itself writes, with its marks of direction.
  void addOwn(std::string_view name, std::string_view value) {
    if (!value.empty()) addShown(name, shownOwnLines(value));
  }
  void addSecret(std::string_view name, const std::optional<QNSecret>& value, bool reveal) {
    if (value) add(name, reveal ? value->reveal() : kDots);  // the user asked for it
  }

 private:
  void addShown(std::string_view name, const std::string& lines) {
    _out.text(_margin);
    _out.text(padded(fmt::format("{}:", name), _width));
    _out.line(indented(lines));
  }
  // Lines of notes stand below each other.
  [[nodiscard]] std::string indented(const std::string& lines) const {
    std::string text;
    for (const char c : lines) {
      text += c;
      if (c == '\n') text.append(_margin.size() + _width, ' ');
    }
    return text;
  }
  QNOutput& _out;
  std::size_t _width;
  std::string_view _margin;
};

// Those that have a value, as wide as the item's own at least. A section with a title stands below
// it, a little to the right.
void addSection(QNOutput& out, const QNFieldSection& section, const QNFieldTexts& texts,
                std::size_t width, bool reveal) {
  std::vector<QNItemFieldRef> fields = section.fields();
  fields.erase(std::remove_if(fields.begin(), fields.end(),
                              [](const QNItemFieldRef& field) { return isBlank(*field); }),
               fields.end());
  if (fields.empty()) return;
  const std::string title = shownText(texts.titleOf(section));
  for (const auto& field : fields) {
    width = std::max(width, shownWidth(shownText(texts.titleOf(*field))) + 2);
  }
  if (!title.empty()) out.line(title);
  Sheet sheet(out, width, title.empty() ? "" : "  ");
  for (const auto& field : fields) {
    const std::string name = shownText(texts.titleOf(*field));
    if (isWrittenByUs(*field)) {
      sheet.addOwn(name, texts.shownValueOf(*field).reveal());  // no secret
      continue;
    }
    sheet.addSecret(name, texts.shownValueOf(*field), reveal || !isSecret(*field));
  }
}

void addSections(QNOutput& out, QNItem& item, std::size_t width, bool reveal) {
  const QNFieldTexts texts(item.categoryUUID());
  for (const auto& section : item.fieldSections()) addSection(out, *section, texts, width, reveal);
}

void addFormFields(Sheet& sheet, QNItem& item, bool reveal) {
  auto* const login = dynamic_cast<QNLogin*>(&item);
  if (login == nullptr) return;
  for (const auto& field : login->loginFields().fields()) {
    if (field->designatedAsUsername() || field->designatedAsPassword()) continue;
    const bool shown = reveal || !isHidden(*field);
    const std::string name(field->name().value_or(QNLocalizedString("Field")));
    sheet.addSecret(shownText(name), field->value(), shown);
  }
}

void addStrength(Sheet& sheet, QNItem& item) {
  if (item.shouldShowPasswordStrength()) {
    sheet.add(QNLocalizedString("Strength"),
              localizedFormat("%jd of 100", std::to_string(item.passwordStrength())));
  }
}

void addTags(Sheet& sheet, QNItem& item) {
  const auto tags = item.tags();
  if (!tags.empty()) sheet.add(QNLocalizedString("Tags"), fmt::format("{}", fmt::join(tags, ", ")));
}

// What stands before the values of the item itself, in the user's language.
constexpr std::array<std::string_view, 15> kLabels = {
    "Title", "Type",    "Username", "Password",  "URL",      "Notes",    "Tags",    "Folder",
    "Field", "Created", "Changed",  "Last used", "Favorite", "In trash", "Strength"};

// The titles from the top to the folder that the item is in, if it is in one that is there.
QNResult<std::optional<std::string>> folderOf(const QNVaultSession& session, const QNItem& item) {
  const auto uuid = item.folderUUID();
  if (!uuid) return std::optional<std::string>();
  const auto tree = QNVaultFolders::read(session);
  if (!tree) return tree.error();
  return tree.value().pathTo(*uuid);
}

QNCommandResult printSheet(QNItem& item, const std::optional<std::string>& folder, bool reveal) {
  QNOutput out;
  const std::size_t width = QNLabels(kLabels, kNameWidth).width();
  Sheet sheet(out, width);
  const auto label = [](std::string_view key) { return QNLocalizedString(key); };
  sheet.add(label("Title"), item.title());
  sheet.add(label("Type"), titleOfCategory(item.categoryUUID().value_or("")));
  sheet.add(label("Username"), item.username());
  if (hasOwnPlaceFor(item, QNFieldName::password)) {
    sheet.addSecret(label("Password"), item.password(), reveal);
  }
  for (const auto& url : item.URLs()) sheet.add(label("URL"), url->URLString());
  addFormFields(sheet, item, reveal);
  addSections(out, item, width, reveal);
  sheet.add(label("Notes"), item.notesPlain());
  addTags(sheet, item);
  sheet.add(label("Folder"), folder);
  addStrength(sheet, item);
  sheet.add(label("Created"), timeText(item.createdAt()));
  sheet.add(label("Changed"), timeText(item.updatedAt()));
  sheet.add(label("Last used"), timeText(item.lastUsedTimestamp()));
  if (item.isFavorite()) sheet.add(label("Favorite"), label("yes"));
  if (item.trashed()) sheet.add(label("In trash"), label("yes"));
  sheet.add("UUID", *item.uuid());
  return out.finish();
}

QNCommandResult showField(Global global, QNItem& item, const QNShowArguments& arguments) {
  const std::string& name = *arguments.field;
  if (!global.json) {
    const auto value = valueNamed(item, name);
    if (!value) return value.error();
    return printValue(value.value().reveal());  // the user asked for it
  }
  const QNFieldTexts texts(item.categoryUUID());
  if (const auto own = ownFieldNamed(item, texts, name)) {
    return printJson(shownJson(item, arguments.reveal               ? QNRevealed::everything
                                     : own == QNFieldName::password ? QNRevealed::password
                                                                    : QNRevealed::nothing));
  }
  const auto chosen = chooseField(item, texts, name);
  if (!chosen) return chosen.error();
  return printJson(shownJson(item, arguments.reveal ? QNRevealed::everything : QNRevealed::nothing,
                             chosen.value().field.get()));
}

QNCommandResult showItem(Global global, const QNVaultSession& session, QNItem& item, bool reveal) {
  if (global.json) {
    return printJson(shownJson(item, reveal ? QNRevealed::everything : QNRevealed::nothing));
  }
  const auto folder = folderOf(session, item);
  if (!folder) return folder.error();
  return printSheet(item, folder.value(), reveal);
}

}  // namespace

QNCommandResult runCommand(Global global, const QNShowArguments& arguments) {
  const auto session = QNVaultSession::open(global, QNStore::Access::readOnly);
  if (!session) return session.error();
  const auto item = chooseItem(session.value(), arguments.item);
  if (!item) return item.error();
  return arguments.field ? showField(global, *item.value(), arguments)
                         : showItem(global, session.value(), *item.value(), arguments.reveal);
}

}  // namespace quillon
