#include "quillon/fields/QNFieldSection.h"
#include "quillon/logins/QNItemURL.h"
#include "quillon/logins/QNLogin.h"
#include "quillon/logins/QNPassword.h"
#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/log/MRLogger.h"
#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/urls/QNURLTools.h"

namespace quillon {
namespace {

std::string_view shown(const QNSharedString& uuid) {
  return uuid == nullptr ? std::string_view("(null)") : std::string_view(*uuid);
}

// No title at all would read as a localized one, and that isn't to be stored.
void copyTitle(QNLogin& from, QNLogin& to) {
  if (const auto title = from.overviewTextForKey(kOverviewTitle)) to.setTitle(title);
}

// Entries are copied: `from` keeps its own password when this login gets another.
void copyForm(QNLogin& from, QNLogin& to) {
  for (const auto& entry : from.loginFields().fields()) {
    to.loginFields().addLoginField(std::make_shared<QNLoginField>(entry->asDictionary()));
  }
  to.setHtmlName(from.htmlName());
  to.setHtmlMethod(from.htmlMethod());
  to.setHtmlID(from.htmlID());
  to.setHtmlAction(from.htmlAction());
}

void copyTagsAndFolder(QNLogin& from, QNLogin& to) {
  auto tags = to.tags();
  tags.merge(from.tags());
  to.setTags(tags);
  to.setFolderId(from.folderId());
  to.setFolderUUID(from.folderUUID());
}

void moveURLsBeforeOthers(QNLogin& from, QNLogin& to) {
  std::size_t place = 0;
  for (const auto& url : from.URLs()) {
    const auto address = url->URLString();
    if (!address || to.hasURLWithString(*address)) continue;
    to.addURL(url);
    to.moveURL(url, place++);
  }
}

std::shared_ptr<QNFieldSection> sectionNamed(QNItem& item, const QNFieldSection& like) {
  for (const auto& section : item.fieldSections()) {
    if (section->name() == like.name() && section->title() == like.title()) return section;
  }
  return nullptr;
}

void moveSections(QNLogin& from, QNLogin& to) {
  for (const auto& section : from.fieldSections()) {
    const auto mine = sectionNamed(to, *section);
    if (mine == nullptr) {
      to.addFieldSection(section);
      continue;
    }
    for (const auto& field : section->fields()) mine->mergeField(field);
  }
}

// A generated password is tied to a site, not to the page deep inside where it was made.
void reduceOnlyURLToSite(QNLogin& login) {
  const auto only = login.numberOfURLs() == 1 ? login.URLString() : std::nullopt;
  const QNURLTools& tools = QNURLTools::shared();
  const auto host = only ? tools.extractHostFromURLString(*only) : std::nullopt;
  if (!host) return;
  const auto scheme = tools.extractSchemeFromURLString(*only);
  login.setURLString(scheme ? formatted("{}://{}", *scheme, *host) : *host);
}

}  // namespace

std::shared_ptr<QNLogin> QNPassword::convertToLoginBasedOnLogin(
    const std::shared_ptr<QNLogin>& login) {
  if (login != nullptr && login->profileId() != profileId()) {
    MRLogger::sharedLogger().assertion(DEBUG_DATABASE, descriptionForLogging(),
                                       "Profiles don't match for result <{}> and login <{}>",
                                       shown(uuid()), shown(login->uuid()));
    return nullptr;
  }
  auto result = convertToLogin();
  if (result == nullptr) return nullptr;
  result->copyOidFrom(hasOid() ? shared_from_this() : login);
  if (login != nullptr) {
    copyTitle(*login, *result);
    copyForm(*login, *result);
    copyTagsAndFolder(*login, *result);
    moveURLsBeforeOthers(*login, *result);
    moveSections(*login, *result);
  }
  reduceOnlyURLToSite(*result);
  keepOwnPassword(*result);
  return result;
}

// The form that came over may have brought a password of its own: that one retires here, since the
// next save retires the one that this item had before.
void QNPassword::keepOwnPassword(QNLogin& login) {
  const auto own = password();
  if (!own || login.containsPasswordValue(own->reveal())) return;
  const auto former = login.password();
  login.setPassword(own->reveal());
  if (former) login.addPreviouslyUsedPassword({former->clone(), secondsNow()});
}

}  // namespace quillon
