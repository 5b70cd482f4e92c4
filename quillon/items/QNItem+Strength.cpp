#include <algorithm>
#include <cmath>

#include "quillon/items/internal/QNItemState.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/passwords/QNSPG.h"

// Strengths are whole numbers on a scale of 0 to 100, stored in the overview so that a list
// shows them without the password.

namespace quillon {
namespace {

// Entropies closer than this, in bits, count as the same.
constexpr double kSameEntropy = 0.1;
// A strength below this is made again at each save: it may stand for one that failed.
constexpr std::int16_t kLeastKeptStrength = 1;

std::optional<double> numberOf(const Json* value) {
  if (value == nullptr) return std::nullopt;
  if (const auto* const number = value->if_double()) return *number;
  if (const auto* const number = value->if_int64()) return static_cast<double>(*number);
  if (const auto* const number = value->if_uint64()) return static_cast<double>(*number);
  return std::nullopt;
}

bool saysYes(const Json* value) {
  if (value != nullptr && value->is_bool()) return value->get_bool();
  return numberOf(value).value_or(0) != 0;
}

std::int16_t cutTo16Bits(double number) {
  using Limits = std::numeric_limits<std::int16_t>;
  return static_cast<std::int16_t>(std::clamp<double>(number, Limits::min(), Limits::max()));
}

std::int16_t strengthWithBitsEntropy(double bits) {
  return cutTo16Bits(QNSPG::calcStrengthWithBitsEntropy(bits));
}

bool samePassword(const std::optional<QNSecret>& a, const std::optional<QNSecret>& b) {
  return a && b ? a->equals(*b) : a.has_value() == b.has_value();
}

}  // namespace

std::optional<double> QNItem::passwordBitsEntropy() {
  const std::lock_guard lock(monitor());
  return numberOf(overviewObjectForKey(QNItemOverviewPasswordBitsEntropyKey));
}

bool QNItem::passwordGeneratedByRandomNumberGenerator() {
  const std::lock_guard lock(monitor());
  return saysYes(overviewObjectForKey(QNItemOverviewPasswordPasswordGeneratedByRNGKey));
}

std::int16_t QNItem::passwordStrength() {
  const std::lock_guard lock(monitor());
  const JsonObject* const overview = mutableOverview();  // once: smart folders ask every item
  if (overview == nullptr) return 0;
  const auto number = [overview](std::string_view key) {
    return numberOf(memberForKey(*overview, key)).value_or(0);
  };
  if (saysYes(memberForKey(*overview, QNItemOverviewPasswordPasswordGeneratedByRNGKey))) {
    return strengthWithBitsEntropy(number(QNItemOverviewPasswordBitsEntropyKey));
  }
  return cutTo16Bits(number(QNItemOverviewPasswordStrengthKey));
}

bool QNItem::shouldShowPasswordStrength() {
  const auto present = password();
  // Looked at for its length only.
  return present && !present->empty() && QNSPG::qualifiesForPasswordStrength(present->reveal());
}

void QNItem::updatePassword(std::optional<std::string_view> password,
                            bool generatedByRandomNumberGenerator, double bitsEntropy) {
  setPassword(password);
  // JSON has no form for an infinite number: kept, it would make the item unsavable.
  if (generatedByRandomNumberGenerator && !std::isfinite(bitsEntropy)) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Invalid password entropy");
  }
  const bool generated = generatedByRandomNumberGenerator && std::isfinite(bitsEntropy);
  setOverviewObject(generated ? std::optional<Json>(bitsEntropy) : std::nullopt,
                    QNItemOverviewPasswordBitsEntropyKey);
  setOverviewObject(generated ? std::optional<Json>(true) : std::nullopt,
                    QNItemOverviewPasswordPasswordGeneratedByRNGKey);
}

void QNItem::updateStrengthOfGeneratedPassword() {
  const auto bits = passwordBitsEntropy();
  if (!bits) return;
  double& rated = openState().originalPasswordBitsEntropy;
  if (std::abs(*bits - rated) <= kSameEntropy) return;
  setOverviewObject(Json(strengthWithBitsEntropy(*bits)), QNItemOverviewPasswordStrengthKey);
  rated = *bits;
}

// Rating a password costs more than the rest of a save, so an unchanged one keeps its strength.
void QNItem::updateStrength(const std::optional<QNSecret>& present) {
  const std::lock_guard lock(monitor());
  const auto kept = numberOf(overviewObjectForKey(QNItemOverviewPasswordStrengthKey));
  if (kept && cutTo16Bits(*kept) >= kLeastKeptStrength &&
      samePassword(openState().originalPassword, present)) {
    return;
  }
  if (passwordBitsEntropy()) return;
  QNError error;
  // An item without a password is nothing to report: it rates as the empty text does.
  const auto rated =
      LTPasswordStrengthWrapper::passwordStrength(present ? present->reveal() : "", &error);
  if (!rated) {
    MRLogger::sharedLogger().error(DEBUG_DATABASE, descriptionForLogging(),
                                   "Failed to calculate password strength: {}",
                                   error.domainCodeString());
  }
  setOverviewObject(Json(cutTo16Bits(rated.value_or(0))), QNItemOverviewPasswordStrengthKey);
}

}  // namespace quillon
