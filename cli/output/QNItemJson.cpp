#include "cli/output/QNItemJson.h"

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
JsonArray fieldsOf(QNItem& item, bool revealed) {
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

}  // namespace

bool isHidden(const QNLoginField& field) {
  const auto designation = field.designation();
  return field.type() == QNLoginFieldTypePassword || field.name() == "password" ||
         designation == QNLoginFieldDesignationPassword ||
         designation == QNFillObjectDesignationNewPassword;
}

JsonObject listedJson(QNItem& item) {
  JsonObject object(jsonStorage());
  object.reserve(9);
  setJsonText(object, "uuid", *item.uuid());
  setJsonText(object, "title", item.title());
  setText(object, "subtitle", item.additionalInformation());
  setText(object, "category", item.categoryUUID());
  JsonArray& urls = object["urls"].emplace_array();
  if (const auto url = item.overviewTextForKey(kOverviewURLString)) addText(urls, *url);
  object["favorite"] = item.isFavorite();
  object["trashed"] = item.trashed();
  object["createdAt"] = item.createdAt();
  object["updatedAt"] = item.updatedAt();
  return object;
}

JsonObject shownJson(QNItem& item, QNRevealed revealed) {
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
  object["fields"] = fieldsOf(item, revealed == QNRevealed::everything);
  return object;
}

}  // namespace quillon
