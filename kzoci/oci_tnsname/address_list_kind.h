// How an address list is made, for a written ADDRESS_LIST and for the list that
// a bare ADDRESS implies.
#pragma once

#include "kzoci/oci_tnsname.h"
#include "new_record.h"

namespace kzoci::tns {

constexpr RecordKind<KZCIAddressList> address_list_kind = {
    .tag = "address_list",
    .not_allocated = message::address_list_not_allocated,
    .init = KZCIAddressListInit,
    .init_failed = message::address_list_init_failed,
    .key_met = message::address_list_key,
    .not_built = message::address_list_not_built,
};

}  // namespace kzoci::tns
