#include <fmt/format.h>

#include <array>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNCategoryNames.h"
#include "cli/output/QNLabels.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

struct Category {
  std::string uuid;
  std::string name;
  std::uint64_t items = 0;
};

struct Info {
  std::string vault;
  std::uint64_t items = 0;
  std::uint64_t trashed = 0;
  std::vector<Category> categories;
  std::uint32_t memoryKiB = 0;  // of the key derivation
  std::string hint;
  int schema = 0;
};

constexpr int kPasses = 3;  // of Argon2id, the same for every vault

QNResult<Info> infoOf(QNStore& store, const QNGlobalArguments& global) {
  const auto vault = lockedVault(store, global);
  if (!vault) return vault.error();
  const auto counts = store.vaults();
  if (!counts) return counts.error();
  const auto categories = store.categories(*vault.value());
  if (!categories) return categories.error();
  Info info;
  info.vault = vault.value()->profileName().value_or("");
  for (const QNStoredVaultInfo& counted : counts.value()) {
    if (counted.oid != vault.value()->oid()) continue;
    info.items = counted.items;
    info.trashed = counted.trashed;
  }
  for (const auto& [uuid, items] : categories.value()) {
    info.categories.push_back({uuid, pluralTitleOfCategory(uuid), items});
  }
  info.memoryKiB = vault.value()->iterations();
  info.hint = vault.value()->passwordHint().value_or("");
  info.schema = store.schemaVersion();
  return info;
}

JsonObject jsonOf(const Info& info) {
  JsonArray categories;
  for (const Category& category : info.categories) {
    categories.push_back(
        {{"uuid", category.uuid}, {"name", category.name}, {"items", category.items}});
  }
  return {{"vault", info.vault},
          {"items", info.items},
          {"trashed", info.trashed},
          {"categories", std::move(categories)},
          {"kdf", {{"name", "argon2id"}, {"memoryKiB", info.memoryKiB}, {"passes", kPasses}}},
          {"schema", info.schema}};
}

// What stands before the values, in the user's language.
constexpr std::array<std::string_view, 7> kLabels = {"Store",    "Schema", "Vault", "Items",
                                                     "In trash", "Key",    "Hint"};
constexpr std::size_t kLabelWidth = 13;

void print(QNOutput& out, const QNGlobalArguments& global, const Info& info) {
  const QNLabels labels(kLabels, kLabelWidth);
  const auto line = [&](std::string_view key, const std::string& value) {
    out.line(labels.labelFor(key) + value);
  };
  line("Store", shownText(global.store.string()));
  line("Schema", std::to_string(info.schema));
  line("Vault", shownText(info.vault));
  line("Items", std::to_string(info.items));
  for (const Category& category : info.categories) {
    out.line(fmt::format("  {} {}", padded(shownText(category.name) + ":", 20), category.items));
  }
  line("In trash", std::to_string(info.trashed));
  line("Key", fmt::format("Argon2id, {} KiB, {}", info.memoryKiB,
                          localizedFormat("%jd passes", std::to_string(kPasses))));
  if (!info.hint.empty()) line("Hint", shownText(info.hint));
}

}  // namespace

QNCommandResult runCommand(Global global, const QNInfoArguments&) {
  const auto store = openStore(global, QNStore::Access::readOnly);
  if (!store) return store.error();
  const auto info = infoOf(*store.value(), global);
  if (!info) return info.error();
  if (global.json) return printJson(jsonOf(info.value()));
  QNOutput out;
  print(out, global, info.value());
  return out.finish();
}

}  // namespace quillon
