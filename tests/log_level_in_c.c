#include "log_level_in_c.h"

log_level replace_threshold_in_c(log_level level) {
  const log_level former = kzoci_log_threshold();
  const enum log_level same = level;
  kzoci_log_set_threshold(same);
  return former;
}
