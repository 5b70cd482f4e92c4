#include "cli/import/QNCSVColumns.h"

#include <algorithm>
#include <array>

#include "quillon/platform/text/QNText.h"

namespace quillon {
namespace {

using Names = std::vector<std::string>;
using Place = QNCSVPlace;

struct Alias {
  std::string_view name;  // as comparable() gives it
  Place place;
};

// Names of columns, folded. Of two columns for one place, the one that stands earlier here has
// it: "username" before "email", "title" before "name".
constexpr auto kAliases = std::to_array<Alias>({
    {"title", Place::title},
    {"titel", Place::title},
    {"titre", Place::title},
    {"titulo", Place::title},
    {"titolo", Place::title},
    {"tytuł", Place::title},
    {"タイトル", Place::title},
    {"name", Place::title},
    {"nom", Place::title},
    {"nombre", Place::title},
    {"nome", Place::title},
    {"naam", Place::title},
    {"名前", Place::title},
    {"名称", Place::title},
    {"bezeichnung", Place::title},
    {"entry", Place::title},
    {"item", Place::title},
    {"account", Place::title},
    {"konto", Place::title},
    {"compte", Place::title},
    {"cuenta", Place::title},

    {"url", Place::url},
    {"urls", Place::url},
    {"uri", Place::url},
    {"loginuri", Place::url},
    {"loginurl", Place::url},
    {"website", Place::url},
    {"websiteurl", Place::url},
    {"webaddress", Place::url},
    {"web", Place::url},
    {"site", Place::url},
    {"link", Place::url},
    {"webseite", Place::url},
    {"internetadresse", Place::url},
    {"webadresse", Place::url},
    {"siteweb", Place::url},
    {"sitioweb", Place::url},
    {"sitio", Place::url},
    {"sito", Place::url},
    {"sitoweb", Place::url},
    {"ウェブサイト", Place::url},
    {"サイト", Place::url},
    {"网址", Place::url},

    {"username", Place::username},
    {"user", Place::username},
    {"loginusername", Place::username},
    {"loginname", Place::username},
    {"login", Place::username},
    {"userid", Place::username},
    {"benutzername", Place::username},
    {"benutzer", Place::username},
    {"anmeldename", Place::username},
    {"nomdutilisateur", Place::username},
    {"utilisateur", Place::username},
    {"identifiant", Place::username},
    {"nombredeusuario", Place::username},
    {"usuario", Place::username},
    {"nomeutente", Place::username},
    {"utente", Place::username},
    {"nomedeusuario", Place::username},
    {"gebruikersnaam", Place::username},
    {"ユーザー名", Place::username},
    {"ユーザ名", Place::username},
    {"用户名", Place::username},
    {"email", Place::username},
    {"emailaddress", Place::username},
    {"mail", Place::username},
    {"courriel", Place::username},
    {"correo", Place::username},
    {"correoelectronico", Place::username},
    {"メール", Place::username},

    {"password", Place::password},
    {"loginpassword", Place::password},
    {"pass", Place::password},
    {"passwort", Place::password},
    {"kennwort", Place::password},
    {"motdepasse", Place::password},
    {"contrasena", Place::password},
    {"clave", Place::password},
    {"senha", Place::password},
    {"wachtwoord", Place::password},
    {"hasło", Place::password},
    {"パスワード", Place::password},
    {"密码", Place::password},

    {"notes", Place::notes},
    {"note", Place::notes},
    {"notiz", Place::notes},
    {"notizen", Place::notes},
    {"comment", Place::notes},
    {"comments", Place::notes},
    {"kommentar", Place::notes},
    {"kommentare", Place::notes},
    {"bemerkung", Place::notes},
    {"bemerkungen", Place::notes},
    {"commentaire", Place::notes},
    {"commentaires", Place::notes},
    {"remarque", Place::notes},
    {"remarques", Place::notes},
    {"nota", Place::notes},
    {"notas", Place::notes},
    {"comentario", Place::notes},
    {"comentarios", Place::notes},
    {"opmerkingen", Place::notes},
    {"メモ", Place::notes},
    {"備考", Place::notes},
    {"备注", Place::notes},
    {"description", Place::notes},
    {"extra", Place::notes},

    {"otpauth", Place::oneTimePassword},
    {"otpurl", Place::oneTimePassword},
    {"otp", Place::oneTimePassword},
    {"otpsecret", Place::oneTimePassword},
    {"totp", Place::oneTimePassword},
    {"totpsecret", Place::oneTimePassword},
    {"totpurl", Place::oneTimePassword},
    {"totpuri", Place::oneTimePassword},
    {"logintotp", Place::oneTimePassword},
    {"onetimepassword", Place::oneTimePassword},
    {"2fa", Place::oneTimePassword},
    {"einmalpasswort", Place::oneTimePassword},
    {"einmalkennwort", Place::oneTimePassword},
    {"motdepasseausageunique", Place::oneTimePassword},
    {"contrasenadeunsolouso", Place::oneTimePassword},
});

// What only these formats have.
constexpr auto kFirefoxAliases = std::to_array<Alias>({
    {"formactionorigin", Place::formAction},
    {"timecreated", Place::createdMilliseconds},
    {"timelastused", Place::lastUsedMilliseconds},
    {"timepasswordchanged", Place::changedMilliseconds},
});
constexpr auto kBitwardenAliases = std::to_array<Alias>({
    {"favorite", Place::favorite},
    {"type", Place::kind},
    {"reprompt", Place::mark},
});

struct Signature {
  QNCSVFormat format;
  std::vector<std::string_view> names;  // all of them must be there
};

const std::vector<Signature>& signatures() {
  static const std::vector<Signature> known = {
      {QNCSVFormat::bitwarden, {"type", "name", "loginuri", "loginusername", "loginpassword"}},
      {QNCSVFormat::firefox, {"url", "username", "password", "httprealm", "timecreated"}},
      {QNCSVFormat::safari, {"title", "url", "username", "password", "otpauth"}},
      {QNCSVFormat::chromium, {"name", "url", "username", "password"}},
  };
  return known;
}

// Folded, with ASCII letters and digits alone left of the ASCII characters.
std::string comparable(std::string_view name) {
  std::string folded = foldedForSearch(name);
  const auto isDropped = [](char c) {
    return static_cast<unsigned char>(c) < 0x80 && !(c >= 'a' && c <= 'z') &&
           !(c >= '0' && c <= '9');
  };
  folded.erase(std::remove_if(folded.begin(), folded.end(), isDropped), folded.end());
  return folded;
}

QNCSVFormat formatOf(const Names& names) {
  const auto isThere = [&](std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  for (const Signature& known : signatures()) {
    if (std::all_of(known.names.begin(), known.names.end(), isThere)) return known.format;
  }
  return QNCSVFormat::generic;
}

void placeColumns(QNCSVColumns& header, const Names& names, std::span<const Alias> aliases) {
  for (const Alias& alias : aliases) {
    const std::string name = comparable(alias.name);
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (names[i] != name || header.columns[i].place != Place::none) continue;
      if (alias.place != Place::url && header.has(alias.place)) continue;
      header.columns[i].place = alias.place;
    }
  }
}

}  // namespace

std::string_view nameOfFormat(QNCSVFormat format) {
  switch (format) {
    case QNCSVFormat::chromium:
      return "chromium";
    case QNCSVFormat::firefox:
      return "firefox";
    case QNCSVFormat::safari:
      return "safari";
    case QNCSVFormat::bitwarden:
      return "bitwarden";
    case QNCSVFormat::generic:
      break;
  }
  return "generic";
}

bool QNCSVColumns::has(Place place) const {
  return std::any_of(columns.begin(), columns.end(),
                     [&](const Column& column) { return column.place == place; });
}

QNResult<QNCSVColumns> QNCSVColumns::fromHeader(std::span<const std::string_view> fields) {
  QNCSVColumns header;
  Names names;
  for (const std::string_view field : fields) {
    names.push_back(comparable(field));
    header.columns.push_back({trimmed(field)});
  }
  header.format = formatOf(names);
  placeColumns(header, names, kAliases);
  if (header.format == QNCSVFormat::firefox) placeColumns(header, names, kFirefoxAliases);
  if (header.format == QNCSVFormat::bitwarden) placeColumns(header, names, kBitwardenAliases);
  const auto placed =
      std::count_if(header.columns.begin(), header.columns.end(),
                    [](const Column& column) { return column.place != Place::none; });
  if (placed >= 2) return header;
  return QNError::unreadable(
      "the first line names no columns that are known; it should hold names such as title, url, "
      "username, password, notes");
}

}  // namespace quillon
