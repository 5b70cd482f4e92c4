#pragma once
// For tests: an object of any key paths, and questions in short.

#include <functional>
#include <map>
#include <set>

#include "quillon/organisation/predicates/QNComparisonPredicate.h"
#include "quillon/organisation/predicates/QNCompoundPredicate.h"
#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// Answers what it was given; what isn't in it, it doesn't have.
class QNSampleObject final : public QNKeyPathSource {
 public:
  std::optional<QNKeyPathValue> valueForKeyPath(const QNKeyPath& keyPath) override {
    ++numberOfQuestions;
    const auto found = _answers.find(keyPath.name());
    if (found == _answers.end()) return std::nullopt;
    return found->second();
  }
  bool needsDetails(const QNKeyPath& keyPath) const override {
    return inDetails.contains(keyPath.name());
  }

  QNSampleObject& with(const std::string& name, std::function<QNKeyPathValue()> answer) {
    _answers[name] = std::move(answer);
    return *this;
  }
  QNSampleObject& withText(const std::string& name, std::string text) {
    return with(name, [text = std::move(text)] { return QNKeyPathValue(QNSecret(text)); });
  }
  QNSampleObject& withNumber(const std::string& name, std::int64_t number) {
    return with(name, [number] { return QNKeyPathValue(number); });
  }
  QNSampleObject& withNothing(const std::string& name) {
    return with(name, [] { return QNKeyPathValue(); });
  }
  QNSampleObject& withTexts(const std::string& name, std::vector<std::string> texts) {
    return with(name, [texts = std::move(texts)] {
      std::vector<QNSecret> secrets;
      for (const auto& text : texts) secrets.emplace_back(text);
      return QNKeyPathValue(std::move(secrets));
    });
  }

  std::set<std::string> inDetails;
  int numberOfQuestions = 0;

 private:
  std::map<std::string, std::function<QNKeyPathValue()>> _answers;
};

inline QNPredicateRef predicate(std::string_view format) {
  return QNPredicate::predicateWithFormat(format).value();
}

/// "yes", "no", or the error's message.
inline std::string answer(QNKeyPathSource& object, std::string_view format) {
  const auto made = QNPredicate::predicateWithFormat(format);
  if (!made.ok()) return made.error().message;
  const auto found = made.value()->evaluate(object);
  if (!found.ok()) return found.error().message;
  return found.value() ? "yes" : "no";
}

}  // namespace quillon
