/* Builds a two-node network through the installed C API and prints the
 * generated table: a check that the header and library install usably. */
#include <stdio.h>

#include <vel/vel.h>

int main(void) {
  vel_domain_t *domain = vel_domain_new();
  vel_node_t *rain = vel_domain_new_node(domain, vel_category_chance, vel_kind_discrete,
                                         vel_subtype_boolean, "Rain");
  vel_node_t *wet = vel_domain_new_node(domain, vel_category_chance, vel_kind_discrete,
                                        vel_subtype_boolean, "Wet");
  vel_node_t *model_nodes[] = {rain, NULL};
  if (vel_node_add_parent(wet, rain) != 0) return 1;
  vel_model_t *model = vel_node_new_model(wet, model_nodes);
  vel_model_set_expression(model, 0, vel_parse_expression("Distribution(0.8, 0.2)", wet));
  vel_model_set_expression(model, 1, vel_parse_expression("true", wet));
  if (vel_node_generate_table(wet) != 0) {
    fprintf(stderr, "%s\n", vel_error_message());
    return 1;
  }
  const float *data = vel_table_get_data(vel_node_get_table(wet));
  for (int i = 0; i < 4; ++i) printf("%g%c", data[i], i == 3 ? '\n' : ' ');
  vel_domain_delete(domain);
  return 0;
}
