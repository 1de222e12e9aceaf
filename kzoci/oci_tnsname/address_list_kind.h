// How an address list is made, for a written ADDRESS_LIST and for the list that
// a bare ADDRESS implies.
#pragma once

#include "kzoci/oci_tnsname.h"
#include "new_record.h"

namespace kzoci::tns {

constexpr RecordKind<KZCIAddressList> address_list_kind = {
    .tag = "address_list",
    .malloc_failure = "malloc address_list error, malloc size:%lu",
    .init = KZCIAddressListInit,
    .init_failure = "fail to call KZCIAddressListInit",
};

}  // namespace kzoci::tns
