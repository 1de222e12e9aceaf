// The fixes of addresses that are written in another form, and of their protocols.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

Mending mend_protocol(const FaultPlace &place);

// A descriptor for "host:port/service" instead of an entry's blocks.
Fix written_descriptor(const FaultPlace &place);

// The items of "(ADDRESS = host:port)".
Fix written_address_block(const FaultPlace &place);

}  // namespace kztns
