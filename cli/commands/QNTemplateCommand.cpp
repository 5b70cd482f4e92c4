#include <fmt/format.h>

#include <algorithm>

#include "cli/commands/QNCommands.h"
#include "cli/fields/QNCategoryNames.h"
#include "cli/fields/QNFieldTexts.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/templates/QNTemplateManager.h"

namespace quillon {
namespace {

using Sections = std::vector<std::shared_ptr<QNFieldSection>>;

// Empty for a category without a template.
Sections sectionsOf(std::string_view uuid) {
  const auto found = QNTemplateManager::sharedManager().findTemplateWithUUID(uuid);
  auto sections = found == nullptr ? std::nullopt : found->instantiateFieldSections();
  return sections ? std::move(*sections) : Sections();
}

// What --set takes beside fields.
std::vector<std::string_view> ownPlaces(std::string_view uuid) {
  if (uuid == QNCategoryUUIDLogin) return {"title", "username", "password", "url", "notes"};
  if (uuid == QNCategoryUUIDPassword) return {"title", "password", "url", "notes"};
  return {"title", "notes"};
}

JsonObject jsonOf(const QNItemField& field, const QNFieldTexts& texts) {
  JsonObject object{{"id", field.identifier().value_or("")},
                    {"title", texts.titleOf(field)},
                    {"kind", kindOf(field)},
                    {"guarded", field.isGuarded()}};
  const auto choices = texts.choicesOf(field);
  if (choices.empty()) return object;
  JsonArray& values = object["values"].emplace_array();
  for (const auto& choice : choices) {
    values.push_back({{"value", choice.value}, {"label", choice.label}});
  }
  return object;
}

JsonObject jsonOf(const std::string& uuid, const QNFieldTexts& texts) {
  JsonArray own;
  for (const std::string_view name : ownPlaces(uuid)) own.emplace_back(name);
  JsonArray sections;
  for (const auto& section : sectionsOf(uuid)) {
    JsonArray fields;
    for (const auto& field : section->fields()) fields.push_back(jsonOf(*field, texts));
    sections.push_back({{"name", section->name().value_or("")},
                        {"title", texts.titleOf(*section)},
                        {"fields", std::move(fields)}});
  }
  return {{"uuid", uuid},
          {"name", nameOfCategory(uuid)},
          {"title", titleOfCategory(uuid)},
          {"available", isAvailable(uuid)},
          {"ownFields", std::move(own)},
          {"sections", std::move(sections)}};
}

std::string choicesText(const std::vector<QNFieldTexts::Choice>& choices) {
  std::string text;
  for (const auto& choice : choices) {
    text += text.empty() ? "  " : ", ";
    text += choice.value;
    if (choice.label != choice.value) text += fmt::format(" ({})", choice.label);
  }
  return text;
}

void print(QNOutput& out, const std::string& uuid, const QNFieldTexts& texts) {
  out.line(
      fmt::format("{} ({}, {})", shownText(titleOfCategory(uuid)), nameOfCategory(uuid), uuid));
  if (!isAvailable(uuid)) out.line("  " + QNLocalizedString("not in local vaults"));
  out.line(
      fmt::format("  {}: {}", QNLocalizedString("of its own"), fmt::join(ownPlaces(uuid), ", ")));
  for (const auto& section : sectionsOf(uuid)) {
    const std::string name = shownText(section->name().value_or(""));
    if (!name.empty()) out.line(fmt::format("{}: {}", name, shownText(texts.titleOf(*section))));
    std::size_t nameWidth = 0;
    std::size_t titleWidth = 0;
    for (const auto& field : section->fields()) {
      nameWidth = std::max(nameWidth, shownWidth(field->identifier().value_or("")));
      titleWidth = std::max(titleWidth, shownWidth(texts.titleOf(*field)));
    }
    for (const auto& field : section->fields()) {
      out.line(fmt::format("  {}  {}  {}{}",
                           padded(shownText(field->identifier().value_or("")), nameWidth),
                           padded(shownText(texts.titleOf(*field)), titleWidth), kindOf(*field),
                           shownText(choicesText(texts.choicesOf(*field)))));
    }
  }
}

}  // namespace

QNCommandResult runCommand(Global global, const QNTemplateArguments& arguments) {
  const auto uuid = categoryNamed(arguments.category);
  if (!uuid) {
    return toolError(QNExit::wrongUsage,
                     "there is no such category; quillon categories lists them");
  }
  const QNFieldTexts texts(*uuid);
  if (global.json) return printJson(jsonOf(*uuid, texts));
  QNOutput out;
  print(out, *uuid, texts);
  return out.finish();
}

}  // namespace quillon
