#pragma once
// What the tests of this folder share: a folder of their own, a store with the demonstration
// vault, and items.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "store/QNStore.h"

namespace quillon {

/// A folder that is there as long as the object.
class TemporaryFolder final {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "quillon-store-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    _path = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::filesystem::path operator/(std::string_view name) const { return _path / name; }
  [[nodiscard]] const std::filesystem::path& path() const { return _path; }

 private:
  std::filesystem::path _path;
};

inline std::string bytesOfFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void writeFile(const std::filesystem::path& file, std::string_view bytes) {
  std::ofstream(file, std::ios::binary)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline constexpr std::string_view kVaultName = "demo";

/// An open store and its unlocked vault, as two objects that a session holds.
struct Session {
  std::unique_ptr<QNStore> store;
  std::shared_ptr<QNProfile> vault;
};

/// A new file with the demonstration vault.
inline Session makeSession(const std::filesystem::path& file) {
  Session session;
  session.store = std::move(QNStore::create(file)).value();
  session.vault = QNProfile::profileWithName(kVaultName, DEMO_PASSWORD, "the usual");
  if (!session.store->saveVault(*session.vault).ok()) std::abort();
  return session;
}

inline Session openSession(const std::filesystem::path& file,
                           QNStore::Access access = QNStore::Access::readWrite) {
  Session session;
  session.store = std::move(QNStore::open(file, access)).value();
  session.vault = std::move(session.store->vaultNamed(kVaultName)).value();
  if (!session.store->unlock(*session.vault, DEMO_PASSWORD).value()) std::abort();
  return session;
}

/// A new login, not saved yet.
inline std::shared_ptr<QNItem> makeLogin(const std::shared_ptr<QNProfile>& vault,
                                         std::string_view title,
                                         std::string_view url = "https://www.example.com/login",
                                         std::string_view password = "correct horse") {
  auto item = vault->newItemForCategoryUUID(QNCategoryUUIDLogin);
  item->setProfile(vault);
  item->setTitle(title);
  item->setUsername("ada");
  item->setPassword(password);
  if (!url.empty()) item->addURLString(url);
  return item;
}

inline std::shared_ptr<QNItem> savedLogin(Session& session, std::string_view title,
                                          std::string_view url = "https://www.example.com/login",
                                          std::string_view password = "correct horse") {
  auto item = makeLogin(session.vault, title, url, password);
  const auto saved = session.store->save(item);
  EXPECT_TRUE(saved.ok()) << saved.error().message;
  return item;
}

inline std::vector<std::string> titlesIn(Session& session,
                                         QNStore::Which which = QNStore::Which::normal) {
  std::vector<std::string> titles;
  const auto listed = session.store->list(
      session.vault, which, [&titles](const auto& item) { titles.push_back(item->title()); });
  EXPECT_TRUE(listed.ok()) << listed.error().message;
  if (listed.ok()) {
    EXPECT_TRUE(listed.value().damaged.empty());
    EXPECT_FALSE(listed.value().ledgerBroken);
  }
  return titles;
}

inline std::vector<std::string> problemsIn(Session& session) {
  const auto checked = session.store->check(session.vault);
  if (!checked.ok()) return {checked.error().message};
  return checked.value().problems;
}

/// An item read anew from the file, through a session of its own.
inline std::shared_ptr<QNItem> reread(const std::filesystem::path& file, std::string_view uuid) {
  Session session = openSession(file);
  auto item = session.store->item(session.vault, uuid);
  EXPECT_TRUE(item.ok()) << item.error().message;
  return item.ok() ? item.value() : nullptr;
}

/// "" for success, so that a failed expectation shows the error.
template <class Value>
std::string errorOf(const QNResult<Value>& result) {
  return result.ok() ? "" : result.error().domainCodeString();
}

inline std::string codeText(QNStoreErrorCode code) {
  return storeError(code, "").domainCodeString();
}

}  // namespace quillon
