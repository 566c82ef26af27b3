/* Loads a model file through the installed libvel_io.so and prints the
 * domain's name and the first node's table; for a file that cannot be
 * loaded, the loader's message. */
#include <stdio.h>

#include <vel/vel_io.h>

int main(int argc, char **argv) {
  if (argc != 2) return 2;
  char *name = NULL;
  char *error = NULL;
  vel_domain_t *domain = vel_io_load_file(argv[1], &name, &error);
  if (!domain) {
    printf("%s\n", error);
    vel_io_free(error);
    return 1;
  }
  vel_node_t *node = vel_domain_get_first_node(domain);
  if (vel_node_generate_table(node) != 0) return 1;
  vel_table_t *table = vel_node_get_table(node);
  const float *data = vel_table_get_data(table);
  printf("%s", name);
  for (size_t i = 0; i < vel_table_get_size(table); ++i) printf(" %g", data[i]);
  printf("\n");
  vel_io_free(name);
  vel_domain_delete(domain);
  return 0;
}
