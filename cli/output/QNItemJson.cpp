#include "cli/output/QNItemJson.h"

#include "cli/fields/QNCategoryNames.h"
#include "cli/fields/QNFieldTexts.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"

namespace quillon {
namespace {

void setText(JsonObject& object, std::string_view key, const std::optional<std::string>& text) {
  if (text) {
    setJsonText(object, key, *text);
  } else {
    object[key] = nullptr;
  }
}

void addText(JsonArray& array, std::string_view text) {
  array.emplace_back(boost::json::string_kind).get_string().assign(text);
}

// The inputs of the form that aren't the user name or the password.
JsonArray formFieldsOf(QNItem& item, bool revealed) {
  JsonArray fields(jsonStorage());
  auto* const login = dynamic_cast<QNLogin*>(&item);
  if (login == nullptr) return fields;
  for (const auto& field : login->loginFields().fields()) {
    if (field->designatedAsUsername() || field->designatedAsPassword()) continue;
    JsonObject& shown = fields.emplace_back(boost::json::object_kind).get_object();
    setText(shown, "name", field->name());
    setText(shown, "type", field->type());
    if (isHidden(*field) && !revealed) continue;
    const auto value = field->value();
    if (value) setJsonText(shown, "value", value->reveal());  // a value that isn't concealed
  }
  return fields;
}

// As `--set` takes it; a kind that isn't known as it is stored.
void setValue(JsonObject& object, const QNItemField& field, const QNFieldTexts& texts) {
  const auto stored = isBlank(field) ? std::nullopt : field.jsonValue();
  if (!stored) {
    object["value"] = nullptr;
  } else if (field.isAddressField() || field.isUnknownField()) {
    object["value"] = *stored;
  } else {
    setJsonText(object, "value", texts.plainValueOf(field).reveal());  // shown on purpose
  }
}

JsonObject jsonOf(const QNItemField& field, const QNFieldTexts& texts, bool revealed) {
  JsonObject object(jsonStorage());
  setJsonText(object, "id", field.identifier().value_or(""));
  setJsonText(object, "title", texts.titleOf(field));
  setJsonText(object, "kind", kindOf(field));
  if (isSecret(field) && !revealed) {
    setJsonText(object, "display", isBlank(field) ? "" : kDots);
    return object;
  }
  setValue(object, field, texts);
  const bool hasText = !isBlank(field);
  setJsonText(object, "display", hasText ? texts.shownValueOf(field).reveal() : "");
  return object;
}

JsonArray sectionsOf(QNItem& item, bool revealed, const QNItemField* revealedField) {
  JsonArray sections(jsonStorage());
  const QNFieldTexts texts(item.categoryUUID());
  for (const auto& section : item.fieldSections()) {
    JsonObject& shown = sections.emplace_back(boost::json::object_kind).get_object();
    setJsonText(shown, "name", section->name().value_or(""));
    setJsonText(shown, "title", texts.titleOf(*section));
    JsonArray& fields = shown["fields"].emplace_array();
    for (const auto& field : section->fields()) {
      fields.emplace_back(jsonOf(*field, texts, revealed || field.get() == revealedField));
    }
  }
  return sections;
}

}  // namespace

bool isHidden(const QNLoginField& field) {
  const auto designation = field.designation();
  return field.type() == QNLoginFieldTypePassword || field.name() == "password" ||
         designation == QNLoginFieldDesignationPassword ||
         designation == QNFillObjectDesignationNewPassword;
}

JsonObject listedJson(QNItem& item) {
  JsonObject object(jsonStorage());
  object.reserve(10);
  setJsonText(object, "uuid", *item.uuid());
  setJsonText(object, "title", item.title());
  setText(object, "subtitle", item.additionalInformation());
  setText(object, "category", item.categoryUUID());
  setJsonText(object, "categoryTitle", titleOfCategory(item.categoryUUID().value_or("")));
  JsonArray& urls = object["urls"].emplace_array();
  if (const auto url = item.overviewTextForKey(kOverviewURLString)) addText(urls, *url);
  object["favorite"] = item.isFavorite();
  object["trashed"] = item.trashed();
  object["createdAt"] = item.createdAt();
  object["updatedAt"] = item.updatedAt();
  return object;
}

JsonObject shownJson(QNItem& item, QNRevealed revealed, const QNItemField* revealedField) {
  JsonObject object = listedJson(item);
  JsonArray& urls = object["urls"].get_array();
  urls.clear();
  for (const auto& url : item.URLs()) addText(urls, url->URLString().value_or(""));
  setText(object, "username", item.username());
  if (revealed != QNRevealed::nothing) {
    const auto password = item.password();
    object["password"] = nullptr;
    if (password) setJsonText(object, "password", password->reveal());  // the user asked for it
  }
  setText(object, "notes", item.notesPlain());
  JsonArray& tags = object["tags"].emplace_array();
  for (const std::string& tag : item.tags()) addText(tags, tag);
  setText(object, "folder", item.folderUUID());
  const bool everything = revealed == QNRevealed::everything;
  object["formFields"] = formFieldsOf(item, everything);
  object["fields"] = sectionsOf(item, everything, revealedField);
  return object;
}

}  // namespace quillon
