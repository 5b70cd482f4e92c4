// Sections and fields of an item: what was read and written is read and written again to the same
// text, identifiers of one-time passwords apart, which are drawn at each reading.
#include <cstdlib>
#include <string>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/items/QNItem.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

void exerciseField(const QNItemFieldRef& field) {
  const auto text = field->stringValue();
  require(field->isUnknownField() || field->isEmpty() == (!text || text->empty()) ||
          field->isAddressField());
  static_cast<void>(field->clipboardStringValue());
  static_cast<void>(field->shouldShowPasswordStrength());
  require(field->isValueEqualTo(field->rawValue()));
  require(field->isEqual(*field) == !field->rawValue().isNothing());
  const auto copy = field->conflictCopyWithUniqueFieldIdentifierForConflict(std::nullopt);
  require(copy->type() == field->type() && !copy->isGuarded());
}

void exerciseSection(const QNFieldSection& section) {
  for (const auto& field : section.fields()) exerciseField(field);
  require(section.isEqual(section));
  static_cast<void>(section.allValuesForSearch());
  Json stored(section.dictionaryRepresentation());
  require(!section.storeInto(stored));
}

// A plain copy of a JSON value, so that the fields of one-time passwords can lose their names.
std::string textWithoutDrawnIdentifiers(Json sections) {
  if (!sections.is_array()) return mr_JSONStringWithError(sections).value_or("");
  for (Json& section : sections.get_array()) {
    JsonObject* const object = section.if_object();
    Json* const fields = object == nullptr ? nullptr : object->if_contains(kFieldSectionFields);
    if (fields == nullptr || !fields->is_array()) continue;
    for (Json& field : fields->get_array()) {
      JsonObject* const members = field.if_object();
      if (members == nullptr) continue;
      const auto identifier = mr_validStringValueForKey(*members, kItemFieldIdentifier);
      const bool concealed = mr_validStringValueForKey(*members, kItemFieldType) == "concealed";
      if (concealed && identifier.value_or("").starts_with("TOTP_")) {
        members->stable_erase(kItemFieldIdentifier);
      }
    }
  }
  return mr_JSONStringWithError(sections).value_or("");
}

/// The sections as an item with these details writes them.
Json rewritten(const JsonObject& details) {
  QNItem item(initNew);
  item.copyDetails(details);
  for (const auto& section : item.fieldSections()) exerciseSection(*section);
  static_cast<void>(item.password());
  item.saveFieldSections();
  const Json* const written = item.detailsObjectForKey(kDetailsSections);
  const Json copy = written == nullptr ? Json() : Json(*written);
  item.saveFieldSections();
  require(written == nullptr || copy == *item.detailsObjectForKey(kDetailsSections));
  return copy;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  [[maybe_unused]] static const auto silenced =
      MRLogger::sharedLogger().setSink([](const MRLogRecord&) {});
  // An address that is stored without a value is written with the country of the locale, if that
  // names one; one that is emptied is stored without a value.
  [[maybe_unused]] static const QNScopedLocale locale("de");
  auto details = mr_objectFromJSONDataWithError({data, size});
  if (!details) return 0;
  const Json once = rewritten(*details);
  if (once.is_null()) {
    details->stable_erase(kDetailsSections);
  } else {
    (*details)[kDetailsSections] = once;
  }
  const Json twice = rewritten(*details);
  require(textWithoutDrawnIdentifiers(once) == textWithoutDrawnIdentifiers(twice));
  QNItem(initNew).cleanseDetailsFieldsFromDetails(*details);
  rewritten(*details);
  return 0;
}
