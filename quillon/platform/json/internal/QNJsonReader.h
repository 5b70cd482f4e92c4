#pragma once

#include "quillon/platform/json/QNJson.h"

namespace quillon {

/// What mr_valueFromJSONDataWithError() does, into that memory.
std::optional<Json> readJson(ByteView data, boost::json::storage_ptr storage, QNError* error);

}  // namespace quillon
