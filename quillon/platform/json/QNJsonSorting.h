#pragma once

#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// A copy in the wiping resource with the members of each object in the order of their keys'
/// bytes, at every depth. Numbers of one exact value get one form. So equal content, as equalJson()
/// has it, gives an equal text. Objects stay objects, since they keep an order here.
Json mr_arrayByDeepSortingDictionariesInJSONObject(const Json& value);
/// The same without a copy: in the place of the object that is given away.
JsonObject mr_arrayByDeepSortingDictionariesInJSONObject(JsonObject&& object);

}  // namespace quillon
