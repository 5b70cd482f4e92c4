#include "quillon/kinds/QNMedicalRecord.h"

#include "quillon/fields/QNItemDateField.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/templates/QNCategoryUUID.h"
#include "quillon/templates/QNTemplate.h"

namespace quillon {

std::shared_ptr<QNMedicalRecord> QNMedicalRecord::initNewWithTemplate(
    const std::shared_ptr<QNTemplate>& from) {
  const std::shared_ptr<QNMedicalRecord> record(new QNMedicalRecord(initNew));
  record->setCategoryUUID(std::string(QNCategoryUUIDMedicalRecord));
  if (from != nullptr) record->_setFieldSections(from->instantiateFieldSections());
  return record;
}

// Any other value in the field is passed over in silence: a number of another kind, such as a month
// of a year, isn't a time.
std::optional<std::string> QNMedicalRecord::_additionalInformation() {
  const std::lock_guard lock(monitor());
  const auto field = std::dynamic_pointer_cast<QNItemDateField>(findFieldWithIdentifier("date"));
  const auto seconds = field == nullptr ? std::nullopt : field->rawValue().number();
  const bool isTime = seconds && *seconds >= 0;
  const QNSecret day = qn_formatDate(isTime ? *seconds : static_cast<std::int64_t>(createdAt()));
  return std::string(day.reveal());
}

}  // namespace quillon
