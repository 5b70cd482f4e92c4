#include "cli/fields/QNTagName.h"

#include <algorithm>

#include "quillon/items/QNItem.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

// The first parts of a path, that many of them; all of a shorter one.
std::string_view firstParts(std::string_view path, std::size_t count) {
  std::size_t end = path.find('/');
  for (; count > 1 && end != std::string_view::npos; --count) end = path.find('/', end + 1);
  return path.substr(0, end);
}

}  // namespace

std::optional<std::string> cleanedTag(std::string_view tag) {
  std::string name(tag);
  std::erase_if(name, [](char c) { return c == '/' || c == '\\'; });
  if (isBlankText(name)) return std::nullopt;  // asked before the item, which would log an error
  return QNItem::processTagForAdding(tag);
}

QNTagName::Form QNTagName::formOf(std::string text) {
  const auto slashes = std::count(text.begin(), text.end(), '/');
  return {std::move(text), static_cast<std::size_t>(slashes) + 1};
}

QNTagName::QNTagName(std::string_view given)
    : _exact(formOf(std::string(given))),
      _loose(formOf(foldedForSearch(cleanedTag(given).value_or(std::string(given))))) {}

std::optional<std::string_view> QNTagName::restOf(std::string_view tag, Match match) const {
  const Form& name = match == Match::exact ? _exact : _loose;
  const std::string_view begin = firstParts(tag, name.parts);
  const bool fits =
      match == Match::exact ? begin == name.text : foldedForSearch(begin) == name.text;
  if (!fits) return std::nullopt;
  return tag.substr(begin.size());
}

}  // namespace quillon
