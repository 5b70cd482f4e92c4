#include "cli/fields/QNFieldTexts.h"

#include <fmt/format.h>

#include "quillon/fields/QNAddressFormat.h"
#include "quillon/fields/QNItemAddressField.h"
#include "quillon/fields/QNItemDateField.h"
#include "quillon/fields/QNItemMonthYearField.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

constexpr std::string_view kNamelessCountry = "menu.country.";

template <class Field>
const Field* as(const QNItemField& field) {
  return dynamic_cast<const Field*>(&field);
}

bool isMenu(const QNItemField& field) {
  return as<QNItemMenuField>(field) != nullptr && as<QNItemCountryField>(field) == nullptr &&
         as<QNItemCreditCardNumberField>(field) == nullptr;
}

QNSecret nameOfCountry(const QNSecret& code) {
  const std::string name = QNAddressFormat::localizedCountryForCode(code.reveal());  // no secret
  return name.starts_with(kNamelessCountry) ? code.clone() : QNSecret(name);
}

// Blanks and commas at both ends: a format leaves them around parts that aren't there.
std::string_view withoutSeparators(std::string_view line) {
  const auto first = line.find_first_not_of(" ,\t\r");
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(" ,\t\r") + 1 - first);
}

QNSecret linesOf(const QNAddressValue& address) {
  const QNSecret written = address.stringValue();
  std::string_view rest = written.reveal();  // into another secret
  QNSecret lines;
  while (!rest.empty()) {
    const std::string_view line = withoutSeparators(rest.substr(0, rest.find('\n')));
    if (!line.empty() && !lines.empty()) lines.append("\n");
    lines.append(line);
    rest.remove_prefix(std::min(rest.find('\n'), rest.size() - 1) + 1);
  }
  return lines;
}

}  // namespace

std::string kindOf(const QNItemField& field) {
  if (field.isTOTPField()) return "totp";
  return std::string(field.type().value_or("unknown"));
}

bool isSecret(const QNItemField& field) {
  return field.isConcealedField() || field.isTOTPField() || field.isPasswordField() ||
         field.isUnknownField();
}

bool isBlank(const QNItemField& field) {
  const auto* const address = as<QNItemAddressField>(field);
  if (address == nullptr) return field.isEmpty();
  QNAddressValue value = address->value();
  value.setCountry(std::nullopt);
  return value.isEmpty();
}

bool isWrittenByUs(const QNItemField& field) {
  return field.isDateField() && !isSecret(field);
}

QNFieldTexts::QNFieldTexts(std::optional<std::string_view> categoryUUID)
    : _template(QNTemplateManager::sharedManager().findTemplateWithUUID(categoryUUID)) {}

std::string QNFieldTexts::titleOf(const QNFieldSection& section) const {
  std::string stored(section.title().value_or(""));
  const std::string key = fmt::format("set.{}", section.name().value_or(""));
  if (_template == nullptr || !_template->isLocalizedString(stored, key)) return stored;
  return _template->localizedStringForKey(key);
}

std::string QNFieldTexts::titleOf(const QNItemField& field) const {
  const std::string_view identifier = field.identifier().value_or("");
  const std::string_view stored = field.title();
  const bool isOfTemplate = _template != nullptr && _template->containsFieldIdentifier(identifier);
  if (isOfTemplate && (stored.empty() || _template->isLocalizedString(stored, identifier))) {
    return _template->localizedStringForKey(identifier);
  }
  return std::string(stored.empty() ? identifier : stored);
}

QNSecret QNFieldTexts::shownValueOf(const QNItemField& field) const {
  if (const auto* const address = as<QNItemAddressField>(field)) return linesOf(address->value());
  QNSecret text = field.displayStringValue();
  if (text.empty()) return text;
  if (as<QNItemCountryField>(field) != nullptr) return nameOfCountry(text);
  if (_template == nullptr || !isMenu(field)) return text;
  const std::string_view identifier = field.identifier().value_or("");
  // A value of a list, no secret.
  return QNSecret(_template->localizedValueForFieldIdentifier(identifier, text.reveal()));
}

QNSecret QNFieldTexts::plainValueOf(const QNItemField& field) const {
  if (const auto* const date = as<QNItemDateField>(field)) {
    return date->isEmpty() ? QNSecret() : qn_formatISODate(date->value());
  }
  if (const auto* const month = as<QNItemMonthYearField>(field)) {
    if (month->isEmpty()) return {};
    const QNSecret digits = month->yearMonthFormat();
    const std::string_view text = digits.reveal();  // into another secret
    if (text.size() != 6) return digits.clone();
    QNSecret dashed(text.substr(0, 4));
    dashed.append("-");
    dashed.append(text.substr(4));
    return dashed;
  }
  if (as<QNItemAddressField>(field) == nullptr) return field.displayStringValue();
  return isBlank(field) ? QNSecret() : shownValueOf(field);
}

std::vector<QNFieldTexts::Choice> QNFieldTexts::choicesOf(const QNItemField& field) const {
  std::vector<Choice> choices;
  if (_template == nullptr || !isMenu(field)) return choices;
  const std::string_view identifier = field.identifier().value_or("");
  for (std::string& value : _template->menuItemsForFieldIdentifier(identifier)) {
    std::string label = _template->localizedValueForFieldIdentifier(identifier, value);
    choices.push_back({std::move(value), std::move(label)});
  }
  return choices;
}

}  // namespace quillon
