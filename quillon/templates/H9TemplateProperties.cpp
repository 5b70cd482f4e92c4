// Archived members: "__title__", "__pluralTitle__", "__description__" (texts) and "__state__"
// (a number). The identifier has none.

#include "quillon/templates/H9TemplateProperties.h"

#include "quillon/platform/log/MRLogger.h"

namespace quillon {
namespace {

constexpr std::string_view kTitle = "__title__";
constexpr std::string_view kPluralTitle = "__pluralTitle__";
constexpr std::string_view kDescription = "__description__";
constexpr std::string_view kState = "__state__";

std::optional<H9TemplateProperties::State> stateNamed(std::optional<std::string_view> name) {
  if (name == "A") return H9TemplateProperties::kActive;
  if (name == "H") return H9TemplateProperties::kHidden;
  if (name == "D") return H9TemplateProperties::kDeleted;
  return std::nullopt;
}

}  // namespace

H9TemplateProperties::H9TemplateProperties(const JsonObject* initWithTemplateDictionary) {
  if (initWithTemplateDictionary == nullptr) return;
  const JsonObject& dictionary = *initWithTemplateDictionary;
  title = ownedStringForKey(dictionary, "singularName");
  pluralTitle = ownedStringForKey(dictionary, "pluralName");
  uuid = ownedStringForKey(dictionary, "uuid");
  if (const auto known = stateNamed(mr_validStringValueForKey(dictionary, "state"))) {
    state = *known;
    return;
  }
  log_error(DEBUG_H9, "No template state for template {}. Setting to hidden.",
            uuid.value_or("(null)"));
  state = kHidden;
}

H9TemplateProperties::H9TemplateProperties(QNDecoder& coder)
    : title(coder.decodeString(kTitle)),
      pluralTitle(coder.decodeString(kPluralTitle)),
      templateDescription(coder.decodeString(kDescription)),
      state(static_cast<std::int64_t>(coder.decodeInt64(kState).value_or(kActive))) {}

void H9TemplateProperties::encodeWithCoder(QNEncoder& coder) {
  if (title) coder.encodeString(*title, kTitle);
  if (pluralTitle) coder.encodeString(*pluralTitle, kPluralTitle);
  if (templateDescription) coder.encodeString(*templateDescription, kDescription);
  coder.encodeInt64(static_cast<std::uint64_t>(state), kState);
}

}  // namespace quillon
