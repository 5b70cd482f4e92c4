// Writes version-3.store with the store of version 3. How it was built and run: SOURCES.md.
#include <cstdio>

#include "quillon/logins/QNLogin.h"
#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/sync/QNSyncState.h"
#include "store/QNStore.h"

using namespace quillon;

namespace {

std::shared_ptr<QNSyncState> stateOf(QNObjectType type, std::string uuid, std::uint64_t oid) {
  auto state = std::make_shared<QNSyncState>();
  state->setObjectType(static_cast<std::int32_t>(type));
  state->setObjectUUID(std::move(uuid));
  state->setObjectID(oid);
  state->setSyncedAt(1'700'000'150);
  state->setSourceTimestamp(1'700'000'140);
  state->setLocalTimestamp(1'700'000'100);
  return state;
}

QNResult<QNDone> addSource(QNStore& store, const std::shared_ptr<QNProfile>& vault, QNItem& item) {
  const QNScopedUser user({"ada", "/home/ada/library", "/home/ada/documents"});
  const auto source = std::make_shared<QNSyncSource>(initNew);
  source->setProfile(vault);
  source->setKeychainIdentifier("Dropbox");
  source->setKeychainType("folder");
  source->setRemoteProfileUUID("remote-uuid");
  source->setRemoteProfileTimestamp(1'700'000'140);
  source->setRemoteProfileAttributesEncryptedWithLocal(vault->encryptOverview(Bytes{1, 2, 3}));
  source->setLocalProfileUUID(*vault->uuid());
  source->setLocalProfileTimestamp(1'700'000'150);
  source->setItemStates({stateOf(QNObjectType::item, *item.uuid(), item.oid())});
  source->setFolderStates({stateOf(QNObjectType::folder, "folder-uuid", 4)});
  return store.saveSyncSource(source);
}

/// "Work" with a smart folder in it, and one that was deleted; the item lies in "Work".
QNResult<QNDone> addFolders(QNStore& store, const std::shared_ptr<QNProfile>& vault,
                            const std::shared_ptr<QNItem>& item) {
  const auto folder = [&](std::string_view title) {
    auto made = std::make_shared<QNFolder>(initNew);
    made->setProfile(vault);
    made->setTitle(title);
    made->setCreatedAt(1'700'000'300);
    return made;
  };
  const auto work = folder("Work");
  work->setDisplayOrder(5);
  work->setIconData(Bytes{1, 2, 3});
  const auto smart = folder("Größe");
  smart->setParentUUID(*work->uuid());
  smart->setSmartFolder(true);
  smart->setSmartFolderPredicate(
      QNPredicate::predicateWithFormat("title CONTAINS[cd] \"bank\"").value());
  const auto deleted = folder("Deleted");
  for (const auto& each : {work, smart, deleted}) {
    const auto saved = store.saveFolder(each);
    if (!saved.ok()) return saved.error();
  }
  item->setFolderUUID(*work->uuid());
  const auto moved = store.save(item);
  return moved.ok() ? store.deleteFolder(deleted) : moved.error();
}

QNResult<QNDone> fill(QNStore& store) {
  QNScopedClock clock(1'700'000'000);
  const auto vault = QNProfile::profileWithName("demo", DEMO_PASSWORD, "the usual");
  vault->setLastUpdatedBy("old-machine");
  vault->setProfileColor(QNColor{0.5f, 0.25f, 0.75f, 1.0f});
  const auto saved = store.saveVault(*vault);
  if (!saved.ok()) return saved.error();
  const auto add = [&](std::string_view category, std::string_view title) {
    auto item = vault->newItemForCategoryUUID(category);
    item->setProfile(vault);
    item->setTitle(title);
    return item;
  };
  const auto login = add("001", "Bank");
  login->setUsername("ada");
  login->setPassword("first password");
  login->addURLString("https://www.bank.example/start");
  login->addURLString("https://help.bank.example", "help");
  login->setNotesPlain("mind the gap");
  login->setFaveIndex(7);
  login->setNumberOfTimesUsed(3);
  login->setLastUsedTimestamp(1'699'999'999);
  const auto note = add("003", "Zettel");
  note->setNotesPlain("größer als 1 €");
  note->setScope("Never");
  const auto password = add("005", "Generated");
  password->setPassword("generated password");
  password->setTrashed(true);
  const std::vector<std::shared_ptr<QNItem>> items = {login, note, password};
  const auto all = store.saveAll(items);
  if (!all.ok()) return all.error();
  clock.setSeconds(1'700'000'100);
  login->setPassword("second password");
  const auto again = store.save(login);
  if (!again.ok()) return again.error();
  const auto deleted = add("001", "Deleted");
  deleted->addURLString("https://deleted.example");
  const auto kept = store.save(deleted);
  if (!kept.ok()) return kept.error();
  clock.setSeconds(1'700'000'200);
  const auto gone = store.deleteItem(deleted);
  if (!gone.ok()) return gone.error();
  clock.setSeconds(1'700'000'300);
  const auto placed = addFolders(store, vault, login);
  return placed.ok() ? addSource(store, vault, *login) : placed.error();
}

}  // namespace

int main(int, char** arguments) {
  const auto store = QNStore::create(arguments[1]);
  if (!store.ok() || !fill(*store.value()).ok()) {
    std::fputs("failed\n", stderr);
    return 1;
  }
  return 0;
}
