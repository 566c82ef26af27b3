#!/usr/bin/python3
"""vel infer on random networks (up to 30 nodes, with decision and utility
nodes, literal tables and models) against the NumPy reference, each case
propagated for beliefs and for the most probable configuration.  A third of
the cases enter hard evidence, a third likelihoods, and a third retract or
change evidence of the file from the command line, which vel infer applies
after propagating the file's evidence, before propagating again.

    /usr/bin/python3 tests/inference/random_networks_test.py PATH/TO/vel [CASES [SEED]]
"""
import json
import math
import os
import random
import sys
import tempfile

import numpy as np

from numpy_reference import compare


def state_text(node, s):
    return node['labels'][s] if 'labels' in node else ['false', 'true'][s] if node['type'] == 'boolean' else node['values'][s]


def random_node(rng, i, nodes):
    kind = rng.choice(['labeled', 'labeled', 'boolean', 'numbered'])
    count = 2 if kind == 'boolean' else rng.randint(2, 4)
    node = {'name': 'N%d' % i, 'category': 'decision' if i == 1 or rng.random() < 0.1 else 'chance',
            'type': kind, 'states': count}
    if kind == 'labeled':
        node['labels'] = ['s%d' % k for k in range(count)]
    if kind == 'numbered':
        node['values'] = sorted(rng.sample(range(-5, 20), count))
    candidates = [p for p in nodes if p['category'] != 'utility']
    node['parents'] = [p['name'] for p in rng.sample(candidates, min(len(candidates), rng.choice([0, 1, 1, 2, 2, 3])))]
    return node


def configurations(nodes, names):
    """Every configuration of the named nodes, row-major, as index tuples."""
    counts = [nodes[n]['states'] for n in names]
    for flat in range(math.prod(counts)):
        config = []
        for c in reversed(counts):
            config.append(flat % c)
            flat //= c
        yield tuple(reversed(config))


def give_table(rng, node, by_name, entry):
    """A literal table, a model of Distribution rows, or (decisions) nothing."""
    rows = list(configurations(by_name, node['parents']))
    choice = rng.random()
    if node['category'] == 'decision' and choice < 0.2:
        node['table'] = [np.float32(1.0 / node['states'])] * (len(rows) * node['states'])
        return
    if choice < 0.55:
        weights = [[rng.random() + 0.01 for _ in range(node['states'])] for _ in rows]
        entry['table'] = [w / sum(row) for row in weights for w in row]
        node['table'] = [np.float32(x) for x in entry['table']]
        return
    model_nodes = [p for p in node['parents'] if rng.random() < 0.7]
    expressions = []
    for _ in configurations(by_name, model_nodes):
        weights = [rng.randint(0, 9) for _ in range(node['states'])]
        weights[rng.randrange(node['states'])] += 1
        expressions.append(weights)
    entry['model'] = {'nodes': model_nodes,
                      'expressions': ['Distribution(%s)' % ', '.join(map(str, w)) for w in expressions]}
    node['table'] = []
    for row in rows:
        index = 0
        for name in model_nodes:
            index = index * by_name[name]['states'] + row[node['parents'].index(name)]
        weights = expressions[index]
        node['table'] += [np.float32(w / sum(weights)) for w in weights]


def give_utility(rng, node, by_name, entry):
    rows = list(configurations(by_name, node['parents']))
    numbered = [p for p in node['parents'] if by_name[p]['type'] == 'numbered']
    if rng.random() < 0.5 or not numbered:
        entry['table'] = [round(rng.uniform(-50, 50), 3) for _ in rows]
        node['table'] = [np.float32(x) for x in entry['table']]
        return
    coefficients = [rng.randint(-9, 9) for _ in range(len(numbered) + 1)]
    entry['model'] = {'nodes': [], 'expressions': [' + '.join(
        [str(coefficients[0])] + ['%d * %s' % (c, n) for c, n in zip(coefficients[1:], numbered)])]}
    node['table'] = [np.float32(coefficients[0] + sum(
        c * by_name[n]['values'][row[node['parents'].index(n)]] for c, n in zip(coefficients[1:], numbered)))
        for row in rows]


def random_case(rng, number):
    nodes, entries = [], []
    for i in range(rng.randint(2, 30)):
        nodes.append(random_node(rng, i, nodes))
    discrete = list(nodes)
    for k in range(rng.randint(1, 3)):
        parents = rng.sample(discrete, min(len(discrete), rng.randint(1, 3)))
        nodes.append({'name': 'U%d' % k, 'category': 'utility', 'parents': [p['name'] for p in parents]})
    by_name = {n['name']: n for n in nodes}
    for node in nodes:
        entry = {'name': node['name'], 'category': node['category']}
        if node['category'] != 'utility':
            entry['type'] = node['type']
            if node['type'] != 'boolean':
                entry['states'] = node.get('labels') or node['values']
        if node['parents']:
            entry['parents'] = node['parents']
        (give_utility if node['category'] == 'utility' else give_table)(rng, node, by_name, entry)
        entries.append(entry)

    evidence, arguments = {}, []
    observed = rng.sample(discrete, min(len(discrete), rng.randint(1, 3)))
    for node in observed:
        entry = entries[nodes.index(node)]
        if number % 3 == 1 and node is observed[0]:
            likelihood = [round(rng.random(), 2) for _ in range(node['states'])]
            likelihood[rng.randrange(node['states'])] += 0.5
            entry['evidence'] = {'likelihood': likelihood}
            evidence[node['name']] = ('likelihood', likelihood)
        else:
            state = rng.randrange(node['states'])
            entry['evidence'] = state_text(node, state)
            evidence[node['name']] = ('state', state)
    if number % 3 == 2:
        retracted = observed[0]
        arguments += ['--evidence', retracted['name'] + '=']
        del evidence[retracted['name']]
        changed = rng.choice(discrete)
        state = rng.randrange(changed['states'])
        arguments += ['--evidence', '%s=%s' % (changed['name'], state_text(changed, state))]
        evidence[changed['name']] = ('state', state)
    return {'domain': 'random%d' % number, 'nodes': entries}, nodes, evidence, arguments


def main():
    vel = sys.argv[1]
    cases = int(sys.argv[2]) if len(sys.argv) > 2 else 120
    rng = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 20261123)
    failures = 0
    with tempfile.TemporaryDirectory() as directory:
        for number in range(cases):
            document, nodes, evidence, arguments = random_case(rng, number)
            path = os.path.join(directory, 'random%d.json' % number)
            with open(path, 'w') as f:
                json.dump(document, f)
            problems = compare(vel, path, nodes, evidence, arguments)
            if problems:
                failures += 1
                print('case %d (%s):\n  %s\n%s' % (number, ' '.join(arguments), '\n  '.join(problems), json.dumps(document)))
    print('%d of %d random networks disagree with the reference' % (failures, cases))
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
