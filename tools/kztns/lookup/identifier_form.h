// Identifiers in forms that other clients understand, but that are net service names here.
#pragma once

#include <string>

namespace kztns {

struct IdentifierForm {
  std::string note;  // what it is taken for; empty for a plain name
  std::string name;  // the name in it; empty for none
};

IdentifierForm form_of(const std::string &identifier);

// USER/PASSWORD@NAME and USER:PASSWORD@NAME with *** for the password; USER/PASSWORD, and
// HOST/SERVICE, which looks the same, with *** after the "/"; anything else as it is.
std::string without_password(const std::string &identifier);

}  // namespace kztns
