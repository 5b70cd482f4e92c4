#pragma once
// For tests: folders in a vault that costs no key derivation, and questions in short.

#include "quillon/items/internal/QNItemTesting.h"
#include "quillon/organisation/QNFolder.h"
#include "quillon/organisation/predicates/internal/QNPredicateTesting.h"

namespace quillon {

inline std::shared_ptr<QNFolder> folderTitled(std::string_view title) {
  auto folder = std::make_shared<QNFolder>(initNew);
  folder->setProfile(localVault());
  folder->setTitle(title);
  return folder;
}

/// A folder as it comes from its row: nothing about it is dirty.
inline std::shared_ptr<QNFolder> cleanFolder(std::string_view title = "Work") {
  auto folder = folderTitled(title);
  folder->didSave();
  return folder;
}

inline std::string textOf(const QNPredicateRef& predicate) {
  return predicate == nullptr ? "nothing" : predicate->predicateFormat();
}

}  // namespace quillon
