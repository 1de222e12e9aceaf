/* The levels of the log as a C program uses them. */
#ifndef KZOCI_TESTS_LOG_LEVEL_IN_C_H
#define KZOCI_TESTS_LOG_LEVEL_IN_C_H

#include "kzoci/platform/default_logger.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Sets the threshold by a name without the word enum, and gives the former one. */
log_level replace_threshold_in_c(log_level level);

#ifdef __cplusplus
}
#endif

#endif
