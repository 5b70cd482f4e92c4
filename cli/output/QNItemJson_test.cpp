#include "cli/output/QNItemJson.h"

#include <gtest/gtest.h>

#include "quillon/logins/QNLogin.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/vaults/QNProfile.h"

namespace quillon {
namespace {

// What `show --json` prints of the form fields of a login with these details.
std::string shownFields(std::string_view details, QNRevealed revealed) {
  const auto login = std::make_shared<QNLogin>(initNew);
  login->setProfile(QNProfile::initNewWithPassword(DEMO_PASSWORD));
  login->copyDetails(*mr_objectFromJSONStringWithError(details));
  return mr_JSONStringWithError(shownJson(*login, revealed).at("formFields")).value_or("(no form)");
}

constexpr std::string_view kForm =
    R"({"fields":[{"name":"pin","value":"1","type":"P"},)"
    R"({"name":"password","value":"2","type":"T"},)"
    R"({"name":"again","value":"3","type":"T","designation":"new-password"},)"
    R"({"name":"room","value":"4","type":"T"}]})";

TEST(QNItemJson, HidesEveryFieldThatHoldsAPassword) {
  EXPECT_EQ(shownFields(kForm, QNRevealed::nothing),
            R"([{"name":"pin","type":"P"},{"name":"password","type":"T"},)"
            R"({"name":"again","type":"T"},{"name":"room","type":"T","value":"4"}])");
  EXPECT_EQ(shownFields(kForm, QNRevealed::password), shownFields(kForm, QNRevealed::nothing));
}

TEST(QNItemJson, RevealsEveryFieldOnDemand) {
  EXPECT_EQ(shownFields(kForm, QNRevealed::everything),
            R"([{"name":"pin","type":"P","value":"1"},{"name":"password","type":"T","value":"2"},)"
            R"({"name":"again","type":"T","value":"3"},{"name":"room","type":"T","value":"4"}])");
}

}  // namespace
}  // namespace quillon
