// The fixes of addresses that are written in another form, and of their protocols.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

void mend_protocol(const FaultPlace &place, Diagnosis &diagnosis);

// A descriptor for "host:port/service" at a place.
Fix written_descriptor(const FaultPlace &place, Offset at);

// The items of "(ADDRESS = host:port)".
Fix written_address_block(const FaultPlace &place);

}  // namespace kztns
