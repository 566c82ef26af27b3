/*
 * vel_io: model files and BIF/XMLBIF networks loaded into domains, for
 * programs that use the C API (and for the Python package).  It lives in
 * libvel_io.so, beside libvel.so, because reading YAML and XML needs
 * yaml-cpp and expat, which libvel.so does not use.
 *
 * Conventions as in vel.h: C linkage; no exception crosses the boundary.
 */
#ifndef VEL_VEL_IO_H
#define VEL_VEL_IO_H

#include "vel/vel.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Reads the file at `path` and builds its domain.  The format comes from
 * the extension (.yaml, .yml, .json: a model file; .bif: BIF; .xml,
 * .xmlbif: XMLBIF) or, when the extension says nothing, from the content.
 * A model file's `evidence` is entered (vel_node_enter_evidence or
 * vel_node_enter_likelihood), ready for vel_domain_compile, unless the file
 * has an `inference` block, whose stated results (and evidence states) are
 * set as given.
 *
 * On success returns the domain, which the caller deletes with
 * vel_domain_delete, and, when `name` is not NULL, stores in *name the
 * domain's name (the file's `domain` key or the network's name, else the
 * file name without directory and extension).  On failure returns NULL,
 * builds nothing, and, when `error` is not NULL, stores in *error the
 * reason: "FILE:LINE:COLUMN: message" (1-based) at the offending item, or
 * "FILE: reason" when the file cannot be read.  Strings stored in *name and
 * *error are freed with vel_io_free; either is NULL when memory runs out. */
vel_domain_t *vel_io_load_file(const char *path, char **name, char **error);

/* Frees a string returned by vel_io_load_file; NULL is allowed. */
void vel_io_free(void *memory);

#ifdef __cplusplus
}
#endif

#endif /* VEL_VEL_IO_H */
