// A continuous distribution with its parameters evaluated and checked: what
// continuous_distribution needs to put its mass on the states of a node.
#pragma once

#include <cstdint>

#include "host/records.h"

struct continuous_law_t {
  uint32_t op;        // operator code, Normal (60) ... PERT (68)
  double p[4];        // the interval function's parameters, in its argument order
  double location;    // LogNormal, Gamma, Exponential, Weibull: subtracted from both ends
  double support_lo;  // support of the distribution, -DBL_MAX / DBL_MAX when unbounded
  double support_hi;
};

// Evaluates the distribution's parameters in argument order and checks them
// (messages to the node's log; error 37 for a parameter out of its domain).
int read_continuous_law(const vel_expression_t *distribution, const vel_node_t *node,
                        continuous_law_t *law);

// Probability that the distribution puts on (x1, x2); negative on failure,
// with the error code set.  Infinite ends are accepted.
double law_mass(const continuous_law_t *law, double x1, double x2);

// The larger of a and b (a on equality) and the smaller (b on equality).
double dmax(double a, double b);
double dmin(double a, double b);
// x - c for finite x; an infinite end stays where it is.
double shift(double x, double c);
