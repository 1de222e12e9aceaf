#include <nlohmann/json.hpp>

#include "format/format_file.h"
#include "lsp/capabilities.h"

namespace kztns::lsp {
namespace {

// More than that is no indentation any more.
constexpr std::int64_t most_indent = 16;

FormatOptions options_in(const Json &params) {
  FormatOptions options;
  const std::optional<std::int64_t> size = integer_in(member(params, "options", "tabSize"));
  if (size && *size > 0 && *size <= most_indent)
    options.indent.assign(static_cast<std::size_t>(*size), ' ');
  if (member(params, "options", "insertSpaces") == false) options.indent.assign(1, '\t');
  return options;
}

Json formatted(const Question &question, const std::optional<Span> &range) {
  const Formatted result =
      format_file(NamesText(question.document.text()), options_in(question.params), range);
  return json_of(result.edits, question.document);
}

}  // namespace

Json format_document(const Question &question) { return formatted(question, std::nullopt); }

Json format_range(const Question &question) {
  const std::optional<LineRange> range = range_in(member(question.params, "range"));
  if (!range) return question.refuse(invalid_params, "expected a range");
  return formatted(question, question.document.span(*range));
}

}  // namespace kztns::lsp
