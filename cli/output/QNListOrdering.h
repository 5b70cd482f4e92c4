#pragma once

#include <cstdint>
#include <string>

#include "cli/arguments/QNArguments.h"
#include "quillon/items/QNItem.h"

namespace quillon {

/// Bytes whose order is that of the items in a list: lower ranks first, then as the order says,
/// then by title as the user's language sorts, then by uuid.
std::string listKeyOf(QNItem& item, QNListOrder order, std::uint32_t rank = 0);

/// The heading that an item stands under: the first letter of its title, its category, a month
/// ("2026-11") of the user's time zone, or how strong its password is ("20–39"); "—" for none.
std::string sectionTitleOf(QNItem& item, QNListOrder order);

}  // namespace quillon
