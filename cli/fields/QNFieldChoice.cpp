#include "cli/fields/QNFieldChoice.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/output/QNShownText.h"
#include "cli/terminal/QNMessages.h"
#include "quillon/fields/QNItemAddressField.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Matches = std::vector<QNChosenField>;

constexpr std::array<std::string_view, 6> kParts{"street", "city",  "zip",
                                                 "region", "state", "country"};

// How well a name fits; the best first.
enum class Fit { identifier, title, folded, none };

Fit fitOf(std::string_view name, std::string_view identifier, std::string_view title,
          std::string_view shownTitle) {
  if (identifier == name) return Fit::identifier;
  if (title == name || shownTitle == name) return Fit::title;
  const std::string folded = foldedForSearch(name);
  const auto fits = [&folded](std::string_view text) { return foldedForSearch(text) == folded; };
  return fits(identifier) || fits(title) || fits(shownTitle) ? Fit::folded : Fit::none;
}

Fit fitOf(std::string_view name, const QNFieldSection& section, const QNFieldTexts& texts) {
  const std::string_view title = section.title().value_or("");
  const std::string_view identifier = section.name().value_or("");
  // A section with a title alone isn't the one without a name.
  if (name.empty()) return identifier.empty() && title.empty() ? Fit::identifier : Fit::none;
  return fitOf(name, identifier, title, texts.titleOf(section));
}

class Search {
 public:
  Search(QNItem& item, const QNFieldTexts& texts)
      : _sections(item.fieldSections()), _texts(texts) {}

  // The best that there are: FIELD before SECTION.FIELD, and what fits exactly before the rest.
  [[nodiscard]] Matches find(std::string_view name) const {
    Matches found = fields(name, [](const QNFieldSection&) { return true; });
    for (auto dot = name.find('.'); found.empty() && dot != std::string_view::npos;
         dot = name.find('.', dot + 1)) {
      found = fields(name.substr(dot + 1), [&](const QNFieldSection& section) {
        return fitOf(name.substr(0, dot), section, _texts) != Fit::none;
      });
    }
    return found;
  }

  [[nodiscard]] Matches findParts(std::string_view name) const {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos) return {};
    const std::string part = foldedForSearch(name.substr(dot + 1));
    if (std::find(kParts.begin(), kParts.end(), part) == kParts.end()) return {};
    Matches found = find(name.substr(0, dot));
    found.erase(std::remove_if(found.begin(), found.end(),
                               [](const QNChosenField& match) {
                                 return dynamic_cast<QNItemAddressField*>(match.field.get()) ==
                                        nullptr;
                               }),
                found.end());
    for (QNChosenField& match : found) match.part = part;
    return found;
  }

 private:
  template <class Test>
  Matches fields(std::string_view name, const Test& isWanted) const {
    if (name.empty()) return {};
    std::array<Matches, 3> byFit;
    for (const auto& section : _sections) {
      if (!isWanted(*section)) continue;
      for (const auto& field : section->fields()) {
        const Fit fit =
            fitOf(name, field->identifier().value_or(""), field->title(), _texts.titleOf(*field));
        if (fit != Fit::none) byFit[static_cast<std::size_t>(fit)].push_back({section, field, ""});
      }
    }
    for (Matches& matches : byFit) {
      if (!matches.empty()) return std::move(matches);
    }
    return {};
  }

  QNItem::FieldSections _sections;
  const QNFieldTexts& _texts;
};

QNError ambiguous(const Matches& matches, const QNFieldTexts& texts) {
  for (const QNChosenField& match : matches) {
    printRaw(fmt::format("{}  {}\n", shownText(pathOf(*match.section, *match.field)),
                         shownText(texts.titleOf(*match.field))));
  }
  return toolError(
      QNExit::ambiguous,
      fmt::format("{} fields have that name; name one as SECTION.FIELD", matches.size()));
}

}  // namespace

std::vector<QNChosenField> fieldsNamed(QNItem& item, const QNFieldTexts& texts,
                                       std::string_view name) {
  const Search search(item, texts);
  Matches matches = search.find(name);
  return matches.empty() ? search.findParts(name) : matches;
}

QNResult<QNChosenField> chooseField(QNItem& item, const QNFieldTexts& texts,
                                    std::string_view name) {
  Matches matches = fieldsNamed(item, texts, name);
  if (matches.empty()) return toolError(QNExit::notFound, "the item has no such field");
  if (matches.size() > 1) return ambiguous(matches, texts);
  return std::move(matches.front());
}

std::string pathOf(const QNFieldSection& section, const QNItemField& field) {
  const std::string_view name = section.name().value_or("");
  // The identifier of this kind is drawn anew each time that it is read.
  const std::string_view last =
      field.isTOTPField() ? field.title() : field.identifier().value_or("");
  return fmt::format("{}.{}", name.empty() ? section.title().value_or("") : name, last);
}

QNFieldSectionRef sectionNamed(QNItem& item, const QNFieldTexts& texts, std::string_view name) {
  const QNItem::FieldSections sections = item.fieldSections();
  for (const Fit wanted : {Fit::identifier, Fit::title, Fit::folded}) {
    for (const auto& section : sections) {
      if (fitOf(name, *section, texts) == wanted) return section;
    }
  }
  return nullptr;
}

}  // namespace quillon
