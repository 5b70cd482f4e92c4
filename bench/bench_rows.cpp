#include <fmt/format.h>
#include <openssl/evp.h>

#include <boost/json.hpp>

#include "bench/bench.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon::bench {
namespace {

constexpr int kRounds = 2000;

template <class Work>
double microseconds(const Work& work) {
  const double best = bestSecondsOf(5, [&work] {
    for (int i = 0; i < kRounds; ++i) work();
  });
  return best * 1e6 / kRounds;
}

void print(std::string_view name, double whole, std::string_view floorName, double floor) {
  fmt::print("rows {}: {:.1f} us; {} alone {:.1f} us (x{:.2f})\n", name, whole, floorName, floor,
             whole / floor);
}

// As after a save: nothing is dirty, and an archive takes the sealed forms as they are.
std::shared_ptr<QNItem> savedLogin(const std::shared_ptr<QNProfile>& vault) {
  auto login = makeLogin(vault, 1);
  login->willSave();
  login->_setOid(11);
  login->didSave();
  for (const auto& url : login->URLs()) {
    url->willSave();
    url->didSave();
  }
  return login;
}

void benchRow(const std::shared_ptr<QNProfile>& vault) {
  const auto login = savedLogin(vault);
  const std::string text(textOf(*mr_JSONDataWithError(login->allAttributes())));
  const boost::json::value parsed = boost::json::parse(text);
  print(fmt::format("out, {} bytes", text.size()),
        microseconds([&] { use(mr_JSONDataWithError(login->allAttributes())->data()); }),
        "writing JSON", microseconds([&] { use(boost::json::serialize(parsed).data()); }));
  print("in, a new item", microseconds([&] {
          const auto row = mr_objectFromJSONDataWithError(bytesOf(text));
          use(QNItem::itemWithAttributes(*row, vault).get());
        }),
        "reading JSON", microseconds([&] { use(boost::json::parse(text).if_object()); }));
}

void benchArchive(const std::shared_ptr<QNProfile>& vault) {
  const auto login = savedLogin(vault);
  const Bytes archive = QNKeyedArchiver::archivedDataWithRootObject(*login).value();
  const std::string text(textOf(archive));
  const boost::json::value parsed = boost::json::parse(text);
  print(fmt::format("archive, {} bytes", text.size()), microseconds([&] {
          use(QNKeyedArchiver::archivedDataWithRootObject(*login).value().data());
        }),
        "writing JSON", microseconds([&] { use(boost::json::serialize(parsed).data()); }));
  print("unarchive", microseconds([&] {
          const auto classes = QNItem::decodableClasses();
          use(QNKeyedUnarchiver::unarchivedObjectOfClasses(classes, archive).value().get());
        }),
        "reading JSON", microseconds([&] { use(boost::json::parse(text).if_object()); }));
}

void benchFingerprint(const std::shared_ptr<QNProfile>& vault) {
  const auto item = savedLogin(vault);
  item->copyDetails(*mr_objectFromJSONStringWithError(detailsOfManyFields()));
  const std::string text = item->fingerprint_jsonString().value();
  const boost::json::value parsed = boost::json::parse(text);
  print(fmt::format("fingerprint, 40 fields, {} bytes", text.size()),
        microseconds([&] { use(item->fingerprint_fingerprint()->data()); }),
        "writing JSON and SHA-256", microseconds([&] {
          const std::string written = boost::json::serialize(parsed);
          unsigned char hash[32];
          EVP_Digest(written.data(), written.size(), hash, nullptr, EVP_sha256(), nullptr);
          use(hash);
        }));
}

}  // namespace

void benchRows() {
  BenchStore store;
  benchRow(store.vault());
  benchArchive(store.vault());
  benchFingerprint(store.vault());
}

}  // namespace quillon::bench
