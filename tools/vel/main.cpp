// The vel program: not built yet.
#include <cstdio>

int main() {
  std::fputs("vel: no commands yet\n", stderr);
  return 2;
}
