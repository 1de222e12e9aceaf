// The fixes of blocks: addresses without a list, second blocks, lists of descriptions.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// Puts bare addresses in lists.
Fix with_address_lists(const FaultPlace &place);

// Makes one of two CONNECT_DATA, where no key of both differs.
Fix with_one_connect_data(const FaultPlace &place);

// Removes the address at fault, where one that can be served is left.
Fix without_address(const FaultPlace &place);

// Whether the item at fault is a list of descriptions, with nothing else in it that would be given
// up without it.
bool is_list_of_descriptions(const FaultPlace &place);

// Removes the list around the descriptions of an entry. Where entries come after it, only
// its first block can be passed over: the other descriptions become entries of their own.
Fix unwrapped(const FaultPlace &place);

// Takes away one of two blocks of the same key, where the inner one is all that the outer one
// holds.
Fix without_inner_block(const FaultPlace &place, const WrittenItem &inner);

}  // namespace kztns
