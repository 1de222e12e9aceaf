// Why a lookup came to nothing, in one line.
#pragma once

#include <string>
#include <vector>

#include "lookup/lookup.h"
#include "lookup/lookup_report.h"

namespace kztns {

// The report of a lookup that was made; empty of a name whose file is not there.
LookupReport make_lookup_report(const std::string &identifier, const Lookup &lookup);

// Appends the note about the file's path, if there is one, with "; " after other text.
void add_file_note(const Lookup &lookup, std::string &text);

// The clauses about near entries, each with "; " before it.
std::string near_clauses(const LookupReport &report);

// What the outcome of a lookup is called: why there is nothing to show, without
// the label.
std::string describe_failure(const Lookup &lookup, const LookupReport &report);

// Prints on standard error why there is nothing to show; returns the ExitStatus
// that goes with it.
int explain_failure(const std::string &identifier, const Lookup &lookup);

// What to call the identifier in a message.
std::string label_of(const std::string &identifier, const Lookup &lookup);

// The ExitStatus that goes with an outcome.
int status_of(Outcome outcome);

}  // namespace kztns
