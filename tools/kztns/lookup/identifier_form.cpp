#include "lookup/identifier_form.h"

#include <string_view>

#include "text/characters.h"

namespace kztns {
namespace {

// HOST:PORT/SERVICE, of which port or service may be left out.
bool is_host_and_service(std::string_view text) {
  if (text.find('/') != std::string_view::npos) return true;
  const std::size_t colon = text.rfind(':');
  return colon != std::string_view::npos && colon + 1 < text.size() &&
         text.find_first_not_of("0123456789", colon + 1) == std::string_view::npos;
}

IdentifierForm form_of_text(std::string_view text) {
  if (text.starts_with("("))
    return {
        "only (DESCRIPTION = ...) is read as a descriptor: anything else, (DESCRIPTION_LIST = "
        "...) too, is looked up as a name; give one DESCRIPTION",
        ""};
  if (is_host_and_service(text))
    return {
        "HOST:PORT/SERVICE is looked up as a name; add an entry for it, or give "
        "(DESCRIPTION = (ADDRESS = ...)(CONNECT_DATA = ...))",
        ""};
  return {"", std::string(text)};
}

// HOST:PORT, "//HOST" and PROTOCOL://HOST come before a service, not before a password.
bool is_address(std::string_view before_slash, std::string_view after_slash) {
  if (before_slash.empty()) return true;
  if (before_slash.back() == ':') return after_slash.starts_with('/');
  const std::size_t digits = before_slash.find_last_not_of("0123456789");
  return digits != std::string_view::npos && digits + 1 < before_slash.size() &&
         before_slash[digits] == ':';
}

// HOST/SERVICE looks the same as USER/PASSWORD, and is taken for it.
std::string without_password_after_slash(const std::string &identifier) {
  const std::size_t slash = identifier.find('/');
  if (slash == std::string::npos) return identifier;
  const std::string_view text = identifier;
  if (is_address(trimmed(text.substr(0, slash)), text.substr(slash + 1))) return identifier;
  return identifier.substr(0, slash + 1) + "***";
}

}  // namespace

IdentifierForm form_of(const std::string &identifier) {
  const std::string_view text = trimmed(identifier);
  const std::size_t at = text.rfind('@');
  if (!text.starts_with("(") && at != std::string_view::npos) {
    IdentifierForm form = form_of_text(trimmed(text.substr(at + 1)));
    form.note = "USER/PASSWORD@NAME is looked up as a name; give what comes after the \"@\"" +
                (form.note.empty() ? "" : "; " + form.note);
    return form;
  }
  IdentifierForm form = form_of_text(text);
  if (form.note.empty() && text.size() < identifier.size())
    form.note = "the identifier has blanks before or after the name; give the name without them";
  if (form.note.empty()) form.name.clear();
  return form;
}

std::string without_password(const std::string &identifier) {
  if (identifier.starts_with("(")) return identifier;
  const std::size_t at = identifier.rfind('@');
  if (at == std::string::npos) return without_password_after_slash(identifier);
  const std::size_t mark = identifier.find_first_of("/:");
  if (mark >= at) return identifier;
  return identifier.substr(0, mark + 1) + "***" + identifier.substr(at);
}

}  // namespace kztns
