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
  // _vel_allocate calls, operator new calls and mallocs of one generation of
  // a node whose table exists already.
  void expect_generation_allocates(vel_node_t *node, long working_data) {
    SCOPED_TRACE(vel_node_get_name(node));
    vel_node_get_table(node);
    long allocations = vel::host::allocation_count();
    news = mallocs = 0;
    counting = true;
    int code = vel_node_generate_table(node);
    counting = false;
    EXPECT_EQ(code, 0);
    EXPECT_EQ(vel::host::allocation_count() - allocations, working_data);
    EXPECT_EQ(news, 0);
    EXPECT_LE(mallocs, working_data);
  }
};

TEST_F(AllocationTest, OnlyTheWorkingDataPerGeneration) {
  for (size_t states : {2, 20}) {
    std::string prefix = "P" + std::to_string(states);
    std::vector<const char *> labels(states, "s");
    std::vector<vel_node_t *> ps;
    for (const char *name : {"A", "B", "C"}) ps.push_back(labeled((prefix + name).c_str(), labels));
    vel_node_t *x = labeled((prefix + "X").c_str(), {"a", "b", "c", "d"});
    parents(x, ps);
    model(x, {ps[0]}, std::vector<const char *>(states, "Distribution(1, 2, 3, 4)"));
    expect_generation_allocates(x, 2);
    EXPECT_EQ(table(x).back(), 0.4f);

    vel_node_t *u = utility((prefix + "U").c_str());
    parents(u, ps);
    model(u, {}, {"max(1, 2)"});
    expect_generation_allocates(u, 1);

    // Interval parents: rows computed in batches over sample points, the
    // compiled programs and their lanes in the same working data.
    std::vector<double> bounds;
    for (size_t i = 0; i <= states; ++i) bounds.push_back(static_cast<double>(i));
    vel_node_t *i1 = interval((prefix + "I").c_str(), bounds), *i2 = interval((prefix + "J").c_str(), bounds);
    vel_node_t *y = labeled((prefix + "Y").c_str(), {"a", "b", "c"});
    parents(y, {ps[0], i1, i2});
    const std::string i = prefix + "I", j = prefix + "J";
    const std::string weights = "Distribution(exp(-" + i + "), 1 + " + j + " / 2, " + i + " * " + j + ")";
    model(y, {ps[0]}, std::vector<const char *>(states, weights.c_str()));
    expect_generation_allocates(y, 2);
    vel_node_t *v = utility((prefix + "V").c_str());
    parents(v, {i1, ps[1], i2});
    const std::string value = "if(" + i + " > " + j + ", sqrt(" + i + ") * " + j + ", -exp(" + j + " - " + i + "))";
    model(v, {}, {value.c_str()});
    expect_generation_allocates(v, 1);
  }
}

}  // namespace

#endif  // VEL_SANITIZED
