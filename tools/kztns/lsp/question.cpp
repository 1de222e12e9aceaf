#include "lsp/question.h"

#include <limits>

#include <nlohmann/json.hpp>

namespace kztns::lsp {
namespace {

std::optional<std::uint32_t> number_in(const Json &value) {
  const std::optional<std::int64_t> number = integer_in(value);
  if (!number || *number < 0) return std::nullopt;
  // A client may say the largest number for "as far as it goes".
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::uint32_t>(std::min(*number, most));
}

// In a file whose lines end with both, a line feed comes after a carriage return.
std::string with_line_ends(std::string text, bool crlf) {
  for (std::size_t at = text.find('\n'); crlf && at != std::string::npos;
       at = text.find('\n', at + 1))
    if (at == 0 || text[at - 1] != '\r') text.insert(at++, 1, '\r');
  return text;
}

}  // namespace

Json refusal_of(const Json &id, const Failure &failure) {
  const Json error = {{"code", static_cast<int>(failure.code)}, {"message", failure.message}};
  return {{"jsonrpc", "2.0"}, {"id", id}, {"error", error}};
}

Json Question::refuse(ErrorCode code, std::string message) const {
  failure = Failure{code, std::move(message)};
  return nullptr;
}

std::optional<LinePosition> position_in(const Json &value) {
  const std::optional<std::uint32_t> line = number_in(member(value, "line"));
  const std::optional<std::uint32_t> character = number_in(member(value, "character"));
  if (!line || !character) return std::nullopt;
  return LinePosition{*line, *character};
}

std::optional<LineRange> range_in(const Json &value) {
  const std::optional<LinePosition> begin = position_in(member(value, "start"));
  const std::optional<LinePosition> end = position_in(member(value, "end"));
  if (!begin || !end) return std::nullopt;
  return LineRange{*begin, *end};
}

Json json_of(LinePosition position) {
  return {{"line", position.line}, {"character", position.character}};
}

Json json_of(LineRange range) {
  return {{"start", json_of(range.begin)}, {"end", json_of(range.end)}};
}

Json location_of(const std::string &uri, LineRange range) {
  return {{"uri", uri}, {"range", json_of(range)}};
}

Json json_of(const std::vector<Edit> &edits, const Document &document) {
  Json list = Json::array();
  for (const Edit &edit : edits)
    list.push_back({{"range", json_of(document.range({edit.begin, edit.end}))},
                    {"newText", with_line_ends(edit.text, document.has_crlf())}});
  return list;
}

Json workspace_edit(const std::string &uri, Json edits) {
  return {{"changes", {{uri, std::move(edits)}}}};
}

Json markdown(const std::string &text) { return {{"kind", "markdown"}, {"value", text}}; }

}  // namespace kztns::lsp
