#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "quillon/organisation/predicates/QNKeyPathSource.h"
#include "quillon/organisation/predicates/QNPredicateBudget.h"
#include "quillon/platform/errors/QNError.h"
#include "quillon/platform/memory/QNBytes.h"

namespace quillon {

class QNExpression;
class QNPredicate;
class QNPredicateRun;
class QNPredicateText;
using QNPredicateRef = std::shared_ptr<const QNPredicate>;

/// What part of a question says where not all of it may be looked at.
enum class QNTruth { no, yes, unknown };

/// A question about an object, which answers it by its key paths. Never changed; shared by whoever
/// holds it, and asked from any thread. Made from text, from an archive, or from its parts
/// (QNCompoundPredicate, QNComparisonPredicate). README.md has the text's grammar.
class QNPredicate {
 public:
  /// Limits of every predicate, however it is made: compounds within compounds, and the length of
  /// the text form in bytes. What is larger isn't made.
  static constexpr std::size_t kMaxDepth = 12;
  static constexpr std::size_t kMaxTextBytes = std::size_t{64} << 10;
  /// A larger archive is refused before it is read. No predicate within the other limits has one: a
  /// byte of text form takes 25 at most, in "1 < 1 OR 1 < 1 ...".
  static constexpr std::size_t kMaxArchiveBytes = 32 * kMaxTextBytes;

  virtual ~QNPredicate() = default;
  QNPredicate(const QNPredicate&) = delete;
  QNPredicate& operator=(const QNPredicate&) = delete;

  // Text: QNPredicate+Parsing.cpp, QNPredicateText.cpp
  /// Reads the text form. Each "%@" in it stands for the next of `arguments`. Error 114 of
  /// QNErrorDomain tells what is wrong and at which byte; never what was read.
  static QNResult<QNPredicateRef> predicateWithFormat(std::string_view format,
                                                      std::span<const QNExpression> arguments = {});
  /// TRUEPREDICATE or FALSEPREDICATE.
  static QNPredicateRef predicateWithValue(bool value);
  /// The text form, which reads back as an equal predicate. It holds what is searched for.
  [[nodiscard]] std::string predicateFormat() const;
  /// The same with "…" for every text that is searched for: for logs, which hold no such thing.
  [[nodiscard]] std::string predicateFormatForLogging() const;

  // Archive: QNPredicate+Archive.cpp
  /// Error 114 of QNErrorDomain where the archiver refuses it. In clear: seal it.
  [[nodiscard]] QNResult<Bytes> archivedData() const;
  /// Null for an archive that holds no predicate. Error 114 of QNErrorDomain: not an archive of
  /// ours, larger than kMaxArchiveBytes, or a predicate in it that can't be made, down to its last
  /// part.
  static QNResult<QNPredicateRef> predicateWithArchivedData(ByteView archive);

  // Asking: QNPredicate.cpp. Nobody may change the object meanwhile.
  /// The answer. Error 114 of QNErrorDomain: a key path that the object doesn't have, a pattern
  /// that is none, or more work than the budget allows.
  [[nodiscard]] QNResult<bool> evaluate(QNKeyPathSource& source) const;
  /// For many objects: one budget serves all.
  [[nodiscard]] QNResult<bool> evaluate(QNKeyPathSource& source, QNPredicateBudget& budget) const;
  /// What follows from overview and row columns alone, with no details opened; `unknown` if that
  /// doesn't settle it.
  [[nodiscard]] QNResult<QNTruth> evaluateWithoutDetails(QNKeyPathSource& source,
                                                         QNPredicateBudget& budget) const;
  /// Does it ask an item of a local vault for what overview and row columns alone can't answer?
  [[nodiscard]] virtual bool needsDetails() const = 0;
  /// Nothing if an item has every key path in it and every pattern is one: asked once, before many
  /// items are. Else the error that evaluate() would give.
  [[nodiscard]] virtual std::optional<QNError> faultForItems() const = 0;

  /// The same question in the same words: order and options count.
  [[nodiscard]] virtual bool isEqual(const QNPredicate& other) const = 0;
  /// What predicateWithValue() was given; nothing for any other predicate.
  [[nodiscard]] virtual std::optional<bool> constantValue() const { return std::nullopt; }
  /// Compounds on the longest way down; 0 for one that is none.
  [[nodiscard]] virtual std::size_t depth() const { return 0; }

  // For the kinds of predicates
  [[nodiscard]] virtual QNTruth truth(QNPredicateRun& run) const = 0;
  /// Appends the text form.
  virtual void describe(QNPredicateText& text) const = 0;

 protected:
  QNPredicate() = default;
  /// Null if `predicate` is beyond a limit.
  static QNPredicateRef withinLimits(QNPredicateRef predicate);
};

}  // namespace quillon
