#include "cli/fields/QNItemEditing.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "cli/fields/QNFieldChoice.h"
#include "cli/fields/QNFieldReading.h"
#include "cli/output/QNShownText.h"
#include "cli/terminal/QNPasswords.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/json/QNJsonEquality.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Done = QNResult<QNDone>;

constexpr std::string_view kNoTitle = "an item needs a title, by which it is found";
constexpr std::string_view kNoDash =
    "\"-\" reads standard input for secrets only; --set-file takes any value from a file";

// What a value goes into: a place of the item's own, or a field.
struct Target {
  std::optional<QNFieldName> own;
  QNChosenField chosen;
  const QNGivenValue* given = nullptr;
  // Where it can come from without a terminal: "--set x=- or --set-file x=FILE".
  std::string instead;

  [[nodiscard]] bool isSecret() const {
    return own ? own == QNFieldName::password : quillon::isSecret(*chosen.field);
  }
  [[nodiscard]] bool isFromInput() const {
    return given->from == QNGivenValue::From::argument && given->text == "-" && isSecret();
  }
};

QNError wrongUsage(std::string_view message) {
  return toolError(QNExit::wrongUsage, message);
}

bool isLogin(const QNItem& item) {
  return dynamic_cast<const QNLogin*>(&item) != nullptr;
}

bool isPasswordItem(const QNItem& item) {
  return dynamic_cast<const QNPassword*>(&item) != nullptr;
}

// The factory knows a seed by its identifier alone.
QNItemFieldRef makeField(std::string_view kind) {
  if (kind == "totp") {
    return QNItemTOTPField::fieldWithIdentifier(std::nullopt);
  }
  return QNItemField::fieldWithType(kind, std::nullopt);
}

class Editing {
 public:
  Editing(QNItem& item, const QNItemEdits& edits)
      : _item(item), _edits(edits), _texts(item.categoryUUID()) {}

  Done run() {
    const Json before(QNItem::jsonFromFieldSections(_item.fieldSections()));
    if (const auto tagged = changeTags(); !tagged) return tagged;
    if (_edits.favorite && *_edits.favorite != _item.isFavorite()) {
      _item.setFaveIndex(*_edits.favorite ? QNItem::newItemFaveIndex() : 0);
    }
    for (const QNFieldAddition& addition : _edits.additions) add(addition);
    for (const QNFieldSetting& setting : _edits.settings) {
      if (const auto found = find(setting); !found) return found;
    }
    for (const std::string& name : _edits.removals) {
      if (const auto found = findRemoval(name); !found) return found;
    }
    if (const auto set = setAll(); !set) return set;
    if (_edits.generate) {
      if (const auto generated = generatePassword(); !generated) return generated;
    }
    if (const auto removed = removeAll(); !removed) return removed;
    const Json now(QNItem::jsonFromFieldSections(_item.fieldSections()));
    if (!equalJson(before, now)) _item.markRowDirty();
    return QNDone{};
  }

 private:
  void add(const QNFieldAddition& addition) {
    QNFieldSectionRef section = sectionNamed(_item, _texts, addition.section);
    if (section == nullptr) {
      section = std::make_shared<QNFieldSection>();
      const bool isNameless = addition.section.empty();
      section->setName(isNameless ? "" : QNFieldSection::uniqueSectionName());
      section->setTitle(addition.section);
      _item.addFieldSection(section);
    }
    const QNItemFieldRef field = makeField(addition.kind);
    field->setTitle(addition.title);
    section->addField(field);
    _targets.push_back({std::nullopt,
                        {section, field, ""},
                        &addition.value,
                        fmt::format("--add-field TITLE:{}=-", addition.kind)});
  }

  Done find(const QNFieldSetting& setting) {
    const auto own = ownPlace(setting.field);
    if (!own) return own.error();
    if (own.value()) {
      _targets.push_back({own.value(), {}, &setting.value, optionsFor(setting.field)});
      return QNDone{};
    }
    auto chosen = chooseField(_item, _texts, setting.field);
    // Without a value, the name may be one by mistake: it isn't repeated.
    const bool isTellable = setting.value.from != QNGivenValue::From::prompt;
    if (!chosen) return isTellable ? within(setting.field, chosen.error()) : chosen.error();
    _targets.push_back(
        {std::nullopt, std::move(chosen).value(), &setting.value, optionsFor(setting.field)});
    return QNDone{};
  }

  static std::string optionsFor(std::string_view name) {
    const std::string shown = shownText(name);
    return fmt::format("--set {}=- or --set-file {}=FILE", shown, shown);
  }

  // Nothing for a name that a field has.
  [[nodiscard]] QNResult<std::optional<QNFieldName>> ownPlace(std::string_view name) const {
    const auto field = quillon::fieldNamed(name);
    if (!field || hasOwnPlaceFor(_item, *field)) return field;
    if (!fieldsNamed(_item, _texts, name).empty()) return std::optional<QNFieldName>();
    return wrongUsage(fmt::format("an item of this kind has no {}", name));
  }

  static QNError within(std::string_view name, const QNError& error) {
    return error.within(shownText(name));
  }

  Done findRemoval(const std::string& name) {
    const auto own = ownPlace(name);
    if (!own) return own.error();
    if (own.value()) {
      if (own.value() == QNFieldName::title) return wrongUsage(kNoTitle);
      _removals.push_back({own.value(), {}, nullptr, ""});
      return QNDone{};
    }
    auto chosen = chooseField(_item, _texts, name);
    if (!chosen) return within(name, chosen.error());
    if (chosen.value().part.empty() && chosen.value().field->isGuarded()) {
      const std::string shown = shownText(name);
      return wrongUsage(
          fmt::format("{}: its category keeps this field; --set {}= empties it", shown, shown));
    }
    _removals.push_back({std::nullopt, std::move(chosen).value(), nullptr, ""});
    return QNDone{};
  }

  Done removeAll() {
    for (const Target& target : _removals) {
      if (target.own == QNFieldName::password) {
        _item.updatePassword(std::nullopt, false, 0);
      } else if (target.own) {
        setOwn(*target.own, "");
      } else if (target.chosen.part.empty()) {
        target.chosen.section->removeField(target.chosen.field);
      } else {
        const auto emptied = readAddressPart(*target.chosen.field, target.chosen.part, "");
        if (!emptied) return emptied;
      }
    }
    return QNDone{};
  }

  // By an equal name, or else by one that differs in case and accents.
  Done removeTag(std::set<std::string>& tags, const std::string& name) const {
    if (tags.erase(name) > 0) return QNDone{};
    const std::string folded = foldedForSearch(name);
    const auto removed =
        std::erase_if(tags, [&](const std::string& tag) { return foldedForSearch(tag) == folded; });
    if (removed > 0) return QNDone{};
    return toolError(QNExit::notFound, "the item has no such tag").within(shownText(name));
  }

  Done changeTags() {
    std::set<std::string> tags = _item.tags();
    for (const std::string& name : _edits.tagsToRemove) {
      if (const auto removed = removeTag(tags, name); !removed) return removed;
    }
    tags.insert(_edits.tags.begin(), _edits.tags.end());
    _item.setTags(tags);
    return QNDone{};
  }

  Done setAll() {
    const auto fromInput = std::count_if(_targets.begin(), _targets.end(),
                                         [](const Target& each) { return each.isFromInput(); });
    for (const Target& target : _targets) {
      const std::string title = titleOf(target);
      const auto value = valueFor(target, title, fromInput > 1);
      if (!value) return value.error().within(shownText(title));
      // Into the item's details, which wipe themselves.
      const auto set = put(target, value.value().reveal());
      if (!set) return set.error().within(shownText(title));
    }
    return QNDone{};
  }

  [[nodiscard]] std::string titleOf(const Target& target) const {
    if (target.own == QNFieldName::password) return QNLocalizedString("Password");
    if (target.own) return std::string(nameOfField(*target.own));
    return _texts.titleOf(*target.chosen.field);
  }

  static QNResult<QNSecret> valueFor(const Target& target, std::string_view title,
                                     bool isOneOfSeveralInputs) {
    const QNGivenValue& given = *target.given;
    if (given.from == QNGivenValue::From::file) return readItemSecretFrom(given.file);
    if (given.from == QNGivenValue::From::prompt) {
      if (!target.isSecret()) return wrongUsage("give a value: FIELD=VALUE");
      const bool isOwn = target.own.has_value();
      return readItemSecret(
          QNSecretSource::prompt,
          isOwn ? "Password of the item: " : fmt::format("{}: ", shownText(title)),
          "it with " + target.instead);
    }
    if (target.isFromInput()) {
      return readItemSecret(
          isOneOfSeveralInputs ? QNSecretSource::nextLine : QNSecretSource::restOfInput, "", "");
    }
    if (target.isSecret() && !(given.text.empty() && !target.own)) {
      return wrongUsage(kNoSecretArguments);
    }
    // Who means standard input must not be left with a dash in the place of what was there.
    if (given.text == "-") return wrongUsage(kNoDash);
    return QNSecret(given.text);
  }

  Done put(const Target& target, std::string_view value) {
    if (target.own == QNFieldName::password) {
      _item.updatePassword(value, false, 0);
      return QNDone{};
    }
    if (target.own == QNFieldName::title && isBlankText(value)) return wrongUsage(kNoTitle);
    if (target.own) {
      setOwn(*target.own, value);
      return QNDone{};
    }
    const QNChosenField& chosen = target.chosen;
    return chosen.part.empty() ? readValue(*chosen.field, _texts, value)
                               : readAddressPart(*chosen.field, chosen.part, value);
  }

  // An empty value takes it away.
  void setOwn(QNFieldName field, std::string_view text) {
    const auto value = text.empty() ? std::nullopt : std::optional<std::string_view>(text);
    switch (field) {
      case QNFieldName::title:
        return _item.setTitle(value);
      case QNFieldName::username:
        return _item.setUsername(value);
      case QNFieldName::url:
        return _item.setURLString(value);
      case QNFieldName::notes:
        return _item.setNotesPlain(value);
      case QNFieldName::password:
        return;  // it never comes as a plain value
    }
  }

  Done generatePassword() {
    const auto made = makeItemPassword(QNItemPassword::generate);
    if (!made) return made.error();
    if (hasOwnPlaceFor(_item, QNFieldName::password)) {
      setItemPassword(_item, made.value());
      return QNDone{};
    }
    const auto field = _item.findFieldWithIdentifier("password");
    auto* const text = dynamic_cast<QNItemStringField*>(field.get());
    if (text == nullptr) return wrongUsage("an item of this kind has no password");
    text->setValue(made.value().password.reveal());  // into its details, which wipe themselves
    return QNDone{};
  }

  QNItem& _item;
  const QNItemEdits& _edits;
  QNFieldTexts _texts;
  std::vector<Target> _targets;
  std::vector<Target> _removals;
};

}  // namespace

bool hasOwnPlaceFor(QNItem& item, QNFieldName field) {
  switch (field) {
    case QNFieldName::title:
    case QNFieldName::notes:
      return true;
    case QNFieldName::username:
      return isLogin(item);
    case QNFieldName::password:
      return isLogin(item) || isPasswordItem(item);
    case QNFieldName::url:
      return isLogin(item) || item.findFieldWithIdentifier(nameOfField(field)) == nullptr;
  }
  return false;
}

QNResult<QNDone> editItem(QNItem& item, const QNItemEdits& edits) {
  return Editing(item, edits).run();
}

}  // namespace quillon
