// bench_bare NAME [--runs N] [--dump FILE]: computes the table of
// bench/models/NAME.yaml with its bare loop N times (default 1), printing the
// CPU milliseconds of each fill on its own line, and writes the table's
// single-precision entries (native byte order) to FILE.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "bare_table.h"

std::unique_ptr<BareTable> make_bare_table(std::string_view name) {
  if (name == "utility_expressions") return make_utility_expressions();
  if (name == "distribution_weights") return make_distribution_weights();
  if (name == "normal_linear") return make_normal_linear();
  if (name == "gamma_truncated") return make_gamma_truncated();
  if (name == "pert") return make_pert();
  if (name == "poisson_interval") return make_poisson_interval();
  if (name == "gamma_numbered") return make_gamma_numbered();
  return nullptr;
}

namespace {

double cpu_ms() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

int usage() {
  std::fprintf(stderr, "usage: bench_bare NAME [--runs N] [--dump FILE]\n");
  return 2;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) return usage();
  int runs = 1;
  const char *dump = nullptr;
  for (int i = 2; i < argc; ++i) {
    const std::string_view option = argv[i];
    if (i + 1 >= argc) return usage();
    if (option == "--runs") {
      runs = std::atoi(argv[++i]);
    } else if (option == "--dump") {
      dump = argv[++i];
    } else {
      return usage();
    }
  }
  std::unique_ptr<BareTable> bare = make_bare_table(argv[1]);
  if (!bare) {
    std::fprintf(stderr, "bench_bare: no model %s\n", argv[1]);
    return 2;
  }
  std::vector<float> table(bare->entries());
  for (int run = 0; run < runs; ++run) {
    const double start = cpu_ms();
    bare->fill(table.data());
    std::printf("%.3f\n", cpu_ms() - start);
  }
  if (dump != nullptr) {
    std::FILE *out = std::fopen(dump, "wb");
    if (out == nullptr || std::fwrite(table.data(), sizeof(float), table.size(), out) != table.size() ||
        std::fclose(out) != 0) {
      std::fprintf(stderr, "bench_bare: cannot write %s\n", dump);
      return 1;
    }
  }
  return 0;
}
