#include "cli/import/QNCSVRow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/fields/QNItemField.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/platform/crypto/QNAESKey.h"

namespace quillon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string_view>;

// Of the first record behind the header; the texts live as long as this.
class RowOf {
 public:
  explicit RowOf(std::string_view text) : _reader(toBytes(bytesOf(text))) {
    EXPECT_TRUE(_reader.next());
    _header = QNCSVColumns::fromHeader(_reader.fields()).value();
    EXPECT_TRUE(_reader.next());
    _row.emplace(_header, _reader.fields());
  }
  const QNCSVRow* operator->() const { return &*_row; }
  [[nodiscard]] std::shared_ptr<QNItem> item() const { return _row->makeItem(vault()); }

 private:
  static std::shared_ptr<QNProfile> vault() {
    static const auto made = QNProfile::initNewWithPassword(DEMO_PASSWORD);
    return made;
  }
  QNCSVReader _reader;
  QNCSVColumns _header;
  std::optional<QNCSVRow> _row;
};

std::vector<std::string> addressesOf(QNItem& item) {
  std::vector<std::string> addresses;
  for (const auto& url : item.URLs()) addresses.push_back(url->URLString().value_or("none"));
  return addresses;
}

TEST(QNCSVRow, MakesALoginOfARow) {
  const RowOf row(
      "name,url,username,password,note\nBank,https://bank.example/,jo,pa55,Branch 12\n");
  const auto item = row.item();

  EXPECT_EQ(item->categoryUUID(), "001");
  EXPECT_EQ(item->title(), "Bank");
  EXPECT_EQ(item->username(), "jo");
  EXPECT_TRUE(item->password()->equals("pa55"));
  EXPECT_EQ(item->notesPlain(), "Branch 12");
  EXPECT_THAT(addressesOf(*item), ElementsAre("https://bank.example/"));
  EXPECT_FALSE(item->isFavorite());
}

TEST(QNCSVRow, ARowWithoutATitleTakesHostAddressOrUserName) {
  const std::string header = "title,url,username,password\n";

  EXPECT_EQ(RowOf(header + ",https://login.bank.example:8443/x,jo,p").item()->title(),
            "login.bank.example");
  EXPECT_EQ(RowOf(header + ",mailto:jo,jo,p").item()->title(), "mailto:jo");
  EXPECT_EQ(RowOf(header + ",,jo,p").item()->title(), "jo");
}

TEST(QNCSVRow, KeepsValuesWithoutAPlaceInTheNotes) {
  const RowOf row("title,password,notes,Branch,PIN\nBank,p,first,12,\n");

  ASSERT_EQ(row->kept().size(), 1u);
  EXPECT_EQ(row.item()->notesPlain(), "first\nBranch: 12");
  EXPECT_EQ(RowOf("title,password,Branch\nBank,p,12,extra,,more\n").item()->notesPlain(),
            "Branch: 12\nColumn 4: extra\nColumn 6: more");
}

std::string oneTimePasswordOf(QNItem& item) {
  const auto text = item.firstTOTPString();
  return text ? std::string(text->reveal()) : "none";
}

TEST(QNCSVRow, PutsAOneTimePasswordIntoAFieldOfItsOwn) {
  const RowOf row(
      "Title,URL,Username,Password,Notes,OTPAuth\n"
      "Bank,https://bank.example,jo,p,N,otpauth://totp/bank?secret=JBSWY3DPEHPK3PXP\n");
  const auto item = row.item();

  EXPECT_EQ(oneTimePasswordOf(*item), "otpauth://totp/bank?secret=JBSWY3DPEHPK3PXP");
  EXPECT_EQ(item->notesPlain(), "N");
  EXPECT_THAT(row->kept(), IsEmpty());
  const auto field = item->firstTOTPField();
  EXPECT_EQ(field->type(), "concealed");
  EXPECT_EQ(field->identifier()->substr(0, 5), "TOTP_");
  EXPECT_EQ(field->title(), "one-time password");
}

TEST(QNCSVRow, KnowsTheColumnsOfOneTimePasswordsOfOthers) {
  for (const char* const name : {"OTPAuth", "totp", "TOTP", "OTP", "otp_secret", "2FA",
                                 "Einmal-Passwort", "login_totp", "OTP URL"}) {
    const RowOf row(std::string("title,password,") + name + "\nBank,p,jbsw y3dp ehpk 3pxp\n");
    EXPECT_EQ(oneTimePasswordOf(*row.item()), "jbsw y3dp ehpk 3pxp") << name;
  }
}

TEST(QNCSVRow, KeepsAOneTimePasswordThatGivesNoCode) {
  const RowOf row("title,password,totp\nBank,p,otpauth://hotp/bank?secret=JBSWY3DPEHPK3PXP\n");

  EXPECT_EQ(oneTimePasswordOf(*row.item()), "otpauth://hotp/bank?secret=JBSWY3DPEHPK3PXP");
  EXPECT_FALSE(RowOf("title,password,totp\n,,JBSWY3DPEHPK3PXP\n")->isEmpty());
}

TEST(QNCSVRow, WithoutAOneTimePasswordHasNoSection) {
  const RowOf row("title,password,totp\nBank,p, \n");

  EXPECT_EQ(oneTimePasswordOf(*row.item()), "none");
  EXPECT_EQ(row.item()->numberOfFieldSections(), 0u);
}

TEST(QNCSVRow, ANoteKeepsAOneTimePasswordInItsNotes) {
  const RowOf note(
      "folder,favorite,type,name,notes,fields,reprompt,login_uri,login_username,login_password,"
      "login_totp\n,,note,Alarm,0000,,0,,,,JBSWY3DPEHPK3PXP\n");

  EXPECT_EQ(note.item()->notesPlain(), "0000\nlogin_totp: JBSWY3DPEHPK3PXP");
  EXPECT_EQ(oneTimePasswordOf(*note.item()), "none");
}

TEST(QNCSVRow, ReadsTheTimesOfFirefox) {
  const std::string header =
      "url,username,password,httpRealm,formActionOrigin,guid,timeCreated,timeLastUsed,"
      "timePasswordChanged\n";
  const RowOf row(header +
                  "https://a.example,jo,p,,https://b.example,,1609459200123,"
                  "1612137600000,1609459200999\n");
  const auto item = row.item();

  EXPECT_EQ(item->createdAt(), 1609459200u);
  EXPECT_EQ(item->lastUsedTimestamp(), 1612137600u);
  EXPECT_EQ(dynamic_cast<QNLogin&>(*item).htmlAction(), "https://b.example");
  EXPECT_THAT(row->kept(), IsEmpty());
}

TEST(QNCSVRow, KeepsTimesThatAreNoneAndAChangeAfterTheCreation) {
  const std::string header = "url,username,password,httpRealm,timeCreated,timePasswordChanged\n";

  EXPECT_EQ(RowOf(header + "a.example,jo,p,,yesterday,").item()->notesPlain(),
            "timeCreated: yesterday");
  EXPECT_EQ(RowOf(header + "a.example,jo,p,,1609459200000,1640995200000").item()->notesPlain(),
            "timePasswordChanged: 1640995200000");
}

TEST(QNCSVRow, MakesASecureNoteAndAFavoriteOfBitwardensRows) {
  const std::string header =
      "folder,favorite,type,name,notes,fields,reprompt,login_uri,login_username,login_password,"
      "login_totp\n";
  const RowOf note(header + ",,note,Alarm,0000,,0,https://a.example,,,\n");
  EXPECT_EQ(note.item()->categoryUUID(), "003");
  EXPECT_EQ(note.item()->title(), "Alarm");
  EXPECT_EQ(note.item()->notesPlain(), "0000\nlogin_uri: https://a.example");

  EXPECT_TRUE(RowOf(header + ",1,login,A,,,,,jo,p,\n").item()->isFavorite());
  EXPECT_FALSE(RowOf(header + ",0,login,A,,,,,jo,p,\n").item()->isFavorite());
  EXPECT_EQ(RowOf(header + ",,login,A,,,1,,,,\n").item()->notesPlain(), "reprompt: 1");
  EXPECT_EQ(RowOf(header + ",,card,A,,,,,,,\n").item()->notesPlain(), "type: card");
}

TEST(QNCSVRow, AnAddressIsTakenOnce) {
  const RowOf row("title,password,url,website\nA,p,https://a.example,https://a.example\n");

  EXPECT_THAT(addressesOf(*row.item()), ElementsAre("https://a.example"));
}

TEST(QNCSVRow, ARowWithoutValuesIsEmpty) {
  EXPECT_TRUE(RowOf("title,username,password\n,,\n")->isEmpty());
  EXPECT_TRUE(RowOf("title,username,password\n\" \t\",,\n")->isEmpty());
  EXPECT_FALSE(RowOf("title,username,password\n,,p\n")->isEmpty());
  EXPECT_FALSE(RowOf("title,username,password\n,,\" \"\n")->isEmpty());
  EXPECT_FALSE(RowOf("title,username,password\n,,,extra\n")->isEmpty());
}

TEST(QNCSVRow, AMissingFieldIsAnEmptyOne) {
  EXPECT_EQ(RowOf("title,username,password\nA\n").item()->username().value_or(""), "");
}

TEST(QNCSVRow, PartsAddressesAtCommasThatAreNotInsideOne) {
  EXPECT_EQ(addressesIn("https://a.example,https://b.example"),
            (Texts{"https://a.example", "https://b.example"}));
  EXPECT_EQ(addressesIn("a.example, b.example"), (Texts{"a.example", "b.example"}));
  EXPECT_EQ(addressesIn("https://a.example,b.example"), (Texts{"https://a.example", "b.example"}));
  EXPECT_EQ(addressesIn("https://a.example/x,y"), (Texts{"https://a.example/x,y"}));
  EXPECT_EQ(addressesIn("https://a.example/x,y,https://b.example/?q=1,2"),
            (Texts{"https://a.example/x,y", "https://b.example/?q=1,2"}));
  EXPECT_EQ(addressesIn(",,a.example,"), (Texts{"a.example"}));
  EXPECT_EQ(addressesIn(""), Texts{});
}

}  // namespace
}  // namespace quillon
