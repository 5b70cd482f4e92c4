#include <fmt/format.h>

#include "cli/commands/QNCommands.h"
#include "cli/commands/QNVaultSession.h"
#include "cli/fields/QNCategoryNames.h"
#include "cli/output/QNOutput.h"
#include "cli/output/QNShownText.h"

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

void print(QNOutput& out, const QNGlobalArguments& global, const Info& info) {
  out.line(fmt::format("Store:       {}", shownText(global.store.string())));
  out.line(fmt::format("Schema:      {}", info.schema));
  out.line(fmt::format("Vault:       {}", shownText(info.vault)));
  out.line(fmt::format("Items:       {}", info.items));
  for (const Category& category : info.categories) {
    out.line(fmt::format("  {} {}", padded(shownText(category.name) + ":", 20), category.items));
  }
  out.line(fmt::format("In trash:    {}", info.trashed));
  out.line(fmt::format("Key:         Argon2id, {} KiB, {} passes", info.memoryKiB, kPasses));
  if (!info.hint.empty()) out.line(fmt::format("Hint:        {}", shownText(info.hint)));
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
