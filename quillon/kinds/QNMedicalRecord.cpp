#include "quillon/kinds/QNMedicalRecord.h"

#include "quillon/templates/QNCategoryUUID.h"

namespace quillon {

QNMedicalRecord::QNMedicalRecord(QNNew) : QNItem(initNew) {
  setCategoryUUID(std::string(QNCategoryUUIDMedicalRecord));
}

QNMedicalRecord::QNMedicalRecord(QNExisting existing) : QNItem(existing) {
  setCategoryUUID(std::string(QNCategoryUUIDMedicalRecord));
}

}  // namespace quillon
