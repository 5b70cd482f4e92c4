#include "cli/output/QNTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using testing::ElementsAre;

TEST(QNTree, WhatIsAtTheTopHasNoBranch) {
  EXPECT_THAT(branchesOfTree({0, 0}), ElementsAre("", ""));
  EXPECT_THAT(branchesOfTree({}), ElementsAre());
}

TEST(QNTree, TheLastOfEachLevelEndsItsBranch) {
  EXPECT_THAT(branchesOfTree({0, 1, 1}), ElementsAre("", "├─ ", "└─ "));
}

TEST(QNTree, ABranchGoesOnBesideWhatLiesDeeper) {
  EXPECT_THAT(branchesOfTree({0, 1, 2, 2, 1, 2}),
              ElementsAre("", "├─ ", "│  ├─ ", "│  └─ ", "└─ ", "   └─ "));
}

TEST(QNTree, ATreeEndsWhereTheNextOneBegins) {
  EXPECT_THAT(branchesOfTree({0, 1, 2, 0, 1}), ElementsAre("", "└─ ", "   └─ ", "", "└─ "));
}

}  // namespace
}  // namespace quillon
