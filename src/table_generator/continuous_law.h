// A continuous distribution with its parameters evaluated and checked: what
// continuous_distribution needs to put its mass on the states of a node.
#pragma once

#include <cfloat>
#include <cstdint>

#include "host/records.h"
#include "table_generator/builder_arguments.h"

struct continuous_law_t {
  uint32_t op;        // operator code, Normal (60) ... PERT (68)
  double p[4];        // the interval function's parameters, in its argument order
  double location;    // LogNormal, Gamma, Exponential, Weibull: subtracted from both ends
  double support_lo;  // support of the distribution, -DBL_MAX / DBL_MAX when unbounded
  double support_hi;
};

// Evaluates the distribution's parameters in argument order and checks them
// (messages to the node's log; error 37 for a parameter out of its domain).
int read_continuous_law(const builder_arguments_t &distribution, const vel_node_t *node,
                        continuous_law_t *law);

// The larger of a and b (a on equality) and the smaller (b on equality).
inline double dmax(double a, double b) { return a >= b ? a : b; }
inline double dmin(double a, double b) { return a < b ? a : b; }
// x - c for finite x; an infinite end stays where it is.
inline double shift(double x, double c) { return -DBL_MAX < x && x < DBL_MAX ? x - c : x; }
