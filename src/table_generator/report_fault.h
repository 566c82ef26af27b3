// Failures of a generation explained in the domain's log.
#pragma once

#include "host/records.h"

// Writes the formatted message when the node's domain has a log and sets the
// error code: `code`, or vel_error_io when the write fails.  Returns it.
int report_fault(const vel_node_t *node, int code, const char *format, ...)
    __attribute__((format(printf, 3, 4)));
