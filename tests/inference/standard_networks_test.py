#!/usr/bin/python3
"""vel infer on the standard networks (converted from BIF by
scripts/bif_to_model.py into tests/inference/data) against the NumPy
reference: without evidence, with states entered from the command line, and
with a likelihood in the file; and asia's impossible evidence.

    /usr/bin/python3 tests/inference/standard_networks_test.py PATH/TO/vel
"""
import glob
import os
import sys
import tempfile

import numpy as np
import yaml

from numpy_reference import compare, run_infer

DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'data')


def reference_nodes(model):
    return [{'name': n['name'], 'category': 'chance', 'states': len(n['states']), 'parents': n.get('parents', []),
             'table': [np.float32(x) for x in n['table']]} for n in model['nodes']]


def main():
    vel = sys.argv[1]
    problems = []
    for path in sorted(glob.glob(os.path.join(DATA, '*.yaml'))):
        with open(path) as f:
            model = yaml.safe_load(f)
        nodes = model['nodes']
        first, middle, last = nodes[0], nodes[len(nodes) // 2], nodes[-1]
        likelihood = [0.25 + 0.5 * (k % 2) for k in range(len(middle['states']))]
        with tempfile.TemporaryDirectory() as directory:
            with_likelihood = os.path.join(directory, os.path.basename(path))
            middle['evidence'] = {'likelihood': likelihood}
            with open(with_likelihood, 'w') as f:
                yaml.safe_dump(model, f)
            del middle['evidence']
            cases = [
                (path, {}, []),
                (path, {first['name']: ('state', len(first['states']) - 1), last['name']: ('state', 0)},
                 ['--evidence', '%s=%s' % (first['name'], first['states'][-1]),
                  '--evidence', '%s=%s' % (last['name'], last['states'][0])]),
                (with_likelihood, {middle['name']: ('likelihood', likelihood), last['name']: ('state', 1)},
                 ['--evidence', '%s=%s' % (last['name'], last['states'][1])]),
            ]
            for file, evidence, arguments in cases:
                problems += compare(vel, file, reference_nodes(model), evidence, arguments)

    # either is the deterministic OR of lung and tub.
    status, document, stderr = run_infer(vel, os.path.join(DATA, 'asia.yaml'),
                                         ['--evidence', 'tub=yes', '--evidence', 'either=no'])
    expected = 'the evidence tub = yes, either = no is impossible (probability 0)'
    if status != 1 or document['error']['code'] != 4 or document['error']['message'] != expected:
        problems.append('asia: impossible evidence: exit %d, %s' % (status, stderr))
    print('\n'.join(problems + ['%d problems with the standard networks' % len(problems)]))
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())
