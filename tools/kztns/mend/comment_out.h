// Turns entries into comments: those that cannot be served, and those of a name that has
// several.
#pragma once

#include <optional>

#include "mend/mend_file.h"

namespace kztns {

// A part of a text, and why it becomes a comment.
struct CommentedPart {
  Offset begin;
  Offset end;
  std::string reason;
};

// The edits that make comments of parts that follow each other: "# " before each line, and
// a line with the reason before them.
std::vector<Edit> as_comments(std::string_view text, const std::vector<CommentedPart> &parts);

enum class Keep { first, last };

// Of the entries of a name all but one. The last one is the last that the library builds, if
// lookups find it once the others are comments; otherwise the last that they come to.
void comment_out_duplicates(Mender &mender, Keep keep);

// What is not served: first what the library refuses and what ends the lookups, then what
// lookups still do not reach, then what would end them there.
void comment_out_unserved(Mender &mender);

// What becomes a comment when a file is mended.
struct Commenting {
  std::optional<Keep> keep = {};  // absent: the entries of a name stay
  bool unserved = false;
};

// Applies fixes and makes comments until neither changes anything.
void mend(Mender &mender, const Commenting &commenting);

}  // namespace kztns
