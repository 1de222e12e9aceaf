#include "rules/rules.h"

namespace kztns {
namespace {

constexpr Severity error = Severity::error;
constexpr Severity warning = Severity::warning;
constexpr Severity note = Severity::note;

constexpr RuleText texts[] = {
    {"unknown-key", error, "An unknown key", "remove the item"},
    {"misplaced-key", error, "A key in a block where it is not allowed",
     "move the item to its block"},
    {"missing-equal", error, "A key without \"=\"", "put \"=\" after the key"},
    {"missing-close", error, "A block that is not closed before something else begins",
     "close the block with \")\""},
    {"missing-key", error, "A \"(\" without a key after it", "write (KEY = value)"},
    {"missing-value", error, "A key without a value", "give a value, or remove the item"},
    {"block-for-value", error, "A block where a value is expected",
     "write the value without parentheses, or in quotes"},
    {"value-for-block", error, "A value where a block is expected", "write (KEY = (...))"},
    {"empty-block", error, "A block without items", "fill the block, or remove it"},
    {"no-block", error, "An entry whose value does not begin with \"(\"",
     "write NAME = (DESCRIPTION = ...)"},
    {"unquoted-value", error, "A value that continues after a blank, \"(\" or \"=\"",
     "put the value in double quotes"},
    {"comment-in-value", error, "A comment after a value, which hides its \")\"",
     "put the value in double quotes, or the comment after the \")\""},
    {"bad-protocol", error, "A protocol other than TCP", "write (PROTOCOL = TCP)"},
    {"bad-word", error, "A switch or strategy that is not one of the words", "write one of them"},
    {"bad-number", error, "A value that is not a number", "write a 64-bit integer"},
    {"second-address", error, "An ADDRESS of the description itself after another one or a list",
     "put the addresses into one ADDRESS_LIST"},
    {"second-connect-data", error, "A second CONNECT_DATA, which ends the description",
     "merge it with the first"},
    {"key-cut", error, "A token of more than 256 characters, which is cut there",
     "shorten it to 256 characters"},
    {"key-refused", error, "A token of 256 characters that ends at a 1024-byte read boundary",
     "shorten it to 255 characters"},
    {"unclosed-quote", error, "An unterminated quote", "close the quotes"},
    {"unclosed-block", error, "A block that the end of the file leaves open",
     "close the block with \")\""},
    {"quoted-entry", error, "An entry whose whole value is in quotes", "remove the quotes"},
    {"unexplained", error, "An entry that the library refuses", "compare it with the log"},
    {"byte-order-mark", error, "A byte order mark, which belongs to the first name",
     "save the file without a byte order mark"},
    {"utf-16", error, "A file in UTF-16",
     "save the file as plain ASCII, or as UTF-8 without a byte order mark"},
    {"odd-bytes", error, "An invisible character, which is not a blank here", "remove it"},
    {"ifile", error, "An IFILE line: included files are not supported",
     "put the file's entries here"},
    {"comma-list", error, "A list of names: one entry has one name",
     "write an entry for each name"},
    {"stray-text", error, "Text between entries that is not an entry",
     "remove it, or begin each line with \"#\""},
    {"extra-close", error, "An unmatched \")\"", "remove it"},
    {"second-block", error, "An entry of several blocks, after which no name is found",
     "give each block an entry of its own, or move this entry to the end of the file"},
    {"paren-in-comment", error, "A parenthesis in an entry's comment, which lookups count",
     "remove it, or put its partner into the comment"},
    {"paren-in-quotes", error, "A parenthesis in an entry's quotes, which lookups count",
     "move the entry to the end of the file, or remove the parenthesis"},
    {"reserved-part", error, "A name that is a prefix of KZCISYSTEMVARIABLES", "rename the entry"},
    {"after-reserved", error, "An entry after the reserved one, where every lookup ends",
     "move it before that entry"},
    {"unreachable", error, "An entry that no lookup reaches", "fix what stops the lookups"},
    {"lost-name", error, "A word at the end of the file, which is lost", "complete or remove it"},
    {"gave-up", error, "A file whose entries are read over and over", "fix the findings above"},
    {"duplicate", warning, "A second entry of a name", "remove one of them"},
    {"case-differs", warning, "Names that differ only in case", "spell them alike, or rename one"},
    {"overlong-value", warning, "A text that is too long and is dropped", "shorten it"},
    {"no-host", warning, "An address without HOST", "add (HOST = ...)"},
    {"no-port", warning, "An address without PORT", "add (PORT = ...)"},
    {"bad-port", warning, "A port that is not a number from 1 to 65535", "write the port's number"},
    {"no-address", warning, "A description without an address",
     "add (ADDRESS = (HOST = ...)(PORT = ...))"},
    {"no-service", warning, "A description without SERVICE_NAME and SID",
     "add (CONNECT_DATA = (SERVICE_NAME = ...))"},
    {"abbreviated-word", warning, "A word that is abbreviated", "write it out"},
    {"negative-number", warning, "A negative number where it makes no sense", "write 0 or more"},
    {"narrowed-number", warning, "A number that does not fit its field", "write a number in range"},
    {"log-level", warning, "An unknown LOG_LEVEL",
     "write TRACE, DEBUG, INFO, WARN, ERROR, FATAL or SLOWSQL"},
    {"unknown-setting", warning, "An unknown system variable, which is ignored", "remove the item"},
    {"retry-delay", note, "RETRY_DELAY, which is read but ignored", "remove the item"},
};
static_assert(sizeof texts / sizeof *texts == rule_count);

}  // namespace

const RuleText &text_of(Rule rule) { return texts[static_cast<std::size_t>(rule)]; }

std::string_view name_of(Severity severity) {
  switch (severity) {
    case Severity::error:
      return "error";
    case Severity::warning:
      return "warning";
    case Severity::note:
      return "note";
  }
  return "";
}

}  // namespace kztns
