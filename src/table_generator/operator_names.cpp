// Texts of the named operators, as written in expressions and log messages.
#include "table_generator/table_generator.h"

const char *const operator_names[41] = {
    "Normal",      "LogNormal", "Beta",         "Gamma",  "Exponential",
    "Weibull",     "Uniform",   "Triangular",   "PERT",   "Binomial",
    "Poisson",     "NegativeBinomial", "Geometric", "Distribution", "NoisyOR",
    "truncate",    "aggregate", "probability",  "variance", "quantile",
    "min",         "max",       "log",          "log2",   "log10",
    "exp",         "sin",       "cos",          "tan",    "sinh",
    "cosh",        "tanh",      "sqrt",         "abs",    "floor",
    "ceil",        "mod",       "if",           "and",    "or",
    "not",
};
