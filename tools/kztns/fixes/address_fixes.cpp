#include "fixes/address_fixes.h"

#include <algorithm>

#include "fixes/block_fixes.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

// HOST:PORT, the port a number; false for anything else.
bool split_address(std::string_view text, std::string_view &host, std::string_view &port) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  host = text.substr(0, colon);
  port = text.substr(colon + 1);
  return !port.empty() && std::all_of(port.begin(), port.end(), is_digit) &&
         host.find_first_of(":/@\"'<>,") == std::string_view::npos;
}

std::string written_address(std::string_view host, std::string_view port) {
  return "(HOST = " + std::string(host) + ")(PORT = " + std::string(port) + ")";
}

// The length of what URLs have before the host: a driver's two words and "@", "tcp://" or "//".
// What may be a user before the "@" is none.
std::size_t prefix_of_address(std::string_view word) {
  const std::size_t sign = word.find('@');
  const bool has_driver =
      sign != word.npos && sign > 0 && word[sign - 1] == ':' && word.find(':') < sign - 1;
  std::size_t length = has_driver || sign == 0 ? sign + 1 : 0;
  const bool has_protocol = equal_but_for_case(word.substr(length, 4), "tcp:") &&
                            word.substr(length + 4).starts_with("//");
  if (has_protocol) length += 4;
  if (word.substr(length).starts_with("//")) length += 2;
  return length;
}

// Whether a value without a block ends at a place: more on its line, or a block after it,
// is not understood.
bool ends_value(std::string_view text, Offset at) {
  const std::string_view rest = text.substr(at, text.find('\n', at) - at);
  const std::string_view more = trimmed(rest);
  const Offset next = pass_blanks(text, at);
  return (more.empty() || more.starts_with('#')) && (next >= text.size() || text[next] != '(');
}

}  // namespace

Mending mend_protocol(const FaultPlace &place) {
  std::string_view protocol = trimmed(place.value());
  protocol = protocol.substr(0, protocol.find_last_not_of(",;=\\") + 1);
  if (protocol.size() > 1 && protocol.starts_with('\'') && protocol.ends_with('\''))
    protocol = protocol.substr(1, protocol.size() - 2);
  // Of two that are equally near, the encrypted one: encryption is not given up in silence.
  const std::string_view near = near_word(protocol, {"TCPS", "WSS", "HTTPS", "TCP"});
  const bool plain =
      near == "TCP" || is_one_of(protocol, {"TCP", "TCPIP", "TCP/IP", "TCP4", "TCP6", "TCPTCP"});
  if (plain) return {place.with_value(Applicability::unsafe, "TCP"), "did you mean TCP?"};
  if (!near.empty() && !is_one_of(protocol, {"HTTP", "WS"}))
    return {{}, "give an address that is served by TCP, if it may do without the encryption"};
  // A server is not given up for a slip, or for a word that is to be replaced.
  const bool is_known = is_one_of(protocol, {"IPC", "HTTP", "WS"});
  if (Fix fix = is_known ? without_address(place) : Fix())
    return {std::move(fix), "remove the address: another one is left"};
  return {{}, "give an address that is served by TCP"};
}

Fix written_descriptor(const FaultPlace &place) {
  const Offset at = place.diagnosis().at;
  std::string_view word = place.text().substr(at);
  word = word.substr(0, word.find_first_of(blanks));
  const auto end = at + static_cast<Offset>(word.size());
  if (!ends_value(place.text(), end)) return {};
  if (word.size() > 2 && word.starts_with('"') && word.ends_with('"'))
    word = word.substr(1, word.size() - 2);
  word.remove_prefix(prefix_of_address(word));
  // The service comes after a slash, a SID after another colon.
  const bool has_slash = word.find('/') != std::string_view::npos;
  const std::size_t sign = has_slash ? word.find('/') : word.rfind(':');
  std::string_view host;
  std::string_view port;
  if (sign == std::string_view::npos || !split_address(word.substr(0, sign), host, port)) return {};
  const std::string_view service = word.substr(sign + 1);
  if (service.empty() || service.find_first_of("/:()=\"") != std::string_view::npos) return {};
  return unsafe_fix(
      {{at, end,
        "(DESCRIPTION = (ADDRESS = " + written_address(host, port) + ")(CONNECT_DATA = (" +
            (has_slash ? "SERVICE_NAME = " : "SID = ") + std::string(service) + ")))"}});
}

Fix written_address_block(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  const std::optional<Span> word = item ? word_of(place.text(), *item) : std::nullopt;
  std::string_view host;
  std::string_view port;
  if (!word || !place.has_key(*item, "ADDRESS") || !split_address(place.slice(*word), host, port))
    return {};
  return unsafe_fix({{word->begin, word->end, written_address(host, port)}});
}

}  // namespace kztns
