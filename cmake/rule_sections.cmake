# Makes a source of the sections of docs/diagnostics.md that describe the rules:
#
#   cmake -DDOCUMENT=docs/diagnostics.md -DOUTPUT=rule_sections.cpp -P rule_sections.cmake
cmake_minimum_required(VERSION 3.25)
file(READ "${DOCUMENT}" rest)
set(rows "")
while(TRUE)
  string(FIND "${rest}" "\n#### " at)
  if(at LESS 0)
    break()
  endif()
  math(EXPR at "${at} + 6")
  string(SUBSTRING "${rest}" ${at} -1 rest)
  string(FIND "${rest}" "\n" end_of_heading)
  string(SUBSTRING "${rest}" 0 ${end_of_heading} id)
  set(section "${rest}")
  foreach(heading IN ITEMS "\n## " "\n### " "\n#### ")
    string(FIND "${section}" "${heading}" end)
    string(SUBSTRING "${section}" 0 ${end} section)
  endforeach()
  string(SUBSTRING "${section}" ${end_of_heading} -1 section)
  string(STRIP "${section}" section)
  string(APPEND rows "    {\"${id}\", R\"section(${section}\n)section\"},\n")
endwhile()
file(WRITE "${OUTPUT}" "#include \"rules/rule_sections.h\"

namespace kztns {
namespace {

constexpr RuleSection sections[] = {
${rows}};

}  // namespace

std::span<const RuleSection> rule_sections() { return sections; }

}  // namespace kztns
")
