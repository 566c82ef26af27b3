"""Different domains used from different threads at once: the library's
calls release the GIL and share nothing between domains."""
import math
import threading
import time

import numpy as np

import vel


def sampled_domain(mean):
    """A table of 56,000 entries, each averaged over 64 sample points."""
    domain = vel.Domain()
    domain.add_node("A", "interval", states=range(31))
    domain.add_node("B", "interval", states=range(31))
    domain.add_node("Y", "interval", states=[-math.inf, *range(61), math.inf], parents=["A", "B"],
                    model={"expressions": [f"Normal({mean}, 4)"], "samples_per_interval": 8})
    return domain


def test_two_domains_generate_in_two_threads_while_python_runs_on():
    means = ["A + B", "A - B + 30"]
    start = time.perf_counter()
    expected = [sampled_domain(mean).generate("Y").values for mean in means]
    one_generation = (time.perf_counter() - start) / 2
    domains = [sampled_domain(mean) for mean in means]
    results = [None, None]

    def generate(i):
        results[i] = domains[i].generate("Y").values

    threads = [threading.Thread(target=generate, args=(i,)) for i in range(2)]
    # A GIL held through a generation would stop this thread for as long,
    # from the moment a worker starts.
    longest_pause = 0.0
    last = time.perf_counter()
    for thread in threads:
        thread.start()
    while any(thread.is_alive() for thread in threads):
        now = time.perf_counter()
        longest_pause = max(longest_pause, now - last)
        last = now
    for thread in threads:
        thread.join()
    for result, reference in zip(results, expected):
        np.testing.assert_array_equal(result, reference)
    assert not np.array_equal(results[0], results[1])
    assert longest_pause < one_generation / 2, (longest_pause, one_generation)
    for domain in domains:
        domain.close()
