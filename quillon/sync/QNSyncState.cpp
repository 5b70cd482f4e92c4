#include "quillon/sync/QNSyncState.h"

#include <string_view>

#include "quillon/platform/text/QNFormat.h"
#include "quillon/platform/text/QNText.h"
#include "quillon/sync/QNSyncSource.h"

// asDictionary(), for diagnosis alone:
//
//   key                                 value                             present
//   "objectID"                          number                            always
//   "objectUUID"                        text, "" without one              always
//   "objectType"                        number                            always
//   "syncedAt"                          number                            always
//   "sourceTimestamp"                   number                            always
//   "localTimestamp"                    number                            always
//   "sourceTimestamp_formatted"         date                              always
//   "localTimestamp_formatted"          date                              always
//   "locationType"                      the source's keychainIdentifier   if it has one
//   "keychainType"                      the source's keychainType         if it has one
//   "source_id"                         the source's oid                  with a source
//   "source_keychainType"               as keychainType                   if it has one
//   "source_locationType"               as locationType                   if it has one
//   "remoteProfileUUID"                 text, "" without one              with a source
//   "remoteProfileTimestamp"            number                            with a source
//   "remoteProfileTimestamp_formatted"  date                              with a source
//   "localProfileUUID"                  text, "" without one              with a source
//   "localProfileTimestamp"             number                            with a source
//   "localProfileTimestamp_formatted"   date                              with a source

namespace quillon {
namespace {

void addIfThere(JsonObject& dictionary, std::string_view key,
                const std::optional<std::string>& text) {
  if (text) dictionary[key] = *text;
}

void addSource(JsonObject& dictionary, const QNSyncSource& source) {
  addIfThere(dictionary, "locationType", source.keychainIdentifier());
  addIfThere(dictionary, "keychainType", source.keychainType());
  dictionary["source_id"] = source.oid();
  addIfThere(dictionary, "source_keychainType", source.keychainType());
  addIfThere(dictionary, "source_locationType", source.keychainIdentifier());
  dictionary["remoteProfileUUID"] = source.remoteProfileUUID().value_or("");
  dictionary["remoteProfileTimestamp"] = source.remoteProfileTimestamp();
  dictionary["remoteProfileTimestamp_formatted"] =
      qn_describedDate(source.remoteProfileTimestamp());
  dictionary["localProfileUUID"] = source.localProfileUUID().value_or("");
  dictionary["localProfileTimestamp"] = source.localProfileTimestamp();
  dictionary["localProfileTimestamp_formatted"] = qn_describedDate(source.localProfileTimestamp());
}

// Logs have always shown these numbers with a sign.
std::int64_t shown(std::uint64_t number) {
  return static_cast<std::int64_t>(number);
}

}  // namespace

std::string QNSyncState::description() const {
  const auto source = this->source();
  return formatted(
      "<QNSyncState: {}> sourceOid={}, itemOid={}, syncedAt={}, sourceTimestamp={}, txTimestamp={}",
      static_cast<const void*>(this), shown(source == nullptr ? 0 : source->oid()),
      shown(_objectID), shown(_syncedAt), shown(_sourceTimestamp), shown(_localTimestamp));
}

JsonObject QNSyncState::asDictionary() const {
  JsonObject dictionary(jsonStorage());
  dictionary["objectID"] = _objectID;
  dictionary["objectUUID"] = _objectUUID.value_or("");
  dictionary["objectType"] = _objectType;
  dictionary["syncedAt"] = _syncedAt;
  dictionary["sourceTimestamp"] = _sourceTimestamp;
  dictionary["localTimestamp"] = _localTimestamp;
  dictionary["sourceTimestamp_formatted"] = qn_describedDate(_sourceTimestamp);
  dictionary["localTimestamp_formatted"] = qn_describedDate(_localTimestamp);
  if (const auto source = this->source()) addSource(dictionary, *source);
  return dictionary;
}

}  // namespace quillon
