#include "cli/fields/QNTagName.h"

#include <algorithm>

#include "quillon/items/QNItem.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// Of a text that is nothing but separators, itself: the item would only complain.
std::string cleaned(std::string_view tag) {
  const bool hasName =
      std::any_of(tag.begin(), tag.end(), [](char c) { return c != '/' && c != '\\' && c != ' '; });
  return hasName ? QNItem::processTagForAdding(tag).value_or(std::string(tag)) : std::string(tag);
}

// The first parts of a path, that many of them; all of a shorter one.
std::string_view firstParts(std::string_view path, std::size_t count) {
  std::size_t end = path.find('/');
  for (; count > 1 && end != std::string_view::npos; --count) end = path.find('/', end + 1);
  return path.substr(0, end);
}

}  // namespace

QNTagName::Form QNTagName::formOf(std::string text) {
  const auto slashes = std::count(text.begin(), text.end(), '/');
  return {std::move(text), static_cast<std::size_t>(slashes) + 1};
}

QNTagName::QNTagName(std::string_view given)
    : _exact(formOf(std::string(given))), _loose(formOf(foldedForSearch(cleaned(given)))) {}

std::optional<std::string_view> QNTagName::restOf(std::string_view tag, Match match) const {
  const Form& name = match == Match::exact ? _exact : _loose;
  const std::string_view begin = firstParts(tag, name.parts);
  const bool fits =
      match == Match::exact ? begin == name.text : foldedForSearch(begin) == name.text;
  if (!fits) return std::nullopt;
  return tag.substr(begin.size());
}

}  // namespace quillon
