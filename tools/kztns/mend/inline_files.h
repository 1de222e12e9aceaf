// Puts the files that IFILE lines name in the lines' places.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "mend/mend_file.h"

namespace kztns {

// The file that an IFILE line names; empty for another line.
std::string_view included_file(std::string_view line);

// An IFILE line, without its end, and the file that it names.
struct IncludeLine {
  Span whole;
  std::string_view file;
};

// The IFILE lines of a text, in its order.
std::vector<IncludeLine> include_lines(std::string_view text);

// A file that a line of another one names, by its own path.
std::string from_folder_of(const std::string &path, const std::string &file);

struct InlinedFiles {
  std::vector<Edit> edits;             // of the text
  std::vector<MendedFinding> inlined;  // a line each
  // Why files are not inlined, "FILE:LINE:COLUMN: error: ..."; their lines stay.
  std::vector<std::string> faults;
};

// The text is that of the file at path, from whose folder on relative names lead. All files
// together may have so many bytes.
InlinedFiles inline_files(const std::string &path, const NamesText &text, std::uint64_t max_size);

}  // namespace kztns
