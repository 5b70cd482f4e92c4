// Predicates from text and from archives. What can be made reads back as the same, in either form,
// and asking it ends, with an answer or a fault; without details it never contradicts the whole.
#include <cstdlib>

#include "quillon/organisation/predicates/QNPredicate.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

/// Answers each key path by a value that its length picks; some lie in details.
class Object final : public QNKeyPathSource {
 public:
  std::optional<QNKeyPathValue> valueForKeyPath(const QNKeyPath& keyPath) override {
    switch (keyPath.name().size() % 8) {
      case 0:
        return QNKeyPathValue();
      case 1:
        return QNKeyPathValue(std::int64_t{5});
      case 2:
        return QNKeyPathValue(2.5);
      case 3:
        return QNKeyPathValue(std::chrono::sys_seconds(std::chrono::seconds(1'720'096'205)));
      case 4:
        return QNKeyPathValue(std::string_view("aaaaaaaaaaaaaaaaaaaaaaaaaaaaab"));
      case 5:
        return QNKeyPathValue(QNSecret("Crème Brûlée \xFF ガス"));
      case 6: {
        std::vector<QNSecret> texts;
        for (const char* const text : {"", "Home", "Zürich"}) texts.emplace_back(text);
        return QNKeyPathValue(std::move(texts));
      }
      default:
        return std::nullopt;
    }
  }
  bool needsDetails(const QNKeyPath& keyPath) const override {
    return keyPath.name().size() % 2 == 0;
  }
};

void ask(const QNPredicate& predicate) {
  Object object;
  QNPredicateBudget budget;
  const auto whole = predicate.evaluate(object, budget);
  const auto cheap = predicate.evaluateWithoutDetails(object, budget);
  if (!whole.ok() || !cheap.ok() || cheap.value() == QNTruth::unknown) return;
  require(whole.value() == (cheap.value() == QNTruth::yes));
}

void requireRoundTrips(const QNPredicate& predicate) {
  const auto fromText = QNPredicate::predicateWithFormat(predicate.predicateFormat());
  require(fromText.ok() && fromText.value()->isEqual(predicate));
  const auto archive = predicate.archivedData();
  require(archive.ok());
  const auto fromArchive = QNPredicate::predicateWithArchivedData(archive.value());
  require(fromArchive.ok() && fromArchive.value()->isEqual(predicate));
}

void examine(const QNResult<QNPredicateRef>& read) {
  if (!read.ok()) {
    require(read.error().domainCodeString() == "QNErrorDomain 114");
    return;
  }
  if (read.value() == nullptr) return;
  requireRoundTrips(*read.value());
  ask(*read.value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  examine(QNPredicate::predicateWithFormat(textOf({data, size})));
  examine(QNPredicate::predicateWithArchivedData({data, size}));
  return 0;
}
