#!/usr/bin/python3
"""Converts networks in the BIF text format into vel model files.

    /usr/bin/python3 scripts/bif_to_model.py OUT_DIR FILE.bif...

Each variable becomes a labeled chance node (its states as labels, its
parents in the order of the probability block) with a literal table: the
parents' configurations in row-major order, the node's own state fastest.
Rows may be listed in any order in the file; `table` gives them all at once.
"""
import os
import re
import sys

import yaml

VARIABLE = re.compile(r'variable\s+(\S+)\s*\{\s*type\s+discrete\s*\[\s*(\d+)\s*\]\s*\{([^}]*)\}\s*;\s*\}')
PROBABILITY = re.compile(r'probability\s*\(\s*([^|)]+?)\s*(?:\|\s*([^)]*))?\)\s*\{([^}]*)\}')
ROW = re.compile(r'\(([^)]*)\)\s*([^;]*);')


def numbers(text):
    return [float(x) for x in text.replace(',', ' ').split()]


def convert(text, name):
    states = {}
    order = []
    for variable, count, labels in VARIABLE.findall(text):
        states[variable] = [s.strip() for s in labels.split(',')]
        assert len(states[variable]) == int(count), variable
        order.append(variable)
    nodes = {v: {'name': v, 'type': 'labeled', 'states': states[v]} for v in order}
    for child, parent_text, body in PROBABILITY.findall(text):
        parents = [p.strip() for p in parent_text.split(',')] if parent_text else []
        n = len(states[child])
        rows = 1
        for p in parents:
            rows *= len(states[p])
        table = [None] * (rows * n)
        table_line = re.search(r'table\s+([^;]*);', body)
        if table_line:
            table = numbers(table_line.group(1))
        for configuration, values in ROW.findall(body):
            index = 0
            for p, label in zip(parents, [c.strip() for c in configuration.split(',')]):
                index = index * len(states[p]) + states[p].index(label)
            table[index * n:(index + 1) * n] = numbers(values)
        assert None not in table and len(table) == rows * n, child
        if parents:
            nodes[child]['parents'] = parents
        nodes[child]['table'] = table
    return {'domain': name, 'nodes': [nodes[v] for v in order]}


def main():
    out_dir = sys.argv[1]
    for path in sys.argv[2:]:
        name = os.path.splitext(os.path.basename(path))[0]
        with open(path) as f:
            model = convert(f.read(), name)
        with open(os.path.join(out_dir, name + '.yaml'), 'w') as f:
            f.write('# Converted from %s by scripts/bif_to_model.py\n' % os.path.basename(path))
            yaml.safe_dump(model, f, default_flow_style=None, sort_keys=False, width=100)


if __name__ == '__main__':
    main()
