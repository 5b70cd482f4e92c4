#include "cli/import/QNCSVColumns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon {
namespace {

using Place = QNCSVPlace;
using Places = std::vector<Place>;

QNResult<QNCSVColumns> header(const std::vector<std::string_view>& fields) {
  return QNCSVColumns::fromHeader(fields);
}

Places placesOf(const std::vector<std::string_view>& fields) {
  const auto read = header(fields);
  EXPECT_TRUE(read.ok());
  Places places;
  if (!read) return places;
  for (const auto& column : read.value().columns) places.push_back(column.place);
  return places;
}

TEST(QNCSVColumns, KnowsEachFormatByItsHeader) {
  EXPECT_EQ(header({"name", "url", "username", "password", "note"}).value().format,
            QNCSVFormat::chromium);
  EXPECT_EQ(header({"name", "url", "username", "password"}).value().format, QNCSVFormat::chromium);
  EXPECT_EQ(header({"url", "username", "password", "httpRealm", "formActionOrigin", "guid",
                    "timeCreated", "timeLastUsed", "timePasswordChanged"})
                .value()
                .format,
            QNCSVFormat::firefox);
  EXPECT_EQ(header({"Title", "URL", "Username", "Password", "Notes", "OTPAuth"}).value().format,
            QNCSVFormat::safari);
  EXPECT_EQ(header({"folder", "favorite", "type", "name", "notes", "fields", "reprompt",
                    "login_uri", "login_username", "login_password", "login_totp"})
                .value()
                .format,
            QNCSVFormat::bitwarden);
  EXPECT_EQ(header({"Account", "Login", "Password"}).value().format, QNCSVFormat::generic);
}

TEST(QNCSVColumns, PlacesTheColumnsOfEachFormat) {
  EXPECT_EQ(placesOf({"name", "url", "username", "password", "note"}),
            (Places{Place::title, Place::url, Place::username, Place::password, Place::notes}));
  EXPECT_EQ(placesOf({"url", "username", "password", "httpRealm", "formActionOrigin", "guid",
                      "timeCreated", "timeLastUsed", "timePasswordChanged"}),
            (Places{Place::url, Place::username, Place::password, Place::none, Place::formAction,
                    Place::none, Place::createdMilliseconds, Place::lastUsedMilliseconds,
                    Place::changedMilliseconds}));
  EXPECT_EQ(placesOf({"Title", "URL", "Username", "Password", "Notes", "OTPAuth"}),
            (Places{Place::title, Place::url, Place::username, Place::password, Place::notes,
                    Place::oneTimePassword}));
  EXPECT_EQ(
      placesOf({"folder", "favorite", "type", "name", "notes", "fields", "reprompt", "login_uri",
                "login_username", "login_password", "login_totp"}),
      (Places{Place::none, Place::favorite, Place::kind, Place::title, Place::notes, Place::none,
              Place::mark, Place::url, Place::username, Place::password, Place::oneTimePassword}));
}

TEST(QNCSVColumns, ReadsObviousNamesOfSeveralLanguages) {
  const Places expected{Place::title, Place::url, Place::username, Place::password, Place::notes};
  EXPECT_EQ(placesOf({"Titel", "Webseite", "Benutzername", "Passwort", "Notizen"}), expected);
  EXPECT_EQ(placesOf({"Titre", "Site web", "Nom d'utilisateur", "Mot de passe", "Remarques"}),
            expected);
  EXPECT_EQ(placesOf({"Título", "Sitio web", "Usuario", "Contraseña", "Notas"}), expected);
  EXPECT_EQ(placesOf({"タイトル", "ウェブサイト", "ユーザー名", "パスワード", "メモ"}), expected);
}

TEST(QNCSVColumns, CaseBlanksAndPunctuationDoNotCount) {
  EXPECT_EQ(placesOf({" TITLE ", "Web-Site", "USER_NAME", "Pass word"}),
            (Places{Place::title, Place::url, Place::username, Place::password}));
}

TEST(QNCSVColumns, TheBetterNameHasThePlace) {
  EXPECT_EQ(placesOf({"email", "username", "password"}),
            (Places{Place::none, Place::username, Place::password}));
  EXPECT_EQ(placesOf({"name", "title", "password"}),
            (Places{Place::none, Place::title, Place::password}));
  EXPECT_EQ(placesOf({"email", "password"}), (Places{Place::username, Place::password}));
}

TEST(QNCSVColumns, OfTwoEqualNamesTheFirstHasThePlaceButAddressesShareTheirs) {
  EXPECT_EQ(placesOf({"password", "password", "url", "website"}),
            (Places{Place::password, Place::none, Place::url, Place::url}));
}

TEST(QNCSVColumns, TimesAndKindsHaveNoPlaceInAnUnknownFormat) {
  EXPECT_EQ(placesOf({"title", "password", "type", "favorite", "timeCreated"}),
            (Places{Place::title, Place::password, Place::none, Place::none, Place::none}));
}

TEST(QNCSVColumns, KeepsTheNamesOfTheFile) {
  EXPECT_EQ(header({" Title", "Password", "My Column "}).value().columns[2].name, "My Column");
}

TEST(QNCSVColumns, RefusesAFirstLineThatIsNoHeaderWithoutShowingIt) {
  const auto read = header({"Example", "https://example.com", "jo", "hunter2"});

  ASSERT_FALSE(read.ok());
  EXPECT_EQ(read.error().message.find("hunter2"), std::string::npos);
  EXPECT_FALSE(header({"password"}).ok());
  EXPECT_FALSE(header({""}).ok());
}

}  // namespace
}  // namespace quillon
