// Writes version-1.store with the store of version 1. How it was built and run: SOURCES.md.
#include <cstdio>

#include "quillon/logins/QNLogin.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "store/QNStore.h"

using namespace quillon;

namespace {

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
  return store.save(login);
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
