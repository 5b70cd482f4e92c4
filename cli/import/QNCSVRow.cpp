#include "cli/import/QNCSVRow.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "quillon/fields/QNFieldSection.h"
#include "quillon/fields/QNItemStringField.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/platform/urls/QNURLTools.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {
namespace {

using Place = QNCSVPlace;

std::string_view withoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

// Blanks alone may be a password.
bool isNothing(std::string_view value, Place place) {
  return place == Place::password ? value.empty() : withoutBlanks(value).empty();
}

// Nothing for a text that isn't a number, and for 0, which stands for "never".
std::optional<std::uint64_t> secondsFromMilliseconds(std::string_view text) {
  std::uint64_t milliseconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), milliseconds);
  if (error != std::errc() || end != text.data() + text.size() || milliseconds == 0) {
    return std::nullopt;
  }
  return milliseconds / 1000;
}

bool beginsWithScheme(std::string_view text) {
  const std::size_t end = text.find("://");
  constexpr std::string_view kOfScheme =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+.-";
  return end != std::string_view::npos && end > 0 &&
         text.substr(0, end).find_first_not_of(kOfScheme) == std::string_view::npos;
}

bool hasPath(std::string_view address) {
  const std::size_t scheme = address.find("://");
  const std::size_t start = scheme == std::string_view::npos ? 0 : scheme + 3;
  return address.find_first_of("/?#", start) != std::string_view::npos;
}

// In a section of its own, as a person would add it.
void addOneTimePassword(QNItem& item, std::string_view text) {
  const auto field = std::make_shared<QNItemTOTPField>();
  field->setTitle("one-time password");
  field->setValue(text);
  const auto section = std::make_shared<QNFieldSection>();
  section->setName(QNFieldSection::uniqueSectionName());
  section->addField(field);
  item.addFieldSection(section);
}

}  // namespace

std::vector<std::string_view> addressesIn(std::string_view value) {
  std::vector<std::string_view> addresses;
  const auto add = [&](std::string_view address) {
    if (address = withoutBlanks(address); !address.empty()) addresses.push_back(address);
  };
  std::size_t start = 0;
  for (std::size_t comma = value.find(','); comma != std::string_view::npos;
       comma = value.find(',', comma + 1)) {
    const std::string_view before = value.substr(start, comma - start);
    if (hasPath(before) && !beginsWithScheme(withoutBlanks(value.substr(comma + 1)))) continue;
    add(before);
    start = comma + 1;
  }
  add(value.substr(start));
  return addresses;
}

QNCSVRow::QNCSVRow(const QNCSVColumns& header, QNCSVReader::Fields fields) : _header(header) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!isNothing(fields[i], placeOf(i))) take(i, fields[i]);
  }
  if (_isNote) keepWhatANoteHasNot(fields);
}

Place QNCSVRow::placeOf(std::size_t column) const {
  return column < _header.columns.size() ? _header.columns[column].place : Place::none;
}

void QNCSVRow::take(std::size_t column, std::string_view value) {
  switch (placeOf(column)) {
    case Place::title:
      _title = value;
      return;
    case Place::url:
      return takeAddresses(value);
    case Place::username:
      _username = value;
      return;
    case Place::password:
      _password = value;
      return;
    case Place::notes:
      _notes = value;
      return;
    case Place::oneTimePassword:
      _oneTimePassword = value;
      return;
    case Place::formAction:
      _formAction = value;
      return;
    case Place::favorite:
      if (value == "0") return;
      if (_isFavorite = value == "1"; _isFavorite) return;
      break;
    case Place::kind:
      if (value == "login") return;
      if (_isNote = value == "note"; _isNote) return;
      break;
    case Place::createdMilliseconds:
      if (_created = secondsFromMilliseconds(value); _created) return;
      break;
    case Place::lastUsedMilliseconds:
      if (_lastUsed = secondsFromMilliseconds(value); _lastUsed) return;
      break;
    case Place::changedMilliseconds:
      if (_created && secondsFromMilliseconds(value) == _created) return;
      break;
    case Place::mark:
      if (value == "0") return;
      break;
    case Place::none:
      break;
  }
  _kept.push_back({column, value});
}

void QNCSVRow::takeAddresses(std::string_view value) {
  const auto addresses = _header.format == QNCSVFormat::bitwarden
                             ? addressesIn(value)
                             : std::vector{withoutBlanks(value)};
  for (const std::string_view address : addresses) {
    if (std::find(_urls.begin(), _urls.end(), address) == _urls.end()) _urls.push_back(address);
  }
}

// A secure note has no user name, password, one-time password or address.
void QNCSVRow::keepWhatANoteHasNot(QNCSVReader::Fields fields) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const Place place = placeOf(i);
    const bool lost = place == Place::url || place == Place::username || place == Place::password ||
                      place == Place::oneTimePassword;
    if (lost && !isNothing(fields[i], place)) _kept.push_back({i, fields[i]});
  }
}

bool QNCSVRow::isEmpty() const {
  return _title.empty() && _username.empty() && _password.empty() && _notes.empty() &&
         _oneTimePassword.empty() && _urls.empty() && _kept.empty();
}

std::string QNCSVRow::nameOfColumn(const QNCSVColumns& header, std::size_t column) {
  const bool named = column < header.columns.size() && !header.columns[column].name.empty();
  return named ? header.columns[column].name : fmt::format("Column {}", column + 1);
}

std::optional<std::string> QNCSVRow::bestTitle() const {
  if (!_title.empty()) return std::string(_title);
  if (!_urls.empty() && !_isNote) {
    auto host = QNURLTools::shared().extractHostFromURLString(_urls.front());
    return host ? std::move(*host) : std::string(_urls.front());
  }
  if (!_username.empty() && !_isNote) return std::string(_username);
  return std::nullopt;
}

QNSecret QNCSVRow::allNotes() const {
  QNSecret notes(_notes);
  for (const Kept& kept : _kept) {
    if (!notes.empty()) notes.append("\n");
    notes.append(nameOfColumn(_header, kept.column));
    notes.append(": ");
    notes.append(kept.value);
  }
  return notes;
}

std::shared_ptr<QNItem> QNCSVRow::makeItem(const std::shared_ptr<QNProfile>& vault) const {
  auto item =
      vault->newItemForCategoryUUID(_isNote ? QNCategoryUUIDSecureNote : QNCategoryUUIDLogin);
  item->setProfile(vault);
  item->setTitle(bestTitle());
  const QNSecret notes = allNotes();
  if (!notes.empty()) item->setNotesPlain(notes.reveal());  // into the item's details
  if (_created) item->setCreatedAt(*_created);
  if (_lastUsed) item->setLastUsedTimestamp(*_lastUsed);
  if (_isFavorite) item->setFaveIndex(QNItem::newItemFaveIndex());
  if (_isNote) return item;
  for (const std::string_view address : _urls) item->addURLString(address);
  if (!_username.empty()) item->setUsername(_username);
  if (!_password.empty()) item->setPassword(_password);
  if (!_oneTimePassword.empty()) addOneTimePassword(*item, _oneTimePassword);
  if (auto* const login = dynamic_cast<QNLogin*>(item.get());
      login != nullptr && !_formAction.empty()) {
    login->setHtmlAction(_formAction);
  }
  return item;
}

}  // namespace quillon
