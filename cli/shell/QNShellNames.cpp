#include "cli/shell/QNShellNames.h"

#include <algorithm>

#include "cli/commands/QNVaultFolders.h"
#include "cli/fields/QNCategoryNames.h"
#include "cli/fields/QNFieldChoice.h"
#include "cli/fields/QNFieldTexts.h"

namespace quillon {
namespace {

using Kind = QNShellCompletion::Kind;

constexpr std::size_t kOwnFields = 5;  // of QNFieldName

std::vector<std::string> categoryNames() {
  std::vector<std::string> names;
  for (const std::string& uuid : knownCategoryUUIDs()) names.emplace_back(nameOfCategory(uuid));
  return names;
}

std::vector<std::string> ownFieldNames() {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < kOwnFields; ++i) {
    names.emplace_back(nameOfField(static_cast<QNFieldName>(i)));
  }
  return names;
}

std::vector<std::string> vaultNames(QNStore& store) {
  std::vector<std::string> names;
  const auto vaults = store.vaults();
  if (!vaults) return names;
  for (const QNStoredVaultInfo& vault : vaults.value()) names.push_back(vault.name);
  return names;
}

// As QNVaultFolders::choose() takes them.
std::vector<std::string> folderPaths(const QNOpenVault& open) {
  std::vector<std::string> paths;
  const auto folders = QNVaultFolders::read(*open.store, open.vault);
  if (!folders) return paths;
  for (const QNFolderRef& folder : folders.value().all()) {
    if (auto path = folders.value().pathTo(*folder->uuid())) paths.push_back(std::move(*path));
  }
  return paths;
}

}  // namespace

std::vector<std::string> QNShellNames::of(Kind kind, const std::string& item,
                                          const QNOpenVault* open) {
  if (kind == Kind::category) return categoryNames();
  if (open == nullptr) return kind == Kind::field ? ownFieldNames() : std::vector<std::string>();
  if (kind == Kind::vault) return vaultNames(*open->store);
  if (kind == Kind::folder) return folderPaths(*open);
  if (!_isListed) list(*open);
  if (kind == Kind::tag) return _tags;
  if (kind == Kind::field) return fieldsOf(item, *open);
  std::vector<std::string> titles;
  for (const Item& listed : _items) titles.push_back(listed.title);
  return titles;
}

void QNShellNames::forget() {
  _isListed = false;
  // Short texts lie inside the vectors' blocks, which clear() would keep as they are.
  std::vector<Item>().swap(_items);
  std::vector<std::string>().swap(_tags);
}

void QNShellNames::list(const QNOpenVault& open) {
  forget();
  const auto report = open.store->list(open.vault, QNStore::Which::all,
                                       [this](const std::shared_ptr<QNItem>& item) {
                                         _items.push_back({item->title(), *item->uuid()});
                                         const auto tags = item->tags();
                                         _tags.insert(_tags.end(), tags.begin(), tags.end());
                                       });
  std::sort(_tags.begin(), _tags.end());
  _tags.erase(std::unique(_tags.begin(), _tags.end()), _tags.end());
  _isListed = report.ok();
}

std::vector<std::string> QNShellNames::fieldsOf(const std::string& item,
                                                const QNOpenVault& open) const {
  std::vector<std::string> names = ownFieldNames();
  const auto found = std::find_if(_items.begin(), _items.end(), [&](const Item& listed) {
    return listed.title == item || listed.uuid == item;
  });
  if (found == _items.end()) return names;
  const auto opened = open.store->item(open.vault, found->uuid);
  if (!opened) return names;
  const QNFieldTexts texts(opened.value()->categoryUUID());
  for (const auto& section : opened.value()->fieldSections()) {
    for (const auto& field : section->fields()) {
      names.push_back(texts.titleOf(*field));
      names.push_back(pathOf(*section, *field));
    }
  }
  return names;
}

}  // namespace quillon
