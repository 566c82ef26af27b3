// Messages of the parametric distributions, written to the node's domain log.
#include "table_generator/distribution_log.h"

#include <cstdarg>

#include "common/error.h"

FILE *distribution_log(const vel_node_t *node) { return node->domain->log_file; }

int report_fault(const vel_node_t *node, int code, const char *format, ...) {
  FILE *log = distribution_log(node);
  if (log == nullptr) return vel::fail(code);
  va_list arguments;
  va_start(arguments, format);
  const int written = vfprintf(log, format, arguments);
  va_end(arguments);
  return vel::fail(written < 0 ? vel_error_io : code);
}
