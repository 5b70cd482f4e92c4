#pragma once
// What --set, --set-file, --add-field and --password are given, read. The errors are wrong usage,
// and never repeat a value.

#include "cli/arguments/QNArguments.h"
#include "quillon/platform/errors/QNError.h"

namespace quillon {

/// "string", "concealed" and so on: what `--add-field` makes, parted by commas.
std::string addableKinds();

/// FIELD=VALUE, or FIELD alone for a secret that is to be asked for.
QNResult<QNFieldSetting> settingFrom(const std::string& text);
/// FIELD=FILE.
QNResult<QNFieldSetting> fileSettingFrom(const std::string& text);
/// SECTION.TITLE:KIND=VALUE, without a value for a secret that is to be asked for. Nothing before
/// the dot, or no dot, means the section without a name.
QNResult<QNFieldAddition> additionFrom(const std::string& text);
/// "" asks for the password, "-" reads standard input, and anything else is refused.
QNResult<QNItemPassword> itemPasswordFrom(const std::string& value);

}  // namespace quillon
