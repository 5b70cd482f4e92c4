#include "quillon/platform/notifications/MRNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MRNotificationCenterTest : public testing::Test {
 protected:
  // An observer that notes its own name, the notification's and the object's number.
  MRNotificationCenter::Observer noting(const std::string& who) {
    return [this, who](std::string_view name, const void* object) {
      const auto* const number = static_cast<const int*>(object);
      heard.push_back(who + ":" + std::string(name) + ":" +
                      (number == nullptr ? "none" : std::to_string(*number)));
    };
  }
  MRNotificationCenter center;
  std::vector<std::string> heard;
  const int one = 1;
  const int two = 2;
};

TEST_F(MRNotificationCenterTest, CallsObserversInTheOrderInWhichTheyWereAdded) {
  center.addObserver("Locked", nullptr, noting("a"));
  center.addObserver("Locked", nullptr, noting("b"));
  center.addObserver("Locked", nullptr, noting("c"));

  center.postNotificationName("Locked", &one);

  EXPECT_THAT(heard, ElementsAre("a:Locked:1", "b:Locked:1", "c:Locked:1"));
}

TEST_F(MRNotificationCenterTest, TellsNamesAndObjectsApart) {
  center.addObserver("Locked", &one, noting("named of one"));
  center.addObserver("", &two, noting("any of two"));
  center.addObserver("", nullptr, noting("any"));

  center.postNotificationName("Locked", &two);
  center.postNotificationName("Other", &one);
  center.postNotificationName("Locked", &one);

  EXPECT_THAT(heard, ElementsAre("any of two:Locked:2", "any:Locked:2", "any:Other:1",
                                 "named of one:Locked:1", "any:Locked:1"));
}

TEST_F(MRNotificationCenterTest, PostsWithoutAnObject) {
  center.addObserver("Locked", &one, noting("of one"));
  center.addObserver("Locked", nullptr, noting("any"));

  center.postNotificationName("Locked", nullptr);

  EXPECT_THAT(heard, ElementsAre("any:Locked:none"));
}

TEST_F(MRNotificationCenterTest, ForgetsARemovedObserver) {
  const auto token = center.addObserver("Locked", nullptr, noting("a"));

  center.removeObserver(token);
  center.removeObserver(token);
  center.postNotificationName("Locked", &one);

  EXPECT_THAT(heard, IsEmpty());
}

TEST_F(MRNotificationCenterTest, LetsAnObserverRemoveALaterOneAndItself) {
  MRNotificationCenter::Token own = 0, later = 0;
  own = center.addObserver("Locked", nullptr, [&](std::string_view name, const void* object) {
    noting("once")(name, object);
    center.removeObserver(later);
    center.removeObserver(own);
  });
  later = center.addObserver("Locked", nullptr, noting("later"));
  center.addObserver("Locked", nullptr, noting("last"));

  center.postNotificationName("Locked", &one);
  center.postNotificationName("Locked", &two);

  EXPECT_THAT(heard, ElementsAre("once:Locked:1", "last:Locked:1", "last:Locked:2"));
}

TEST_F(MRNotificationCenterTest, CallsAnObserverAddedDuringAPostAtTheNextOne) {
  center.addObserver("Locked", &one, [&](std::string_view, const void*) {
    center.addObserver("Locked", nullptr, noting("new"));
  });

  center.postNotificationName("Locked", &one);
  EXPECT_THAT(heard, IsEmpty());
  center.postNotificationName("Locked", &two);

  EXPECT_THAT(heard, ElementsAre("new:Locked:2"));
}

TEST_F(MRNotificationCenterTest, LetsAnObserverPost) {
  center.addObserver("Locked", nullptr, [&](std::string_view, const void* object) {
    center.postNotificationName("Inner", object);
  });
  center.addObserver("", nullptr, noting("all"));

  center.postNotificationName("Locked", &one);

  EXPECT_THAT(heard, ElementsAre("all:Inner:1", "all:Locked:1"));
}

}  // namespace
}  // namespace quillon
