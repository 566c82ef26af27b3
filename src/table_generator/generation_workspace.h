// The working data of one generation that follows the control records in
// the block of _vel_create_control_data_for_tg.
#pragma once

#include <cstdint>

#include "host/records.h"

extern "C" {
// Bytes of the block of one generation of the table from the model: the
// control records, then the rest of the working data (the largest size
// value when it cannot be had, so that the allocation fails).
uint64_t _vel_generation_block_bytes(const vel_table_t *table, const vel_model_t *model);
}

struct batch_plan_t;

struct generation_workspace_t {
  double *blocks;       // utility rows: three doubles per table node and one more
  batch_plan_t *batch;  // NULL: every row is computed on the scalar path
};

// Lays the workspace out after the control records (once per generation).
generation_workspace_t workspace_of(vel_control_t *control, vel_table_t *table, const vel_model_t *model);
