// The command's check and fix of a names file of any bytes.
//
//   input := options names-file
//
// The options are the bits of one byte: fixes that guess, comments in the place of what
// is not served, the last of the entries of a name.
#include <string>
#include <string_view>

#include "check/check_file.h"
#include "fuzz/support/check.h"
#include "fuzz/support/target.h"
#include "mend/comment_out.h"

namespace {

using kztns::Mender;
using kztns::NamesText;
using kztns::Verdict;

std::size_t count_of(const kztns::CheckReport &report, Verdict verdict) {
  return report.verdicts[static_cast<std::size_t>(verdict)];
}

std::size_t errors_of(const kztns::CheckReport &report) {
  return count(report, kztns::Severity::error);
}

// What is not served is reported.
void check_report(const NamesText &text) {
  const kztns::CheckReport report = kztns::check_file(text, {"names"});
  const std::size_t unserved =
      count_of(report, Verdict::refused) + count_of(report, Verdict::unreachable);
  fuzz::check(unserved == 0 || errors_of(report) > 0, "%zu entries are lost without a finding",
              unserved);
  for (const kztns::Finding &finding : report.findings)
    for (const kztns::Edit &edit : finding.fix.edits)
      fuzz::check(edit.begin <= edit.end && edit.end <= text.size(), "an edit out of the text");
}

std::string fixed_once(const std::string &content, bool with_unsafe,
                       const kztns::Commenting &commenting, bool &stopped) {
  const NamesText text(content);
  Mender mender(text, {.file = "names", .with_unsafe = with_unsafe});
  kztns::mend(mender, commenting);
  stopped = mender.stopped();
  const NamesText result(mender.text().text());
  if (content != result.text())
    fuzz::check(mender.lost_in(kztns::served_names(result)).empty(), "a name is lost");
  return result.text();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size == 0) return 0;
  const unsigned options = data[0];
  const std::string content(reinterpret_cast<const char *>(data) + 1, size - 1);
  const bool with_unsafe = (options & 1) != 0;
  kztns::Commenting commenting;
  commenting.unserved = (options & 2) != 0;
  if ((options & 4) != 0) commenting.keep = kztns::Keep::last;

  check_report(NamesText(content));
  bool stopped = false;
  const std::string once = fixed_once(content, with_unsafe, commenting, stopped);
  if (stopped) return 0;
  check_report(NamesText(once));
  const std::string twice = fixed_once(once, with_unsafe, commenting, stopped);
  fuzz::check(once == twice, "fixing twice is not fixing once: %s", twice.c_str());
  return 0;
}
