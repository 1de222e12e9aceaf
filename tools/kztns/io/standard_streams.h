// Standard input, output and error when the caller has closed them.
#pragma once

namespace kztns {

// Puts something in the place of a closed stream, so that no file that is opened
// later becomes it: reading standard input and writing to standard output still fail.
void reserve_standard_streams();

}  // namespace kztns
