// A generation allocates its control data and work buffer and nothing else,
// whatever the size of the table.  Counts operator new and malloc, so it is
// left out of sanitizer builds, whose allocators must not be replaced.
#ifndef VEL_SANITIZED

#include <cstdlib>
#include <new>
#include <string>

#include "generation_test_support.h"
#include "host/allocation.h"

extern "C" void *__libc_malloc(size_t bytes);
extern "C" void __libc_free(void *memory);

namespace {

bool counting = false;
long news = 0;
long mallocs = 0;

}  // namespace

extern "C" void *malloc(size_t bytes) {
  if (counting) ++mallocs;
  return __libc_malloc(bytes);
}

void *operator new(size_t bytes) {
  if (counting) ++news;
  if (void *memory = __libc_malloc(bytes ? bytes : 1)) return memory;
  throw std::bad_alloc();
}

void operator delete(void *memory) noexcept { __libc_free(memory); }
void operator delete(void *memory, size_t) noexcept { __libc_free(memory); }

namespace {

class AllocationTest : public gentest::GenerationTest {
 protected:
  struct Counts { long allocations, news, mallocs; };

  // Counts during a generation, less those of the host handing out the
  // node's table (it builds a temporary node list on every call), which are
  // the host's business rather than the generator's.
  Counts generate(vel_node_t *node) {
    vel_node_get_table(node);  // created outside the count
    Counts host = count([&] { vel_node_get_table(node); });
    long allocations = vel::host::allocation_count();
    int code = 0;
    Counts all = count([&] { code = vel_node_generate_table(node); });
    EXPECT_EQ(code, 0);
    return {vel::host::allocation_count() - allocations, all.news - host.news,
            all.mallocs - host.mallocs};
  }

  template <typename Work>
  Counts count(Work work) {
    news = mallocs = 0;
    counting = true;
    work();
    counting = false;
    return {0, news, mallocs};
  }

  // A node over three parents of `states` states each.
  std::vector<vel_node_t *> parents_of_size(const std::string &prefix, size_t states) {
    std::vector<const char *> labels(states, "s");
    std::vector<vel_node_t *> ps;
    for (const char *name : {"A", "B", "C"}) ps.push_back(labeled((prefix + name).c_str(), labels));
    return ps;
  }
};

TEST_F(AllocationTest, OnlyTheWorkingDataPerGeneration) {
  for (size_t states : {2, 20}) {
    std::string prefix = "P" + std::to_string(states);
    std::vector<vel_node_t *> ps = parents_of_size(prefix, states);
    vel_node_t *x = labeled((prefix + "X").c_str(), {"a", "b", "c", "d"});
    parents(x, ps);
    model(x, {ps[0]}, std::vector<const char *>(states, "Distribution(1, 2, 3, 4)"));
    Counts probability = generate(x);
    EXPECT_EQ(probability.allocations, 2) << states;
    EXPECT_EQ(probability.news, 0) << states;
    EXPECT_LE(probability.mallocs, 2) << states;
    EXPECT_EQ(table(x).back(), 0.4f);

    vel_node_t *u = utility((prefix + "U").c_str());
    parents(u, ps);
    model(u, {}, {"max(1, 2)"});
    Counts utility = generate(u);
    EXPECT_EQ(utility.allocations, 1) << states;
    EXPECT_EQ(utility.news, 0) << states;
    EXPECT_LE(utility.mallocs, 1) << states;
  }
}

}  // namespace

#endif  // VEL_SANITIZED
