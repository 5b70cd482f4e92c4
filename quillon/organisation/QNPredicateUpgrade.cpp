#include "quillon/organisation/internal/QNPredicateUpgrade.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {
namespace {

struct KeyPathPair {
  std::string_view old, present;
};

constexpr std::array<std::string_view, 2> kKeyPathsWithoutConversion = {"title", "username"};

// One of the elements must fit: these were texts, and are lists now.
constexpr std::array kKeyPathsMappedToAny = {
    KeyPathPair{"tagsForSearch", "tagsForSearch"},
    KeyPathPair{"tags", "tagsForSearch"},
    KeyPathPair{"contentsForFullSearch", "allValuesForSearch"},
    KeyPathPair{"location", "URLStringsForSearch"},
};

constexpr std::array kKeyPathsMappedNoChange = {
    KeyPathPair{"passwordForSearch", "password"},
    KeyPathPair{"createdAt", "createdAtAsDate"},
    KeyPathPair{"updatedAt", "updatedAtAsDate"},
    KeyPathPair{"notesPlainText", "notesPlain"},
};

struct OldStrength {
  std::string_view keyPath;
  std::int64_t strength;
};
constexpr std::array kOldStrengths = {
    OldStrength{"mr_number10", 10},   OldStrength{"mr_number20", 20},
    OldStrength{"mr_number35", 35},   OldStrength{"mr_number40", 40},
    OldStrength{"mr_number60", 60},   OldStrength{"mr_number90", 90},
    OldStrength{"mr_number100", 100},
};
// The weakest that a question asks for; anything below meant it.
constexpr std::int64_t kLeastStrength = 20;

struct OldCategory {
  std::string_view name, uuid;
};
constexpr std::array kOldCategories = {
    OldCategory{"Logins", QNCategoryUUIDLogin},
    OldCategory{"webforms.WebForm", QNCategoryUUIDLogin},
    OldCategory{"securenotes.SecureNote", QNCategoryUUIDSecureNote},
    OldCategory{"identities.Identity", QNCategoryUUIDIdentity},
    OldCategory{"passwords.Password", QNCategoryUUIDPassword},
    OldCategory{"system.Tombstone", QNCategoryUUIDTombstone},
    OldCategory{"wallet.financial.CreditCard", QNCategoryUUIDCreditCard},
    OldCategory{"wallet.computer.License", QNCategoryUUIDSoftwareLicense},
    OldCategory{"wallet.financial.BankAccountUS", QNCategoryUUIDBankAccount},
    OldCategory{"wallet.computer.Database", QNCategoryUUIDDatabase},
    OldCategory{"wallet.government.DriversLicense", QNCategoryUUIDDriverLicense},
    OldCategory{"wallet.government.HuntingLicense", QNCategoryUUIDOutdoorLicense},
    OldCategory{"wallet.membership.Membership", QNCategoryUUIDMembership},
    OldCategory{"wallet.government.Passport", QNCategoryUUIDPassport},
    OldCategory{"wallet.membership.RewardProgram", QNCategoryUUIDRewards},
    OldCategory{"wallet.government.SsnUS", QNCategoryUUIDSocialSecurityNumber},
    OldCategory{"wallet.computer.Router", QNCategoryUUIDRouter},
    OldCategory{"wallet.computer.UnixServer", QNCategoryUUIDServer},
    OldCategory{"wallet.onlineservices.Email.v2", QNCategoryUUIDEmail},
};

constexpr std::string_view kCategoryName = "categoryName";
constexpr std::string_view kPasswordStrength = "passwordStrength";
constexpr std::string_view kHasAttachmentString = "hasAttachmentString";
constexpr std::string_view kNumberOfAttachments = "numberOfAttachments";
constexpr std::array<std::string_view, 2> kKeyPathsDropped = {"securityLevel", "trashed"};
constexpr std::string_view kNoFolderText = R"(folderTitle ==[cd] "")";
constexpr std::string_view kExistingText = R"(existingString == "YES")";

template <class Table>
const KeyPathPair* pairFor(const Table& table, std::string_view old) {
  const auto* const found = std::find_if(table.begin(), table.end(),
                                         [old](const KeyPathPair& it) { return it.old == old; });
  return found == table.end() ? nullptr : found;
}

bool isIn(const std::array<std::string_view, 2>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

QNExpression keyPathExpression(std::string_view name) {
  return *QNExpression::keyPath(name);
}

// A text is its own text form here: who wrote "NO" or "35" in quotes meant them.
std::string textOf(const QNExpression& expression) {
  const auto* const text = std::get_if<std::string>(&expression.content());
  return text != nullptr ? *text : expression.description();
}

// The whole number that a text begins with; 0 without one, and the nearest that 64 bits hold.
std::int64_t integerValue(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\r");
  if (start == std::string_view::npos) return 0;
  text.remove_prefix(start);
  const bool isNegative = text.front() == '-';
  if (text.front() == '+') text.remove_prefix(1);
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc::result_out_of_range) return number;
  using Limits = std::numeric_limits<std::int64_t>;
  return isNegative ? Limits::min() : Limits::max();
}

QNPredicateRef upgradedStrength(const QNComparisonPredicate::Parts& parts) {
  const QNKeyPath* const keyPath = parts.right.asKeyPath();
  const std::int64_t strength =
      keyPath != nullptr ? QNPredicateUpgrade::passwordStrengthForKeyPath(keyPath->name())
                         : integerValue(textOf(parts.right));
  return QNComparisonPredicate::comparison(
      {keyPathExpression(kPasswordStrength),
       QNExpression::integer(std::max(strength, kLeastStrength)), QNComparisonModifier::direct,
       parts.operatorType, 0});
}

QNPredicateRef upgradedAttachments(const QNComparisonPredicate::Parts& parts) {
  const bool wantsNone = textOf(parts.right) == "NO";
  return QNComparisonPredicate::comparison(
      {keyPathExpression(kNumberOfAttachments), QNExpression::integer(0),
       QNComparisonModifier::direct,
       wantsNone ? QNOperatorType::equalTo : QNOperatorType::greaterThan, 0});
}

}  // namespace

std::int64_t QNPredicateUpgrade::passwordStrengthForKeyPath(std::string_view keyPath) {
  const auto* const found =
      std::find_if(kOldStrengths.begin(), kOldStrengths.end(),
                   [keyPath](const OldStrength& it) { return it.keyPath == keyPath; });
  return found == kOldStrengths.end() ? 0 : found->strength;
}

std::optional<std::string> QNPredicateUpgrade::categoryUUIDForName(std::string_view name) {
  const auto* const found = std::find_if(kOldCategories.begin(), kOldCategories.end(),
                                         [name](const OldCategory& it) { return it.name == name; });
  if (found == kOldCategories.end()) return std::nullopt;
  return std::string(found->uuid);
}

QNResult<QNPredicateRef> QNPredicateUpgrade::upgraded(const QNPredicateRef& predicate) const {
  if (const auto* const compound = dynamic_cast<const QNCompoundPredicate*>(predicate.get())) {
    return upgradedCompound(predicate, *compound);
  }
  const auto* const comparison = dynamic_cast<const QNComparisonPredicate*>(predicate.get());
  if (comparison == nullptr || comparison->leftExpression().asKeyPath() == nullptr) {
    return unconverted(predicate);
  }
  return upgradedComparison(predicate, comparison->parts());
}

QNResult<QNPredicateRef> QNPredicateUpgrade::upgradedCompound(
    const QNPredicateRef& predicate, const QNCompoundPredicate& compound) const {
  std::vector<QNPredicateRef> survivors;
  for (const auto& part : compound.subpredicates()) {
    auto made = upgraded(part);
    if (!made.ok()) return made;
    if (made.value() != nullptr) survivors.push_back(std::move(made).value());
  }
  const QNCompoundType type = compound.compoundPredicateType();
  if (type == QNCompoundType::notType && survivors.size() != 1) {
    return QNError{std::string(QNErrorDomain), kErrorUnreadableData,
                   "a NOT over a condition that has no meaning any more"};
  }
  return madeOf(predicate, QNCompoundPredicate::compound(type, std::move(survivors)));
}

// Where a key path stands in an earlier table, no later one is looked at.
QNPredicateRef QNPredicateUpgrade::upgradedComparison(const QNPredicateRef& predicate,
                                                      const Parts& parts) const {
  const std::string_view old = parts.left.asKeyPath()->name();
  if (isIn(kKeyPathsWithoutConversion, old)) return predicate;
  if (const auto* const pair = pairFor(kKeyPathsMappedToAny, old)) {
    return madeOf(predicate, QNComparisonPredicate::comparison(
                                 {keyPathExpression(pair->present), parts.right,
                                  QNComparisonModifier::any, parts.operatorType, parts.options}));
  }
  if (const auto* const pair = pairFor(kKeyPathsMappedNoChange, old)) {
    return madeOf(predicate, QNComparisonPredicate::comparison(
                                 {keyPathExpression(pair->present), parts.right, parts.modifier,
                                  parts.operatorType, parts.options}));
  }
  if (old == kCategoryName) return upgradedCategory(predicate, parts);
  if (old == kPasswordStrength) return upgradedStrength(parts);
  if (old == kHasAttachmentString) return upgradedAttachments(parts);
  if (isIn(kKeyPathsDropped, old)) return nullptr;
  return upgradedOther(predicate);
}

QNPredicateRef QNPredicateUpgrade::upgradedCategory(const QNPredicateRef& predicate,
                                                    const Parts& parts) const {
  const auto* const name = std::get_if<std::string>(&parts.right.content());
  const auto uuid = name != nullptr ? categoryUUIDForName(*name) : std::nullopt;
  if (!uuid) {
    report("Unknown category name in predicate: {}", predicate);
    return nullptr;
  }
  const QNExpression arguments[] = {*QNExpression::text(*uuid)};
  return QNPredicate::predicateWithFormat("categoryUUID = %@", arguments).value();
}

// Equal predicates are those of one text form, of which no copy is left behind this way.
QNPredicateRef QNPredicateUpgrade::upgradedOther(const QNPredicateRef& predicate) const {
  const auto isWritten = [&predicate](std::string_view text) {
    return predicate->isEqual(*QNPredicate::predicateWithFormat(text).value());
  };
  if (isWritten(kNoFolderText)) return QNPredicate::predicateWithFormat("folderUUID==NIL").value();
  if (isWritten(kExistingText)) return nullptr;
  return unconverted(predicate);
}

QNPredicateRef QNPredicateUpgrade::madeOf(const QNPredicateRef& predicate,
                                          QNPredicateRef made) const {
  return made != nullptr ? made : unconverted(predicate);
}

QNPredicateRef QNPredicateUpgrade::unconverted(const QNPredicateRef& predicate) const {
  report("Could not convert predicate: {}", predicate);
  return nullptr;
}

// Without the texts that are searched for: they may be what somebody hides.
void QNPredicateUpgrade::report(std::string_view text, const QNPredicateRef& predicate) const {
  if (!_object) return;
  const MRLogText place(text, __builtin_FILE(), __builtin_LINE(),
                        "upgradeSmartFolderPredicateFormat");
  MRLogger::sharedLogger().error(
      DEBUG_DATABASE, *_object, place,
      predicate == nullptr ? "(null)" : predicate->predicateFormatForLogging());
}

}  // namespace quillon
