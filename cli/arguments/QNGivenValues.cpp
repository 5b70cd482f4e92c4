#include "cli/arguments/QNGivenValues.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "cli/QNToolError.h"
#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 9> kAddableKinds = {
    "string", "concealed", "date", "monthYear", "URL", "email", "phone", "address", "totp"};

QNError wrongUsage(std::string_view message) {
  return toolError(QNExit::wrongUsage, message);
}

// A value that every user of the machine could read; "-" is where to read it.
bool isTold(const QNGivenValue& value) {
  return !value.text.empty() && value.text != "-";
}

QNGivenValue valueBehind(const std::string& text, std::size_t equals) {
  if (equals == std::string::npos) return {QNGivenValue::From::prompt, "", {}};
  return {QNGivenValue::From::argument, text.substr(equals + 1), {}};
}

}  // namespace

std::string addableKinds() {
  return fmt::format("{}", fmt::join(kAddableKinds, ", "));
}

QNResult<QNFieldSetting> settingFrom(const std::string& text) {
  const std::size_t equals = text.find('=');
  QNFieldSetting setting{text.substr(0, equals), valueBehind(text, equals)};
  if (setting.field.empty()) return wrongUsage("--set takes FIELD=VALUE");
  const bool isPassword = setting.field == nameOfField(QNFieldName::password);
  if (isPassword && isTold(setting.value)) return wrongUsage(kNoSecretArguments);
  return setting;
}

QNResult<QNFieldSetting> fileSettingFrom(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == 0 || equals == std::string::npos || equals + 1 == text.size()) {
    return wrongUsage("--set-file takes FIELD=FILE");
  }
  std::string field = text.substr(0, equals);
  if (!isUTF8(field)) return wrongUsage("--set-file: the field's name isn't UTF-8 text");
  return QNFieldSetting{std::move(field), {QNGivenValue::From::file, "", text.substr(equals + 1)}};
}

QNResult<QNFieldAddition> additionFrom(const std::string& text) {
  const std::size_t equals = text.find('=');
  const std::string name = text.substr(0, equals);
  const std::size_t colon = name.rfind(':');
  const std::size_t dot = name.find('.');
  QNFieldAddition addition;
  if (colon != std::string::npos) {
    const bool hasSection = dot < colon;
    if (hasSection) addition.section = name.substr(0, dot);
    const std::size_t start = hasSection ? dot + 1 : 0;
    addition.title = name.substr(start, colon - start);
    addition.kind = name.substr(colon + 1);
  }
  if (addition.title.empty()) return wrongUsage("--add-field takes SECTION.TITLE:KIND=VALUE");
  if (std::find(kAddableKinds.begin(), kAddableKinds.end(), addition.kind) == kAddableKinds.end()) {
    return wrongUsage(fmt::format("the kind of a new field is one of {}", addableKinds()));
  }
  addition.value = valueBehind(text, equals);
  const bool isSecret = addition.kind == "concealed" || addition.kind == "totp";
  if (isSecret && isTold(addition.value)) return wrongUsage(kNoSecretArguments);
  return addition;
}

QNResult<QNItemPassword> itemPasswordFrom(const std::string& value) {
  if (value.empty()) return QNItemPassword::prompt;
  if (value != "-") return wrongUsage(kNoSecretArguments);
  return QNItemPassword::standardInput;
}

}  // namespace quillon
