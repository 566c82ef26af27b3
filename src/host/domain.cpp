// Domains and classes: creation, deletion, the node list, the log file and
// the state of the domain's junction tree.
#include "host/api_guard_internal.h"
#include "host/host.h"
#include "host/storage_internal.h"
#include "table_generator/entries.h"

using namespace vel::host;

namespace {

vel_domain_t *new_domain(int is_class) {
  return guarded<vel_domain_t *>(nullptr, [&]() -> vel_domain_t * {
    auto host = std::make_unique<vel_host_domain_data>();
    auto domain = std::make_unique<vel_domain_s>();
    domain->is_class = is_class;
    domain->host = host.get();
    domain->junction_tree = &host->junction_tree;
    host->junction_tree.domain = domain.get();
    host->junction_tree.equilibrium = vel_equilibrium_none;
    host->junction_tree.evidence_mode = vel_evidence_mode_normal;
    host->junction_tree.evidence_pending = 0;
    host.release();
    _vel_error_code = 0;
    return domain.release();
  });
}

}  // namespace

namespace vel::host {

void inference_state_changed(vel_domain_t *domain) {
  outdate_inference_readers(domain, nullptr);
  for (vel_node_t *node = domain->first_node; node; node = node->next) {
    if (is_real_function(node))
      _vel_invalidate_function_value(node, vel_mode_inference);
    else if (node->category == vel_category_function)
      _vel_node_touch_model(node);
  }
}

void structure_changed(vel_domain_t *domain) {
  if (!domain->host->junction_forest) return;
  domain->host->junction_forest.reset();
  domain->is_compiled = 0;
  domain->junction_tree->equilibrium = vel_equilibrium_none;
  domain->junction_tree->evidence_pending = 0;
  inference_state_changed(domain);
}

}  // namespace vel::host

extern "C" {

vel_domain_t *vel_domain_new(void) { return new_domain(0); }

vel_class_t *vel_class_new(void) { return new_domain(1); }

int vel_domain_delete(vel_domain_t *domain) {
  if (!check_not_null("vel_domain_delete", "domain", domain)) return vel_error_usage;
  delete domain->host;
  delete domain;
  return _vel_error_code = 0;
}

int vel_domain_is_class(const vel_domain_t *domain) {
  return checked_get("vel_domain_is_class", domain, 0, [&] { return domain->is_class != 0; });
}

int vel_domain_set_log_file(vel_domain_t *domain, FILE *log_file) {
  if (!check_not_null("vel_domain_set_log_file", "domain", domain)) return vel_error_usage;
  domain->log_file = log_file;
  return _vel_error_code = 0;
}

// During a generation the domain's stream passes on to the caller's own.
FILE *vel_domain_get_log_file(const vel_domain_t *domain) {
  return checked_get("vel_domain_get_log_file", domain, nullptr, [&] {
    return domain->host->captured_log ? domain->host->captured_log : domain->log_file;
  });
}

vel_node_t *vel_domain_get_first_node(const vel_domain_t *domain) {
  return checked_get("vel_domain_get_first_node", domain, nullptr,
                     [&] { return domain->first_node; });
}

vel_node_t *vel_node_get_next(const vel_node_t *node) {
  return checked_get("vel_node_get_next", node, nullptr, [&] { return node->next; });
}

vel_node_t *vel_domain_get_node_by_name(const vel_domain_t *domain, const char *name) {
  if (!check_not_null("vel_domain_get_node_by_name", "domain or name", domain, name))
    return nullptr;
  return guarded<vel_node_t *>(nullptr, [&]() -> vel_node_t * {
    auto found = domain->host->by_name.find(name);
    _vel_error_code = 0;
    return found == domain->host->by_name.end() ? nullptr : found->second;
  });
}

int vel_domain_set_compiled(vel_domain_t *domain, int compiled) {
  if (!check_not_null("vel_domain_set_compiled", "domain", domain)) return vel_error_usage;
  if (!compiled) domain->host->junction_forest.reset();
  domain->is_compiled = compiled ? 1 : 0;
  vel::host::inference_state_changed(domain);
  return _vel_error_code = 0;
}

int vel_domain_is_compiled(const vel_domain_t *domain) {
  return checked_get("vel_domain_is_compiled", domain, 0, [&] { return domain->is_compiled != 0; });
}

vel_junction_tree_t *vel_domain_get_junction_tree(const vel_domain_t *domain) {
  return checked_get("vel_domain_get_junction_tree", domain, nullptr,
                     [&] { return domain->junction_tree; });
}

vel_junction_tree_t *vel_node_get_junction_tree(const vel_node_t *node) {
  return checked_get("vel_node_get_junction_tree", node, nullptr,
                     [&] { return node->junction_tree; });
}

int vel_jt_set_state(vel_junction_tree_t *jt, int equilibrium, int evidence_mode,
                     int evidence_pending) {
  if (!check_not_null("vel_jt_set_state", "junction tree", jt)) return vel_error_usage;
  if (equilibrium < vel_equilibrium_none || equilibrium > vel_equilibrium_max)
    return usage("vel_jt_set_state: equilibrium must be 10, 11 or 12");
  if (evidence_mode != vel_evidence_mode_normal && evidence_mode != vel_evidence_mode_fast)
    return usage("vel_jt_set_state: evidence mode must be 20 or 21");
  jt->equilibrium = equilibrium;
  jt->evidence_mode = evidence_mode;
  jt->evidence_pending = evidence_pending ? 1 : 0;
  vel::host::inference_state_changed(jt->domain);
  return _vel_error_code = 0;
}

}  // extern "C"
