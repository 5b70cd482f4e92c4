#include <bit>

#include "quillon/organisation/predicates/QNComparisonPredicate.h"
#include "quillon/organisation/predicates/QNCompoundPredicate.h"
#include "quillon/organisation/predicates/internal/QNPredicateRun.h"
#include "quillon/platform/archive/QNKeyedArchiver.h"

// A predicate in a keyed archive; whole, with frozen vectors, in docs/formats.md.
//
//   class                    key              kind
//   "QNPredicateArchive"     "predicate"      one of the next three; absent for none
//   "QNConstantPredicate"    "value"          bool
//   "QNCompoundPredicate"    "type"           32-bit integer: NOT 0, AND 1, OR 2
//                            "count"          32-bit integer, of the next
//                            "subpredicates"  list of predicates
//   "QNComparisonPredicate"  "left" "right"   QNExpression
//                            "modifier"       32-bit integer: direct 0, all 1, any 2
//                            "operatorType"   32-bit integer, 0 to 12: QNOperatorType
//                            "options"        32-bit integer: bits c 1, d 2
//   "QNExpression"           "type"           32-bit integer: constant 0, key path 3
//                            "keyPath"        text, of a key path
//                            "kind"           text, of a constant, which tells what "value" is:
//                                             "nil" (none), "bool", "integer" and "date" (64-bit
//                                             integer, two's complement; seconds since 1970),
//                                             "real" (64-bit integer, the bits of IEEE 754), "text"
//                            "count" "values" of the kind "list": number, and list of QNExpression
//
// A list with another number of elements than its count has lost some: it is unreadable, since a
// question that lost a part is another question.

namespace quillon {
namespace {

constexpr std::string_view kArchiveClass = "QNPredicateArchive";
constexpr std::string_view kConstantClass = "QNConstantPredicate";
constexpr std::string_view kCompoundClass = "QNCompoundPredicate";
constexpr std::string_view kComparisonClass = "QNComparisonPredicate";
constexpr std::string_view kExpressionClass = "QNExpression";

constexpr std::string_view kPredicate = "predicate";
constexpr std::string_view kType = "type";
constexpr std::string_view kCount = "count";
constexpr std::string_view kSubpredicates = "subpredicates";
constexpr std::string_view kLeft = "left";
constexpr std::string_view kRight = "right";
constexpr std::string_view kModifier = "modifier";
constexpr std::string_view kOperatorType = "operatorType";
constexpr std::string_view kOptions = "options";
constexpr std::string_view kKeyPath = "keyPath";
constexpr std::string_view kKind = "kind";
constexpr std::string_view kValue = "value";
constexpr std::string_view kValues = "values";

constexpr std::string_view kNilKind = "nil";
constexpr std::string_view kBoolKind = "bool";
constexpr std::string_view kIntegerKind = "integer";
constexpr std::string_view kRealKind = "real";
constexpr std::string_view kDateKind = "date";
constexpr std::string_view kTextKind = "text";
constexpr std::string_view kListKind = "list";

using Coded = std::vector<std::shared_ptr<QNCoding>>;

void encodeList(QNEncoder& coder, const Coded& objects, std::string_view key) {
  coder.encodeInt32(static_cast<std::int32_t>(objects.size()), kCount);
  coder.encodeObjects(objects, key);
}

// Nothing unless all of them are there.
template <class Object>
std::optional<std::vector<std::shared_ptr<Object>>> decodedList(QNDecoder& coder,
                                                                std::string_view key) {
  std::vector<std::shared_ptr<Object>> objects;
  for (const auto& object : coder.decodeObjects(key)) {
    auto known = std::dynamic_pointer_cast<Object>(object);
    if (known == nullptr) return std::nullopt;
    objects.push_back(std::move(known));
  }
  const auto count = coder.decodeInt32(kCount);
  const bool whole = count && *count >= 0 && static_cast<std::size_t>(*count) == objects.size();
  return whole ? std::optional(std::move(objects)) : std::nullopt;
}

// Nothing for a number that isn't one of 0 to `last`.
template <class Enumeration>
std::optional<Enumeration> decodedEnumeration(QNDecoder& coder, std::string_view key,
                                              Enumeration last) {
  const auto number = coder.decodeInt32(key);
  if (!number || *number < 0 || *number > static_cast<std::int32_t>(last)) return std::nullopt;
  return static_cast<Enumeration>(*number);
}

/// An expression on its way into an archive or out of it.
class CodedExpression final : public QNCoding {
 public:
  explicit CodedExpression(QNExpression expression) : expression(std::move(expression)) {}
  std::string_view className() const override { return kExpressionClass; }

  void encodeWithCoder(QNEncoder& coder) override {
    coder.encodeInt32(static_cast<std::int32_t>(expression.expressionType()), kType);
    std::visit(Encoding{coder}, expression.content());
  }

  static std::shared_ptr<QNCoding> initWithCoder(QNDecoder& coder) {
    const auto type = coder.decodeInt32(kType);
    std::optional<QNExpression> made;
    if (type == static_cast<std::int32_t>(QNExpressionType::keyPath)) {
      made = QNExpression::keyPath(coder.decodeString(kKeyPath).value_or(""));
    } else if (type == static_cast<std::int32_t>(QNExpressionType::constantValue)) {
      made = decodedConstant(coder, coder.decodeString(kKind).value_or(""));
    }
    return made ? std::make_shared<CodedExpression>(std::move(*made)) : nullptr;
  }

  QNExpression expression;

 private:
  struct Encoding {
    QNEncoder& coder;
    void kind(std::string_view name) const { coder.encodeString(name, kKind); }
    void operator()(QNExpression::Nil) const { kind(kNilKind); }
    void operator()(bool value) const {
      kind(kBoolKind);
      coder.encodeBool(value, kValue);
    }
    void operator()(std::int64_t value) const {
      kind(kIntegerKind);
      coder.encodeInt64(static_cast<std::uint64_t>(value), kValue);
    }
    void operator()(double value) const {
      kind(kRealKind);
      coder.encodeInt64(std::bit_cast<std::uint64_t>(value), kValue);
    }
    void operator()(std::chrono::sys_seconds value) const {
      kind(kDateKind);
      coder.encodeInt64(static_cast<std::uint64_t>(value.time_since_epoch().count()), kValue);
    }
    void operator()(const std::string& value) const {
      kind(kTextKind);
      coder.encodeString(value, kValue);
    }
    void operator()(const QNExpression::List& elements) const {
      kind(kListKind);
      Coded values;
      for (const auto& it : elements) values.push_back(std::make_shared<CodedExpression>(it));
      encodeList(coder, values, kValues);
    }
    void operator()(const QNKeyPath& keyPath) const {
      coder.encodeString(keyPath.name(), kKeyPath);
    }
  };

  static std::optional<QNExpression> decodedConstant(QNDecoder& coder, std::string_view kind) {
    if (kind == kNilKind) return QNExpression();
    if (kind == kListKind) return decodedListOfConstants(coder);
    if (kind == kTextKind) {
      const auto text = coder.decodeString(kValue);
      return text ? QNExpression::text(*text) : std::nullopt;
    }
    if (kind == kBoolKind) {
      const auto value = coder.decodeBool(kValue);
      return value ? std::optional(QNExpression::boolean(*value)) : std::nullopt;
    }
    const auto bits = coder.decodeInt64(kValue);
    if (!bits) return std::nullopt;
    const auto number = static_cast<std::int64_t>(*bits);
    if (kind == kIntegerKind) return QNExpression::integer(number);
    if (kind == kRealKind) return QNExpression::real(std::bit_cast<double>(*bits));
    if (kind != kDateKind) return std::nullopt;
    return QNExpression::date(std::chrono::sys_seconds(std::chrono::seconds(number)));
  }

  static std::optional<QNExpression> decodedListOfConstants(QNDecoder& coder) {
    const auto values = decodedList<CodedExpression>(coder, kValues);
    if (!values) return std::nullopt;
    QNExpression::List elements;
    for (const auto& value : *values) elements.push_back(value->expression);
    return QNExpression::list(std::move(elements));
  }
};

/// The same for a predicate.
class CodedPredicate final : public QNCoding {
 public:
  explicit CodedPredicate(QNPredicateRef predicate) : predicate(std::move(predicate)) {}

  std::string_view className() const override {
    if (predicate->constantValue()) return kConstantClass;
    return asCompound() != nullptr ? kCompoundClass : kComparisonClass;
  }

  void encodeWithCoder(QNEncoder& coder) override {
    if (const auto value = predicate->constantValue()) {
      coder.encodeBool(*value, kValue);
    } else if (const auto* const compound = asCompound()) {
      encodeCompound(coder, *compound);
    } else {
      encodeComparison(coder, static_cast<const QNComparisonPredicate&>(*predicate));
    }
  }

  static std::shared_ptr<QNCoding> decodedConstant(QNDecoder& coder) {
    const auto value = coder.decodeBool(kValue);
    return value ? coded(QNPredicate::predicateWithValue(*value)) : nullptr;
  }

  static std::shared_ptr<QNCoding> decodedCompound(QNDecoder& coder) {
    const auto type = decodedEnumeration(coder, kType, QNCompoundType::orType);
    const auto parts = decodedList<CodedPredicate>(coder, kSubpredicates);
    if (!type || !parts) return nullptr;
    std::vector<QNPredicateRef> subpredicates;
    for (const auto& part : *parts) subpredicates.push_back(part->predicate);
    return coded(QNCompoundPredicate::compound(*type, std::move(subpredicates)));
  }

  static std::shared_ptr<QNCoding> decodedComparison(QNDecoder& coder) {
    const auto left = std::dynamic_pointer_cast<CodedExpression>(coder.decodeObject(kLeft));
    const auto right = std::dynamic_pointer_cast<CodedExpression>(coder.decodeObject(kRight));
    const auto modifier = decodedEnumeration(coder, kModifier, QNComparisonModifier::any);
    const auto type = decodedEnumeration(coder, kOperatorType, QNOperatorType::between);
    const auto options = coder.decodeInt32(kOptions);
    if (left == nullptr || right == nullptr || !modifier || !type || !options) return nullptr;
    return coded(QNComparisonPredicate::comparison({left->expression, right->expression, *modifier,
                                                    *type, static_cast<std::uint32_t>(*options)}));
  }

  QNPredicateRef predicate;  // never null

 private:
  static std::shared_ptr<QNCoding> coded(QNPredicateRef made) {
    return made == nullptr ? nullptr : std::make_shared<CodedPredicate>(std::move(made));
  }
  const QNCompoundPredicate* asCompound() const {
    return dynamic_cast<const QNCompoundPredicate*>(predicate.get());
  }
  static void encodeCompound(QNEncoder& coder, const QNCompoundPredicate& compound) {
    coder.encodeInt32(static_cast<std::int32_t>(compound.compoundPredicateType()), kType);
    Coded parts;
    for (const auto& part : compound.subpredicates()) {
      parts.push_back(std::make_shared<CodedPredicate>(part));
    }
    encodeList(coder, parts, kSubpredicates);
  }
  static void encodeComparison(QNEncoder& coder, const QNComparisonPredicate& comparison) {
    CodedExpression left(comparison.leftExpression());
    CodedExpression right(comparison.rightExpression());
    coder.encodeObject(left, kLeft);
    coder.encodeObject(right, kRight);
    coder.encodeInt32(static_cast<std::int32_t>(comparison.comparisonPredicateModifier()),
                      kModifier);
    coder.encodeInt32(static_cast<std::int32_t>(comparison.predicateOperatorType()), kOperatorType);
    coder.encodeInt32(static_cast<std::int32_t>(comparison.options()), kOptions);
  }
};

/// The root.
class CodedArchive final : public QNCoding {
 public:
  explicit CodedArchive(std::shared_ptr<CodedPredicate> content) : content(std::move(content)) {}
  std::string_view className() const override { return kArchiveClass; }
  void encodeWithCoder(QNEncoder& coder) override {
    if (content != nullptr) coder.encodeObject(*content, kPredicate);
  }
  static std::shared_ptr<QNCoding> initWithCoder(QNDecoder& coder) {
    auto content = std::dynamic_pointer_cast<CodedPredicate>(coder.decodeObject(kPredicate));
    if (content == nullptr && coder.containsValueForKey(kPredicate)) return nullptr;
    return std::make_shared<CodedArchive>(std::move(content));
  }

  std::shared_ptr<CodedPredicate> content;  // null for none
};

constexpr QNDecodableClass kClasses[] = {
    {kArchiveClass, CodedArchive::initWithCoder},
    {kConstantClass, CodedPredicate::decodedConstant},
    {kCompoundClass, CodedPredicate::decodedCompound},
    {kComparisonClass, CodedPredicate::decodedComparison},
    {kExpressionClass, CodedExpression::initWithCoder},
};

}  // namespace

QNResult<Bytes> QNPredicate::archivedData() const {
  // The archive is written before this returns, and holds nothing of it afterwards.
  const QNPredicateRef self(QNPredicateRef(), this);
  CodedArchive root(std::make_shared<CodedPredicate>(self));
  return QNKeyedArchiver::archivedDataWithRootObject(root);
}

QNResult<QNPredicateRef> QNPredicate::predicateWithArchivedData(ByteView archive) {
  if (archive.size() > kMaxArchiveBytes) return predicateFault("the archive is too large");
  auto root = QNKeyedUnarchiver::unarchivedObjectOfClasses(kClasses, archive);
  if (!root.ok()) return root.error();
  const auto known = std::dynamic_pointer_cast<CodedArchive>(root.value());
  if (known == nullptr) return predicateFault("the archive is of another object");
  return known->content == nullptr ? QNPredicateRef() : known->content->predicate;
}

}  // namespace quillon
