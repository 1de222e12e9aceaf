#include "lookup/lookup.h"

#include <cstring>

#include "io/names_file.h"
#include "lookup/identifier_form.h"
#include "lookup/named_file.h"
#include "trace/log_watch.h"

namespace kztns {
namespace {

void take_content(const std::string &path, const LookupOptions &options, Lookup &lookup) {
  const auto content = std::make_shared<MemoryFile>();
  const auto append = [&](std::string_view piece) { return content->append(piece); };
  const auto fault = options.from_input ? read_input_pieces(options.max_size, append)
                                        : read_pieces(path, options.max_size, append);
  if (fault)
    lookup.file_fault = *fault;
  else if (content->error() != 0)
    lookup.file_fault.text = std::string("cannot be copied to ") + content->path() + ": " +
                             std::strerror(content->error());
  else
    lookup.content = content;
}

// The records name the identifier, which may hold a password.
Substitution hidden_password(const std::string &identifier) {
  const std::string shown = without_password(identifier);
  return shown == identifier ? Substitution() : Substitution{identifier, shown};
}

// The library reads the content in place of the file; the log names the file.
std::vector<Rewording> rewordings(const FileChoice &choice) {
  return {{MessageId::tns_file_variable, "get " + choice.variable + ":" + choice.value},
          {MessageId::names_file, "get configure file:" + choice.path}};
}

void build(const std::string &identifier, const LogWatch &watch, Tree &tree, Lookup &lookup) {
  boolean find = 0;
  const sword status =
      KZCITnsBuild(tree.get(), reinterpret_cast<const OraText *>(identifier.c_str()),
                   static_cast<ub4>(identifier.size()), &find);
  lookup.outcome = status != 0 ? Outcome::malformed
                   : find != 0 ? Outcome::found
                               : Outcome::not_found;
  lookup.fault = watch.fault();
}

bool is_literal(const std::string &identifier) {
  return IsDescriptionTns(const_cast<char *>(identifier.c_str()),
                          static_cast<ub4>(identifier.size())) != 0;
}

}  // namespace

Lookup look_up(const std::string &identifier, const LookupOptions &options, Tree &tree) {
  Lookup lookup;
  lookup.is_literal = is_literal(identifier);
  const Substitution hidden = hidden_password(identifier);
  const std::optional<FileChoice> choice =
      lookup.is_literal ? std::nullopt : choose_file(options.file);
  if (!choice) {
    build(identifier, LogWatch(options.shown, {}, hidden), tree, lookup);
    return lookup;
  }
  lookup.variable = choice->variable;
  lookup.file_name = choice->path;
  if (!options.file) lookup.file_note = note_of_cut_path(*choice);
  take_content(choice->path, options, lookup);
  if (lookup.content != nullptr) {
    const std::string &path = lookup.content->path();
    const NamedFile named(path);
    build(identifier, LogWatch(options.shown, rewordings(*choice), hidden), tree, lookup);
  } else if (lookup.file_fault.missing) {
    const NamedFile named(choice->path);
    build(identifier, LogWatch(options.shown, rewordings(*choice), hidden), tree, lookup);
  } else {
    lookup.outcome = Outcome::unreadable;
  }
  return lookup;
}

Lookup look_up_in(const std::string &text, const std::string &identifier, Tree &tree) {
  Lookup lookup;
  lookup.is_literal = is_literal(identifier);
  const auto content = std::make_shared<MemoryFile>();
  content->append(text);
  if (!lookup.is_literal) {
    lookup.file_name = "tnsnames.ora";
    lookup.content = content;
  }
  const NamedFile named(content->path());
  build(identifier, LogWatch(std::nullopt, {}, hidden_password(identifier)), tree, lookup);
  return lookup;
}

std::string link_string(Tree &tree) {
  char dblink[KZCI_DBLINK_SIZE];
  sb4 length = 0;
  [[maybe_unused]] const LogWatch silent(std::nullopt);
  return KZCITnsServiceDblinkGet(tree.service(), dblink, &length) == 0 ? dblink : "";
}

}  // namespace kztns
