#include <fmt/format.h>

#include <algorithm>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNCategoryNames.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "quillon/platform/text/QNLocalization.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {
namespace {

struct Category {
  std::string uuid;
  std::uint64_t items = 0;
};

// What the vault takes, what it doesn't, and what it holds of categories that nobody knows.
QNResult<std::vector<Category>> categoriesOf(QNStore& store, const QNProfile& vault) {
  const auto counts = store.categories(vault);
  if (!counts) return counts.error();
  std::vector<Category> categories;
  for (std::string& uuid : knownCategoryUUIDs()) categories.push_back({std::move(uuid), 0});
  std::stable_partition(categories.begin(), categories.end(),
                        [](const Category& each) { return isAvailable(each.uuid); });
  for (const auto& [uuid, items] : counts.value()) {
    if (uuid == QNCategoryUUIDTombstone) continue;
    const std::string& counted = uuid;
    auto found = std::find_if(categories.begin(), categories.end(),
                              [&](const Category& each) { return each.uuid == counted; });
    if (found == categories.end()) found = categories.insert(found, {uuid, 0});
    found->items = items;
  }
  return categories;
}

}  // namespace

QNCommandResult runCommand(Global global, const QNCategoriesArguments&) {
  const auto store = openStore(global, QNStore::Access::readOnly);
  if (!store) return store.error();
  const auto vault = lockedVault(*store.value(), global);
  if (!vault) return vault.error();
  const auto categories = categoriesOf(*store.value(), *vault.value());
  if (!categories) return categories.error();
  JsonArray list;
  QNOutput out;
  for (const Category& category : categories.value()) {
    const std::string_view name = nameOfCategory(category.uuid);
    const std::string title = titleOfCategory(category.uuid);
    const bool isTaken = isAvailable(category.uuid);
    if (global.json) {
      list.push_back({{"uuid", category.uuid},
                      {"name", name.empty() ? Json(nullptr) : Json(name)},
                      {"title", title},
                      {"available", isTaken},
                      {"items", category.items}});
    } else {
      out.line(fmt::format("{}  {}  {}  {}{}", padded(shownText(category.uuid), 3),
                           padded(std::string(name), 22), padded(shownText(title), 25),
                           category.items,
                           isTaken ? "" : "  " + QNLocalizedString("not in local vaults")));
    }
  }
  if (global.json) {
    out.json(Json(std::move(list)));
    out.line("");
  }
  return out.finish();
}

}  // namespace quillon
