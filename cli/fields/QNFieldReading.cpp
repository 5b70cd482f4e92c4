#include "cli/fields/QNFieldReading.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/fields/QNSeedFault.h"
#include "quillon/fields/QNAddressFormat.h"
#include "quillon/fields/QNItemAddressField.h"
#include "quillon/fields/QNItemDateField.h"
#include "quillon/fields/QNItemMonthYearField.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/platform/text/QNASCII.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/touchpoints/QNTOTPGenerator.h"

namespace quillon {
namespace {

using Done = QNResult<QNDone>;

QNError unreadable(std::string_view message) {
  return toolError(QNExit::wrongUsage, message);
}

template <class Field>
Field* as(QNItemField& field) {
  return dynamic_cast<Field*>(&field);
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

std::size_t countDigits(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isDigit));
}

bool hasBlank(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) <= ' '; });
}

// Nothing for anything but 1 to `most` digits.
std::optional<std::int16_t> numberIn(std::string_view text, std::size_t most) {
  if (text.empty() || text.size() > most || countDigits(text) != text.size()) return std::nullopt;
  std::int16_t number = 0;
  for (const char c : text) number = static_cast<std::int16_t>(number * 10 + (c - '0'));
  return number;
}

Done readDate(QNItemDateField& field, std::string_view text) {
  if (text.empty()) {
    field.setValue(QNItemDateField::kNoDate);
    return QNDone{};
  }
  const auto day = qn_parseDate(text);
  if (!day) {
    return unreadable(
        fmt::format("no date; give one as {} or {}", "2024-07-05", qn_exampleOfDate()));
  }
  field.setValue(*day);
  return QNDone{};
}

// "2024-07" or "07/2024".
Done readMonthYear(QNItemMonthYearField& field, std::string_view text) {
  if (text.empty()) {
    field.setMonth(0);
    field.setYear(0);
    return QNDone{};
  }
  const auto middle = std::min(text.find_first_of("-/"), text.size());
  const bool yearFirst = middle < text.size() && text[middle] == '-';
  const std::string_view first = text.substr(0, middle);
  const std::string_view last = text.substr(std::min(middle + 1, text.size()));
  const auto month = numberIn(yearFirst ? last : first, 2);
  const auto year = numberIn(yearFirst ? first : last, 4);
  if (!month || !year || *month < 1 || *month > 12 || *year < 1000) {
    return unreadable("no month of a year; give one as 2024-07 or 07/2024");
  }
  field.setMonth(*month);
  field.setYear(*year);
  return QNDone{};
}

std::optional<std::string> countryCode(std::string_view text) {
  std::string code(text);
  for (char& c : code) c = lowercaseASCII(c);
  const auto codes = QNAddressFormat::countryCodes();
  if (std::find(codes.begin(), codes.end(), code) != codes.end()) return code;
  const std::string folded = foldedForSearch(text);
  for (const std::string& known : codes) {
    if (foldedForSearch(QNAddressFormat::localizedCountryForCode(known)) == folded) return known;
  }
  return std::nullopt;
}

QNError noCountry() {
  return unreadable("no country of that code or name; give one such as \"de\", or its name");
}

Done readCountry(QNItemStringField& field, std::string_view text) {
  const auto code = countryCode(text);
  if (!code) return noCountry();
  field.setValue(*code);
  return QNDone{};
}

Done readChoice(QNItemStringField& field, const std::vector<QNFieldTexts::Choice>& choices,
                std::string_view text) {
  const std::string folded = foldedForSearch(text);
  std::string known;
  for (const auto& choice : choices) {
    if (choice.value == text || foldedForSearch(choice.value) == folded ||
        foldedForSearch(choice.label) == folded) {
      field.setValue(choice.value);
      return QNDone{};
    }
    known += known.empty() ? "" : ", ";
    known += choice.label == choice.value ? choice.value
                                          : fmt::format("{} ({})", choice.value, choice.label);
  }
  return unreadable(fmt::format("not one of its values, which are: {}", known));
}

Done readSeed(QNItemStringField& field, std::string_view text) {
  // The code is thrown away: it shows that one can be made.
  const auto code = QNTOTPGenerator::generate(text, QNTOTPGenerator::Date());
  if (!code) {
    return unreadable(
        fmt::format("no seed of one-time passwords: {}", reasonForNoCode(code.error(), text)));
  }
  field.setValue(text);
  return QNDone{};
}

// What can't be a number, an address or a page by any rule; the rest is taken as it was typed.
std::optional<std::string_view> objectionTo(const QNItemField& field, std::string_view text) {
  if (field.isCreditCardNumberField()) {
    const bool fits = std::all_of(text.begin(), text.end(),
                                  [](char c) { return isDigit(c) || c == ' ' || c == '-'; });
    const std::size_t digits = countDigits(text);
    if (!fits || digits < 8 || digits > 19) return "no card number; it has 8 to 19 digits";
  }
  if (field.isPhoneField() && (countDigits(text) == 0 || text.find('\n') != std::string::npos)) {
    return "no telephone number; it has digits";
  }
  if (field.isEmailField()) {
    const auto at = text.find('@');
    const bool fits = at != std::string_view::npos && at > 0 && at + 1 < text.size() &&
                      text.find('@', at + 1) == std::string_view::npos && !hasBlank(text);
    if (!fits) return "no email address; one looks like jo@example.org";
  }
  if (field.isURLField() && hasBlank(text)) return "no web address; one has no blanks";
  return std::nullopt;
}

Done readText(QNItemStringField& field, const QNFieldTexts& texts, std::string_view text) {
  if (text.empty()) {
    field.setValue(std::nullopt);
    return QNDone{};
  }
  if (as<QNItemCountryField>(field) != nullptr) return readCountry(field, text);
  if (as<QNItemTOTPField>(field) != nullptr) return readSeed(field, text);
  const auto choices = texts.choicesOf(field);
  if (!choices.empty()) return readChoice(field, choices, text);
  if (const auto objection = objectionTo(field, text)) return unreadable(*objection);
  field.setValue(text);
  return QNDone{};
}

// An address without a member would be that of nowhere the next time that it is read, and so be
// given the user's country. An empty country is none, and stays so.
void setOrClear(QNItemAddressField& field, QNAddressValue address) {
  if (!address.dictionaryRepresentation()) address.setCountry("");
  field.setValue(std::move(address));
}

Done setAddress(QNItemAddressField& field, std::string_view text) {
  if (!text.empty()) {
    return unreadable(
        "an address is set by its parts: FIELD.street, .city, .zip, .region, .state "
        "and .country");
  }
  setOrClear(field, QNAddressValue(JsonObject(jsonStorage())));
  return QNDone{};
}

Done requireChangeable(const QNItemField& field, std::string_view text) {
  if (!isUTF8(text)) return unreadable("the value isn't UTF-8 text");
  if (!field.isEditable()) return unreadable("it belongs to an outside service and can't be set");
  return QNDone{};
}

}  // namespace

QNResult<QNDone> readValue(QNItemField& field, const QNFieldTexts& texts, std::string_view text) {
  if (const auto changeable = requireChangeable(field, text); !changeable) return changeable;
  if (auto* const date = as<QNItemDateField>(field)) return readDate(*date, text);
  if (auto* const month = as<QNItemMonthYearField>(field)) return readMonthYear(*month, text);
  if (auto* const address = as<QNItemAddressField>(field)) return setAddress(*address, text);
  if (auto* const known = as<QNItemStringField>(field)) return readText(*known, texts, text);
  return unreadable("this version doesn't know its kind, and can't set it");
}

QNResult<QNDone> readAddressPart(QNItemField& field, std::string_view part, std::string_view text) {
  if (const auto changeable = requireChangeable(field, text); !changeable) return changeable;
  auto* const address = as<QNItemAddressField>(field);
  if (address == nullptr) return unreadable("it is no address, and has no parts");
  QNAddressValue value = address->value();
  if (value.country() == "") value.setCountry(std::nullopt);
  const auto given = text.empty() ? std::nullopt : std::optional<std::string_view>(text);
  if (part == "street") value.setStreet(given);
  if (part == "city") value.setCity(given);
  if (part == "zip") value.setZip(given);
  if (part == "region") value.setRegion(given);
  if (part == "state") value.setState(given);
  if (part == "country") {
    const auto code = given ? countryCode(*given) : std::nullopt;
    if (given && !code) return noCountry();
    value.setCountry(code ? std::optional<std::string_view>(*code) : std::nullopt);
  }
  setOrClear(*address, std::move(value));
  return QNDone{};
}

}  // namespace quillon
