#include "quillon/vaults/H9UserAccount.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

bool same(std::string_view a, std::string_view b) {
  return H9UserAccount::isServerURLOnSameServerAsServerURL(a, b);
}

TEST(H9UserAccount, KnowsItsServer) {
  EXPECT_EQ(H9UserAccount("https://my.example.com").server(), "https://my.example.com");
}

TEST(H9UserAccount, IsOnTheSameServerWhateverTheFirstLabelAndTheCase) {
  EXPECT_TRUE(same("https://my.example.com", "https://TEAM.Example.COM"));
  EXPECT_TRUE(same("https://my.example.com", "HTTPS://MY.EXAMPLE.COM/path"));
}

TEST(H9UserAccount, IsOnTheSameServerWithOrWithoutAScheme) {
  EXPECT_TRUE(same("my.example.com", "https://team.example.com"));
}

TEST(H9UserAccount, IsOnAnotherServerWhereAnyOtherLabelDiffers) {
  EXPECT_FALSE(same("https://my.example.com", "https://my.example.org"));
  EXPECT_FALSE(same("https://my.example.com", "https://my.eu.example.com"));
  EXPECT_FALSE(same("https://my.example.com", "https://example.com"));
}

TEST(H9UserAccount, IsOnNoServerWithoutAHost) {
  EXPECT_FALSE(same("", ""));
  EXPECT_FALSE(same("", "localhost"));
  EXPECT_FALSE(same("https://my.example.com", ""));
}

TEST(H9UserAccount, TakesAnIPAddressForLabels) {
  EXPECT_TRUE(same("https://10.0.0.1", "https://192.0.0.1"));
  EXPECT_FALSE(same("https://10.0.0.1", "https://10.0.0.2"));
}

TEST(H9UserAccount, CannotTellHostsOfOneLabelApart) {
  EXPECT_TRUE(same("http://localhost", "http://server"));
}

}  // namespace
}  // namespace quillon
