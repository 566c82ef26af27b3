// Messages of the parametric distributions, written to the node's domain log.
#pragma once

#include <cstdio>

#include "host/records.h"

// The domain's log stream of the node, or nullptr when none is set.
FILE *distribution_log(const vel_node_t *node);

// Writes the formatted message when the node's domain has a log and sets the
// error code: `code`, or vel_error_io when the write fails.  Returns it.
int report_fault(const vel_node_t *node, int code, const char *format, ...)
    __attribute__((format(printf, 3, 4)));
