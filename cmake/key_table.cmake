# Makes a source of the table of keys in docs/names-file.md:
#
#   cmake -DDOCUMENT=docs/names-file.md -DOUTPUT=key_table.cpp -P key_table.cmake
cmake_minimum_required(VERSION 3.25)
file(READ "${DOCUMENT}" table)
string(FIND "${table}" "\n| In | Key | Value | Default | Meaning |\n" at)
if(at LESS 0)
  message(FATAL_ERROR "${DOCUMENT} has no table of keys")
endif()
math(EXPR at "${at} + 1")
string(SUBSTRING "${table}" ${at} -1 table)
string(FIND "${table}" "\n\n" end)
string(SUBSTRING "${table}" 0 ${end} table)
# Without its two lines of heading.
foreach(line RANGE 1)
  string(FIND "${table}" "\n" end)
  math(EXPR end "${end} + 1")
  string(SUBSTRING "${table}" ${end} -1 table)
endforeach()
file(WRITE "${OUTPUT}" "#include \"lsp/key_documents.h\"

namespace kztns::lsp {

std::string_view key_table() {
  return R\"table(${table}
)table\";
}

}  // namespace kztns::lsp
")
