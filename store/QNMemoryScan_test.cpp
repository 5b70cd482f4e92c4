// After lock and the release of the items, nothing of what was secret is left in the process's
// writable memory. Each scan has its positive control: the same scan while the vault is open.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "quillon/logins/QNLogin.h"
#include "quillon/organisation/QNFolder.h"
#include "quillon/platform/data/MRData.h"
#include "store/QNStore.h"

namespace quillon {
namespace {

constexpr std::uint8_t kMask = 0x5a;

/// A text that this program holds in masked form only.
class Needle {
 public:
  /// Random letters behind a letter that tells what it is.
  Needle(char first, std::size_t length) : _masked(length) {
    fillRandom(_masked);
    for (std::uint8_t& byte : _masked) byte = static_cast<std::uint8_t>(('a' + byte % 26) ^ kMask);
    _masked[0] = static_cast<std::uint8_t>(static_cast<std::uint8_t>(first) ^ kMask);
  }
  /// The text, in memory that wipes itself.
  [[nodiscard]] QNSecret text() const {
    Bytes clear = _masked;
    for (std::uint8_t& byte : clear) byte ^= kMask;
    return QNSecret(textOf(clear));
  }
  [[nodiscard]] std::size_t countIn(ByteView memory) const {
    std::size_t count = 0;
    const std::uint8_t first = _masked[0] ^ kMask;
    const std::uint8_t* at = memory.data();
    const std::uint8_t* const end = memory.data() + memory.size();
    while ((at = static_cast<const std::uint8_t*>(
                std::memchr(at, first, static_cast<std::size_t>(end - at)))) != nullptr) {
      if (matches(at, end)) ++count;
      ++at;
    }
    return count;
  }

 private:
  [[nodiscard]] bool matches(const std::uint8_t* at, const std::uint8_t* end) const {
    if (static_cast<std::size_t>(end - at) < _masked.size()) return false;
    for (std::size_t i = 0; i < _masked.size(); ++i) {
      if ((at[i] ^ kMask) != _masked[i]) return false;
    }
    return true;
  }
  Bytes _masked;
};

/// Copies each writable region of this process, but for the copy itself, and shows it.
template <class Visit>
void forEachWritableRegion(const Visit& visit) {
  constexpr std::size_t kWindow = std::size_t{16} << 20;
  constexpr std::size_t kOverlap = 256;  // longer than any needle
  auto* const window = static_cast<std::uint8_t*>(
      mmap(nullptr, kWindow, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(window, MAP_FAILED);
  const int memory = open("/proc/self/mem", O_RDONLY);
  std::FILE* const maps = std::fopen("/proc/self/maps", "r");
  std::array<char, 4096> line{};
  while (std::fgets(line.data(), line.size(), maps) != nullptr) {
    unsigned long from = 0;
    unsigned long to = 0;
    std::array<char, 5> rights{};
    if (std::sscanf(line.data(), "%lx-%lx %4s", &from, &to, rights.data()) != 3) continue;
    if (rights[0] != 'r' || rights[1] != 'w') continue;
    if (to - from > 1ul << 36) continue;  // the shadow of a sanitizer: terabytes of nothing
    if (from <= reinterpret_cast<unsigned long>(window) &&
        reinterpret_cast<unsigned long>(window) < to) {
      // The kernel may have joined the window to its neighbours: show these.
      visit(ByteView(reinterpret_cast<const std::uint8_t*>(from),
                     reinterpret_cast<unsigned long>(window) - from));
      const unsigned long behind = reinterpret_cast<unsigned long>(window) + kWindow;
      visit(ByteView(reinterpret_cast<const std::uint8_t*>(behind), to - behind));
      continue;
    }
    for (unsigned long at = from; at < to; at += kWindow - kOverlap) {
      const auto read =
          pread(memory, window, std::min<std::size_t>(kWindow, to - at), static_cast<off_t>(at));
      if (read <= 0) break;  // a shadow of a sanitizer, or a page that isn't there
      visit(ByteView(window, static_cast<std::size_t>(read)));
    }
  }
  std::fclose(maps);
  close(memory);
  munmap(window, kWindow);
}

std::size_t occurrences(const Needle& needle) {
  std::size_t count = 0;
  forEachWritableRegion([&](ByteView memory) { count += needle.countIn(memory); });
  return count;
}

class QNMemoryScan : public testing::Test {
 protected:
  void SetUp() override {
    _folder = std::filesystem::temp_directory_path() / ("quillon-scan-" + mr_uuid());
    std::filesystem::create_directories(_folder);
  }
  void TearDown() override { std::filesystem::remove_all(_folder); }
  [[nodiscard]] std::filesystem::path file() const { return _folder / "scan.qn"; }

  // Ten characters fit inside a short string object, forty don't.
  const Needle vaultPassword{'V', 24};
  const Needle shortPassword{'S', 10};
  const Needle longPassword{'L', 40};
  const Needle notes{'N', 60};
  const Needle title{'T', 32};
  const Needle folderTitle{'F', 32};

  [[gnu::noinline]] std::string makeVaultWithLogins() {
    auto store = QNStore::create(file()).value();
    const auto vault = QNProfile::initNewWithPassword(vaultPassword.text().reveal());
    vault->setProfileName("default");
    EXPECT_TRUE(store->saveVault(*vault).ok());
    std::string uuid;
    for (const Needle* const password : {&shortPassword, &longPassword}) {
      const auto login = vault->newItemForCategoryUUID("001");
      login->setProfile(vault);
      login->setTitle(title.text().reveal());
      login->setNotesPlain(notes.text().reveal());
      login->setPassword(password->text().reveal());
      EXPECT_TRUE(store->save(login).ok());
      uuid = *login->uuid();
    }
    for (int i = 0; i < 2; ++i) {
      const auto folder = std::make_shared<QNFolder>(initNew);
      folder->setProfile(vault);
      folder->setTitle(folderTitle.text().reveal());
      EXPECT_TRUE(store->saveFolder(folder).ok());
    }
    vault->lock();
    return uuid;
  }

  /// Opens everything, scans, releases, locks.
  [[gnu::noinline]] void openScanAndLock(const std::string& longUuid) {
    auto store = QNStore::open(file()).value();
    auto vault = store->vaultNamed("default").value();
    ASSERT_TRUE(store->unlock(*vault, vaultPassword.text().reveal()).value());
    std::vector<std::shared_ptr<QNItem>> items;
    ASSERT_TRUE(
        store->list(vault, QNStore::Which::normal, [&](const auto& item) { items.push_back(item); })
            .ok());
    for (const auto& item : items) {
      ASSERT_TRUE(store->loadDetails(item).ok());
      ASSERT_TRUE(item->password().has_value());
    }
    auto folders = store->folders(vault).value();
    ASSERT_EQ(folders.top.size(), 2u);
    EXPECT_GT(occurrences(folderTitle), 0u);
    // An edit and a save: the history takes the old password in.
    const auto edited = store->item(vault, longUuid).value();
    edited->setPassword(shortPassword.text().reveal());
    ASSERT_TRUE(store->save(edited).ok());
    EXPECT_GT(occurrences(shortPassword), 0u);
    EXPECT_GT(occurrences(longPassword), 0u);
    EXPECT_GT(occurrences(notes), 0u);
    EXPECT_GT(occurrences(title), 0u);
    items.clear();
    folders = QNFolderReport();
    vault->lock();
  }

  [[gnu::noinline]] void tryWrongPassword(const Needle& wrong) {
    auto store = QNStore::open(file()).value();
    auto vault = store->vaultNamed("default").value();
    const QNSecret typed = wrong.text();
    EXPECT_GT(occurrences(wrong), 0u);
    EXPECT_FALSE(store->unlock(*vault, typed.reveal()).value());
  }

 private:
  std::filesystem::path _folder;
};

TEST_F(QNMemoryScan, FindsNoSecretAfterLockAndReleaseOfTheItems) {
  const std::string uuid = makeVaultWithLogins();

  openScanAndLock(uuid);

  EXPECT_EQ(occurrences(vaultPassword), 0u);
  EXPECT_EQ(occurrences(shortPassword), 0u);
  EXPECT_EQ(occurrences(longPassword), 0u);
  EXPECT_EQ(occurrences(notes), 0u);
  EXPECT_EQ(occurrences(title), 0u);
  EXPECT_EQ(occurrences(folderTitle), 0u);
}

TEST_F(QNMemoryScan, FindsNothingOfAWrongPassword) {
  makeVaultWithLogins();
  const Needle wrong('W', 24);

  tryWrongPassword(wrong);

  EXPECT_EQ(occurrences(wrong), 0u);
  EXPECT_EQ(occurrences(vaultPassword), 0u);
}

}  // namespace
}  // namespace quillon
