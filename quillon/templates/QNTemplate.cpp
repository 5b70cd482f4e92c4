// The definition of a template, a JSON object. Only "contents" is needed; what is of another type
// reads as missing.
//
//   uuid              text    the category, three characters
//   localized         text    "yes": its strings are translated
//   localizedStrings  object  the translations themselves, key to text; then no file is read
//   hidden            text    "yes": not offered for new items
//   deprecated        text    "yes": retired
//   icons             object  "list", "detail", "source": icon names
//   subtitle          text    the identifier of the field that gives an item's subtitle
//   contents          list    sections: "set" (name), "title", "fields"
//
// A field of "fields": "type", "name" (its identifier), "title", "attributes" and "inputTraits"
// (objects), "menuitems" (list of texts).

#include "quillon/templates/QNTemplate.h"

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemField.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNFormat.h"

namespace quillon {
namespace {

// Nothing else counts: neither true nor "YES".
bool saysYes(const JsonObject& definition, std::string_view key) {
  return mr_validStringValueForKey(definition, key) == "yes";
}

const JsonObject* objectOf(const JsonObject& object, std::string_view key) {
  const Json* const found = mr_objectForKey(object, key, JsonKind::object);
  return found == nullptr ? nullptr : &found->get_object();
}

// The objects in the list of that name, in order.
template <class Visit>
void forEachObject(const JsonObject& in, std::string_view key, const Visit& visit) {
  const Json* const list = mr_objectForKey(in, key, JsonKind::array);
  if (list == nullptr) return;
  for (const Json& element : list->get_array()) {
    if (const auto* const object = element.if_object()) visit(*object);
  }
}

}  // namespace

// A definition is no secret, and lies in ordinary memory.
QNTemplate::QNTemplate(const JsonObject* initWithDefinition) {
  if (initWithDefinition == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, "QNTemplate",
                                       "Template definition should not be nil");
    return;
  }
  _definition = JsonObject(*initWithDefinition, boost::json::storage_ptr());
  _localized =
      saysYes(_definition, "localized") || objectOf(_definition, "localizedStrings") != nullptr;
  _deprecated = saysYes(_definition, "deprecated");
  _hidden = saysYes(_definition, "hidden");
  if (const JsonObject* const icons = objectOf(_definition, "icons")) {
    _listIconName = ownedStringForKey(*icons, "list");
    _detailIconName = ownedStringForKey(*icons, "detail");
    _sourceIconName = ownedStringForKey(*icons, "source");
  }
  _subtitleFieldName = ownedStringForKey(_definition, "subtitle");
}

QNTemplate::QNTemplate(const JsonObject* initWithDefinition, const JsonObject* h9TemplateDictionary)
    : QNTemplate(initWithDefinition) {
  _h9TemplateProperties = std::make_shared<const H9TemplateProperties>(h9TemplateDictionary);
}

std::optional<std::string> QNTemplate::uuid() const {
  return ownedStringForKey(_definition, "uuid");
}

std::string QNTemplate::description() const {
  return formatted("<QNTemplate-{}-{}: {}>", uuid().value_or("(null)"),
                   _templateURL ? _templateURL->string() : "(null)",
                   static_cast<const void*>(this));
}

std::optional<std::vector<std::shared_ptr<QNFieldSection>>> QNTemplate::instantiateFieldSections()
    const {
  if (mr_objectForKey(_definition, "contents", JsonKind::array) == nullptr) {
    log_error(DEBUG_DATABASE, "Invalid template definition, missing contents: {}",
              mr_JSONStringWithError(_definition).value_or("(null)"));
    return std::nullopt;
  }
  Strings strings(*this);
  std::vector<std::shared_ptr<QNFieldSection>> sections;
  forEachObject(_definition, "contents", [&](const JsonObject& definition) {
    sections.push_back(instantiateSection(definition, strings));
  });
  return sections;
}

std::shared_ptr<QNFieldSection> QNTemplate::instantiateSection(const JsonObject& definition,
                                                               Strings& strings) const {
  auto section = std::make_shared<QNFieldSection>();
  const auto name = mr_validStringValueForKey(definition, "set");
  section->setName(name);
  if (!name || name->empty()) {
    section->setTitle("");  // a section without a name can't have a title
  } else if (const auto title = mr_validStringValueForKey(definition, "title");
             title && !title->empty()) {
    section->setTitle(title);
  } else {
    section->setTitle(strings.ofKey("set." + std::string(*name)));
  }
  forEachObject(definition, "fields", [&](const JsonObject& field) {
    if (auto made = instantiateField(field, strings)) section->addField(made);
  });
  return section;
}

std::shared_ptr<QNItemField> QNTemplate::instantiateFieldForDefinition(
    const JsonObject& definition) const {
  Strings strings(*this);
  return instantiateField(definition, strings);
}

std::shared_ptr<QNItemField> QNTemplate::instantiateField(const JsonObject& definition,
                                                          Strings& strings) const {
  const auto type = mr_validStringValueForKey(definition, "type");
  const auto name = mr_validStringValueForKey(definition, "name");
  auto field = QNItemField::fieldWithType(type, name);
  if (field == nullptr) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, description(),
                                       "Invalid template field type: '{}'",
                                       type.value_or("(null)"));
    return nullptr;
  }
  const auto title = mr_validStringValueForKey(definition, "title");
  if (title && !title->empty()) {
    field->setTitle(title);
  } else {
    const std::string_view identifier = name ? *name : field->identifier().value_or("");
    field->setTitle(identifier.empty() ? "" : strings.ofKey(identifier));
  }
  if (const auto* const attributes = objectOf(definition, "attributes")) {
    field->setAttributes(attributes);
  }
  if (const auto* const traits = objectOf(definition, QNTemplateFieldInputTraitsPropertyKey)) {
    field->setInputTraits(traits);
  }
  return field;
}

const JsonObject* QNTemplate::definitionForFieldIdentifier(std::string_view identifier) const {
  const std::lock_guard lock(_mutex);
  if (!_fieldsByName) {
    _fieldsByName.emplace();
    forEachObject(_definition, "contents", [&](const JsonObject& section) {
      forEachObject(section, "fields", [&](const JsonObject& field) {
        if (const auto name = mr_validStringValueForKey(field, "name")) {
          (*_fieldsByName)[*name] = &field;
        }
      });
    });
  }
  const auto found = _fieldsByName->find(identifier);
  return found == _fieldsByName->end() ? nullptr : found->second;
}

std::vector<std::string> QNTemplate::menuItemsForFieldIdentifier(
    std::string_view identifier) const {
  std::vector<std::string> items;
  const JsonObject* const definition = definitionForFieldIdentifier(identifier);
  const Json* const list =
      definition == nullptr ? nullptr : mr_objectForKey(*definition, "menuitems", JsonKind::array);
  if (list == nullptr) return items;
  for (const Json& element : list->get_array()) {
    if (const auto* const text = element.if_string()) items.emplace_back(*text);
  }
  return items;
}

}  // namespace quillon
