#!/usr/bin/env python3
"""The statistics of compare against scipy: against_scipy.py STATISTICS_OF_TABLES

p of 200 random tables without ties or zeros, the ends of bootstrap intervals, and those of whole
clusters against code of its own. Ends with 77 where scipy is not installed.
"""
import subprocess
import sys

try:
    import numpy as np
    from scipy import stats
except ImportError:
    print("skipped: needs python3-numpy and python3-scipy")
    sys.exit(77)

TOOL = sys.argv[1]
failed = []


def ours(tables):
    """(p, low, high) of each (resamples, values, clusters)."""
    lines = [" ".join([str(resamples)] + [f"{value!r} {cluster}"
                                          for value, cluster in zip(values.tolist(), clusters)])
             for resamples, values, clusters in tables]
    done = subprocess.run([TOOL], input="\n".join(lines) + "\n", check=True, capture_output=True,
                          text=True)
    return [tuple(map(float, line.split())) for line in done.stdout.splitlines()]


def check(what, found, expected, tolerance):
    """Keeps what is further off than the tolerance."""
    if not abs(found - expected) <= tolerance:
        failed.append(f"{what}: {found} instead of {expected}, more than {tolerance} off")


def values_of(random, kind, count):
    """Differences of one of three kinds: even, skewed, of heavy tails."""
    if kind == 0:
        return random.normal(0.2, 1, count)
    return random.exponential(1, count) - 0.8 if kind == 1 else random.standard_t(4, count)


def signed_ranks(random):
    """The test of signed ranks, exact and normal."""
    tables = [values_of(random, i % 3, int(random.integers(3, 100))) for i in range(200)]
    found = ours([(100, values, range(len(values))) for values in tables])
    for values, (p, _, _) in zip(tables, found):
        method = "exact" if len(values) <= 50 else "approx"
        check(f"p of {len(values)}", p, stats.wilcoxon(values, method=method).pvalue, 1e-6)
    return max(abs(p - stats.wilcoxon(v, method="exact" if len(v) <= 50 else "approx").pvalue)
               for v, (p, _, _) in zip(tables, found))


def ends(random, resamples, share, count):
    """Intervals of independent values, in shares of their width."""
    tables = [values_of(random, i % 3, 12 + 8 * i) for i in range(count)]
    found = ours([(resamples, values, range(len(values))) for values in tables])
    worst = 0
    for values, (_, low, high) in zip(tables, found):
        there = stats.bootstrap((values,), np.mean, method="BCa", n_resamples=resamples, batch=2000,
                                vectorized=True, axis=-1,
                                random_state=random).confidence_interval
        width = there.high - there.low
        for end, expected in ((low, there.low), (high, there.high)):
            check(f"an end of {len(values)} with {resamples}", end, expected, share * width)
            worst = max(worst, abs(end - expected) / width)
    return worst


def cluster_ends(values, names, resamples, random):
    """The same for whole clusters, as its definition has it."""
    groups = [values[names == name] for name in np.unique(names)]
    sums = np.array([group.sum() for group in groups])
    sizes = np.array([len(group) for group in groups])
    mean = values.mean()
    drawn = random.integers(0, len(groups), (resamples, len(groups)))
    means = sums[drawn].sum(axis=1) / sizes[drawn].sum(axis=1)
    bias = stats.norm.ppf((means < mean).mean())
    left = (sums.sum() - sums) / (sizes.sum() - sizes)
    off = left.mean() - left
    acceleration = (off ** 3).sum() / (6 * (off ** 2).sum() ** 1.5)
    z = bias + stats.norm.ppf([0.025, 0.975])
    return np.quantile(means, stats.norm.cdf(bias + z / (1 - acceleration * z)))


def clusters(random):
    """Clusters of uneven sizes, whose values have much in common."""
    worst = 0
    for i in range(6):
        names = random.integers(0, 10 + 5 * i, 200)
        values = random.normal(0, 1, 200)[names] + values_of(random, i % 3, 200) / 3
        expected = cluster_ends(values, names, 400000, random)
        ((_, *found),) = ours([(400000, values, names.tolist())])
        width = expected[1] - expected[0]
        for end, there in zip(found, expected):
            check(f"an end of {10 + 5 * i} clusters", end, there, 0.02 * width)
            worst = max(worst, abs(end - there) / width)
    return worst


rng = np.random.default_rng(7)
print(f"p of signed ranks, 200 tables: at most {signed_ranks(rng):.1e} off")
print(f"ends at 400000 resamples: at most {100 * ends(rng, 400000, 0.02, 6):.2f} % of the width")
print(f"ends at 10000 resamples: at most {100 * ends(rng, 10000, 0.06, 12):.2f} % of the width")
print(f"ends of whole clusters: at most {100 * clusters(rng):.2f} % of the width")
print(*failed, sep="\n", file=sys.stderr)
sys.exit(1 if failed else 0)
