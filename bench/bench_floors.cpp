#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/evp.h>
#include <openssl/sha.h>
#include <sqlite3.h>

#include <array>
#include <boost/json.hpp>

#include "bench/bench.h"

namespace quillon::bench {
namespace {

// Reads every row of a list with SQLite alone, and gives the overviews' sizes back.
std::vector<std::size_t> readRows(const std::filesystem::path& file) {
  sqlite3* db = nullptr;
  sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(db, "SELECT * FROM items WHERE status = 0", -1, &statement, nullptr);
  int overview = 0;
  for (int i = 0; i < sqlite3_column_count(statement); ++i) {
    if (std::string_view(sqlite3_column_name(statement, i)) == "overview") overview = i;
  }
  std::vector<std::size_t> sizes;
  while (sqlite3_step(statement) == SQLITE_ROW) {
    for (int i = 0; i < sqlite3_column_count(statement); ++i)
      use(sqlite3_column_blob(statement, i));
    sizes.push_back(static_cast<std::size_t>(sqlite3_column_bytes(statement, overview)));
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  return sizes;
}

double openSeconds(const std::vector<std::size_t>& sizes) {
  const std::array<std::uint8_t, 32> key{1};
  std::array<std::uint8_t, 12> nonce{2};
  std::array<std::uint8_t, 16> tag{};
  std::vector<std::uint8_t> text(4096), sealed(4096);
  EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
  EVP_DecryptInit_ex(context, EVP_aes_256_gcm(), nullptr, key.data(), nonce.data());
  const double seconds = secondsOf([&] {
    for (const std::size_t size : sizes) {
      int written = 0;
      nonce[0] = static_cast<std::uint8_t>(size);
      EVP_DecryptInit_ex(context, nullptr, nullptr, nullptr, nonce.data());
      EVP_DecryptUpdate(context, text.data(), &written, sealed.data(),
                        static_cast<int>(std::min<std::size_t>(size, sealed.size())));
      EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_TAG, 16, tag.data());
      EVP_DecryptFinal_ex(context, text.data() + written, &written);  // the tag is wrong on purpose
    }
  });
  EVP_CIPHER_CTX_free(context);
  use(text.data());
  return seconds;
}

void hash(const std::uint8_t* bytes, std::size_t size, std::uint8_t* digest) {
  SHA256_CTX context;
  SHA256_Init(&context);
  SHA256_Update(&context, bytes, size);
  SHA256_Final(digest, &context);
}

double sealSeconds(const std::vector<std::size_t>& sizes) {
  constexpr std::size_t kRowBytes = 250;  // identity, place, revision, two hashes
  std::vector<std::uint8_t> bytes(4096, 7);
  std::array<std::uint8_t, 32> digest{};
  return secondsOf([&] {
    for (const std::size_t size : sizes) {
      hash(bytes.data(), std::min(size, bytes.size()), digest.data());
      hash(bytes.data(), 64 + kRowBytes, digest.data());  // the inner hash of HMAC
      hash(bytes.data(), 64 + 32, digest.data());         // the outer one
    }
    use(digest.data());
  });
}

}  // namespace

void use(const void* result) {
  asm volatile("" : : "r"(result) : "memory");
}

ListFloors measureListFloors(BenchStore& store) {
  ListFloors floors;
  std::vector<std::size_t> sizes;
  floors.rowRead = bestSecondsOf(3, [&] { sizes = readRows(store.file()); });
  std::vector<std::string> texts;
  texts.reserve(sizes.size());
  const auto listed = store.store().list(
      store.vault(), QNStore::Which::normal, [&](const std::shared_ptr<QNItem>& item) {
        texts.push_back(boost::json::serialize(*item->mutableOverview()));
      });
  if (!listed.ok()) std::abort();
  floors.open = bestSecondsOf(3, [&] { floors.open = openSeconds(sizes); });
  floors.parse = bestSecondsOf(3, [&] {
    for (const std::string& text : texts) {
      const boost::json::value value = boost::json::parse(text);
      use(&value);
    }
  });
  floors.seal = bestSecondsOf(3, [&] { floors.seal = sealSeconds(sizes); });
  return floors;
}

}  // namespace quillon::bench
