// Failures of a generation explained in the domain's log.
#include "table_generator/report_fault.h"

#include <cstdarg>
#include <cstdio>

#include "common/error.h"

int report_fault(const vel_node_t *node, int code, const char *format, ...) {
  FILE *log = node->domain->log_file;
  if (log == nullptr) return vel::fail(code);
  va_list arguments;
  va_start(arguments, format);
  const int written = vfprintf(log, format, arguments);
  va_end(arguments);
  return vel::fail(written < 0 ? vel_error_io : code);
}
