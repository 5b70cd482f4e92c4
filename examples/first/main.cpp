#include <iostream>

#include "quillon/logins/QNLogin.h"
#include "store/QNStore.h"

using namespace quillon;

int main() {
  auto store = QNStore::create("first.qn").value();
  auto vault = QNProfile::profileWithName("default", "a long sentence of mine", "mine");
  if (!store->saveVault(*vault)) return 1;

  auto login = vault->newItemForCategoryUUID("001");
  login->setProfile(vault);  // gives it its uuid
  login->setTitle("Example");
  login->addURLString("https://example.com/login");
  login->setUsername("jo");
  login->setPassword("correct horse battery staple");
  if (!store->save(login)) return 1;

  const auto listed = store->list(vault, QNStore::Which::normal, [](const auto& item) {
    std::cout << item->title() << '\n';  // overviews only: no secret is opened
  });
  vault->lock();
  return listed ? 0 : 1;
}
