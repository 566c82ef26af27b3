// Shared by the parser and printer tests: a node whose parents cover every
// kind of node reference, and a prefix form of trees that does not depend on
// the printer.
#pragma once

#include <gtest/gtest.h>

#include <charconv>
#include <string>

#include "host/records.h"
#include "vel/vel.h"

namespace texttest {

class TextFormTest : public ::testing::Test {
 protected:
  void SetUp() override {
    domain_ = vel_domain_new();
    child_ = vel_domain_new_node(domain_, vel_category_function, vel_kind_stateless,
                                 vel_subtype_none, "Child");
    vel_domain_new_node(domain_, vel_category_chance, vel_kind_discrete, vel_subtype_boolean,
                        "Rain");  // not a parent of Child
    const struct {
      const char *name;
      int category, kind, subtype;
    } parents[] = {
        {"A", vel_category_chance, vel_kind_discrete, vel_subtype_numbered},
        {"B", vel_category_chance, vel_kind_discrete, vel_subtype_numbered},
        {"C", vel_category_chance, vel_kind_discrete, vel_subtype_numbered},
        {"Season", vel_category_chance, vel_kind_discrete, vel_subtype_labeled},
        {"Frost", vel_category_chance, vel_kind_discrete, vel_subtype_boolean},
        {"Level", vel_category_chance, vel_kind_continuous, vel_subtype_none},
        {"Cost", vel_category_utility, vel_kind_stateless, vel_subtype_none}};
    for (const auto &p : parents) {
      vel_node_t *node = vel_domain_new_node(domain_, p.category, p.kind, p.subtype, p.name);
      ASSERT_EQ(vel_node_add_parent(child_, node), 0) << p.name;
    }
  }
  void TearDown() override { vel_domain_delete(domain_); }

  // Fully parenthesised prefix form; numbers in their shortest exact text,
  // so equal forms mean equal trees, bit for bit.
  static std::string describe(const vel_expression_t *e) {
    switch (e->operator_) {
      case vel_op_number: {
        char digits[32];
        return std::string(digits, std::to_chars(digits, digits + 32, e->number).ptr);
      }
      case vel_op_label: return "\"" + std::string(e->label) + "\"";
      case vel_op_truth: return e->truth ? "true" : "false";
      case vel_op_node: return vel_node_get_name(e->node);
      default: break;
    }
    std::string result = "(";
    result += e->operator_ == vel_op_negate ? "neg" : vel_operator_name(e->operator_);
    for (vel_expression_t *const *a = e->arguments; *a; ++a) result += " " + describe(*a);
    return result + ")";
  }

  // `text` parsed for Child and described, or "" on failure.
  std::string shape(const std::string &text) {
    vel_expression_t *expression = vel_parse_expression(text.c_str(), child_);
    if (!expression) return "";
    std::string result = describe(expression);
    vel_expression_delete(expression);
    return result;
  }

  vel_domain_t *domain_ = nullptr;
  vel_node_t *child_ = nullptr;
};

}  // namespace texttest
