"""Exact inference by variable elimination in NumPy, written for the tests
independently of the library: marginals, max-marginals, the probability of
the evidence and expected utilities of a network of discrete nodes.

A network is a list of nodes in file order, each a dict with `name`,
`category` ('chance', 'decision' or 'utility'), `states` (their count; none
for utility nodes), `parents` (names) and `table` (float32 entries in the
model-file order: the parents' configurations row-major, the node's own
state fastest).  Evidence maps names to ('state', index) or
('likelihood', [..]).
"""
import json
import math
import subprocess

import numpy as np


class Network:
    def __init__(self, nodes, evidence):
        self.nodes = {n['name']: n for n in nodes}
        self.discrete = [n['name'] for n in nodes if n['category'] != 'utility']
        self.utilities = [n['name'] for n in nodes if n['category'] == 'utility']
        self.factors = []
        for name in self.discrete:
            node = self.nodes[name]
            axes = [p for p in node['parents'] if p in self.discrete] + [name]
            shape = [self.nodes[a]['states'] for a in axes]
            self.factors.append((tuple(axes), np.asarray(node['table'], np.float32).astype(np.float64).reshape(shape)))
        for name, (kind, value) in evidence.items():
            vector = np.zeros(self.nodes[name]['states'])
            if kind == 'state':
                vector[value] = 1.0
            else:
                vector[:] = value
            self.factors.append(((name,), vector))

    def joint(self, keep, maximum=False):
        """The factors' product reduced (sum or max) onto `keep`, in that order."""
        index = {v: i for i, v in enumerate(self.discrete)}  # einsum takes up to 52 axes
        factors = list(self.factors)
        rest = {a for axes, _ in factors for a in axes} - set(keep)
        while rest:
            # Eliminate the variable whose factors' product is smallest.
            def cost(v):
                axes = {a for f in factors if v in f[0] for a in f[0]}
                return math.prod(self.nodes[a]['states'] for a in axes)
            v = min(sorted(rest), key=cost)
            group = [f for f in factors if v in f[0]]
            factors = [f for f in factors if v not in f[0]]
            axes = sorted({a for f in group for a in f[0]}, key=self.discrete.index)
            product = multiply(group, axes, index)
            reduce = np.max if maximum else np.sum
            factors.append((tuple(a for a in axes if a != v), reduce(product, axis=axes.index(v))))
            rest.remove(v)
        return multiply(factors, list(keep), index)

    def marginal(self, name, maximum=False):
        return self.joint([name], maximum)

    def total(self, maximum=False):
        return float(self.joint([], maximum))

    def expected_utility(self, name):
        node = self.nodes[name]
        parents = [p for p in node['parents'] if p in self.discrete]
        utility = np.asarray(node['table'], np.float32).astype(np.float64)
        if not parents:
            return float(utility[0])
        weights = self.joint(parents).reshape(-1)
        return float(np.dot(weights, utility) / weights.sum())

    def probability_of(self, configuration):
        """The factors' product at a configuration {name: state index}."""
        product = 1.0
        for axes, table in self.factors:
            product *= table[tuple(configuration[a] for a in axes)]
        return product


def multiply(factors, axes, index):
    """Product of factors as an array over `axes` (einsum's interleaved form)."""
    operands = []
    for f_axes, table in factors:
        operands += [table, [index[a] for a in f_axes]]
    return np.einsum(*operands, [index[a] for a in axes]) if operands else np.ones([])


def run_infer(vel, path, arguments=()):
    """Runs vel infer --format json; returns (exit status, document)."""
    run = subprocess.run([vel, 'infer', path, '--format', 'json', *arguments], capture_output=True, text=True)
    return run.returncode, (json.loads(run.stdout) if run.stdout else None), run.stderr


def compare(vel, path, nodes, evidence, arguments=()):
    """Checks vel infer, with and without --max, against the reference;
    returns a list of problems (empty when everything agrees)."""
    problems = []
    reference = Network(nodes, evidence)
    p_evidence = reference.total()
    for maximum in (False, True):
        status, document, stderr = run_infer(vel, path, list(arguments) + (['--max'] if maximum else []))
        label = '%s%s' % (path, ' --max' if maximum else '')
        if p_evidence == 0.0:
            if status != 1 or document['error']['code'] != 4:
                problems.append('%s: impossible evidence not refused: %s' % (label, stderr))
            continue
        if status != 0:
            problems.append('%s: exit %d: %s' % (label, status, stderr))
            continue
        p = document['probability_of_evidence']
        if abs(p - p_evidence) > (1e-6 * p_evidence if p_evidence >= 1e-6 else 1e-12):
            problems.append('%s: probability of evidence %r, expected %r' % (label, p, p_evidence))
        for entry in document['beliefs']:
            m = reference.marginal(entry['node'], maximum)
            expected = m / (m.max() if maximum else m.sum())
            error = np.max(np.abs(np.asarray(entry['probabilities']) - expected))
            if error > 1e-6:
                problems.append('%s: beliefs of %s %r, expected %r' % (label, entry['node'], entry['probabilities'], list(expected)))
        for entry in document['expected_utilities']:
            expected = reference.expected_utility(entry['node'])
            if abs(entry['value'] - expected) > 2.0 ** -22 * abs(expected) + 1e-9:
                problems.append('%s: expected utility of %s %r, expected %r' % (label, entry['node'], entry['value'], expected))
        if maximum:
            best = reference.total(maximum=True)
            states = {e['node']: e['states'] for e in document['beliefs']}
            chosen = {n: states[n].index(s) for n, s in document['configuration'].items()}
            for value, what in ((document['probability_of_configuration'], 'reported'),
                                (reference.probability_of(chosen), 'reference')):
                if abs(value - best) > 1e-6 * best:
                    problems.append('%s: %s probability of the configuration %r, most probable %r' % (label, what, value, best))
    return problems
