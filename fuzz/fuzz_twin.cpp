// The twin archive of a vault: foreign bytes make a vault with categories or nothing, and unlock
// the vault that they are given to or leave it as it was.
#include <cstdlib>

#include "quillon/platform/archive/QNKeyedArchiver.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/templates/QNCategory.h"
#include "quillon/vaults/QNProfile.h"

namespace {

using namespace quillon;

void require(bool truth) {
  if (!truth) std::abort();
}

// As QNProfile itself reads a twin.
constexpr QNDecodableClass kClasses[] = {
    {"QNProfile",
     [](QNDecoder& coder) -> std::shared_ptr<QNCoding> { return QNProfile::initWithCoder(coder); }},
    {"QNCategory", [](QNDecoder& coder) -> std::shared_ptr<QNCoding> {
       return std::make_shared<QNCategory>(coder);
     }}};

Bytes archived(QNCoding& root) {
  auto archive = QNKeyedArchiver::archivedDataWithRootObject(root);
  require(archive.ok());
  return std::move(archive).value();
}

// Nothing but the two classes, and all that was read can be written, read and written again.
void readAsArchive(ByteView archive) {
  const auto root = QNKeyedUnarchiver::unarchivedObjectOfClasses(kClasses, archive);
  if (!root) {
    require(root.error().domainCodeString() == "QNErrorDomain 114");
    return;
  }
  const auto vault = std::dynamic_pointer_cast<QNProfile>(root.value());
  require(vault != nullptr || std::dynamic_pointer_cast<QNCategory>(root.value()) != nullptr);
  if (vault != nullptr) {
    for (const auto& category : vault->allCategories()) {
      const auto decoded = std::dynamic_pointer_cast<QNCategory>(category);
      require(decoded != nullptr && decoded->profile() == vault);
    }
  }
  const Bytes again = archived(*root.value());
  const auto second = QNKeyedUnarchiver::unarchivedObjectOfClasses(kClasses, again);
  require(second.ok());
  require(archived(*second.value()) == again);
}

// The way that an archive from a store takes, whoever sealed it.
void unlockWith(ByteView archive) {
  static const auto primary = QNProfile::profileWithName("default", DEMO_PASSWORD, std::nullopt);
  const auto vault = QNProfile::initExistingWithID(1);
  vault->setAttributesData(primary->encryptOverview(archive));
  QNError error;
  if (vault->decryptAttributesWithPrimaryProfile(primary, &error)) {
    require(vault->overviewKey() && vault->masterKey() && vault->profilePassword());
    vault->lock();
  } else {
    require(error.domainCodeString() == "QNErrorDomain 103" && !error.message.empty());
  }
  require(vault->isLocked());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto before = MRLogger::sharedLogger().setSink({});  // refusals are logged
  readAsArchive({data, size});
  unlockWith({data, size});
  return 0;
}
