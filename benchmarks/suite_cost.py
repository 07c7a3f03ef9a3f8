#!/usr/bin/env python3
"""What an hour of audio costs in CPU seconds, by group of routines: suite_cost.py RESULTS.json

Of the results of `audio_bench suite --all`: the CPU time of the routines against the length of
their inputs. Cases without an input of a known length are left out.
"""
import collections
import json
import sys

cpu = collections.Counter()
audio = collections.Counter()
worst = {}
for case in json.load(open(sys.argv[1]))["cases"]:
    if not case["rtf"] or not case["cpu"]:
        continue
    group, seconds = case["group"], case["elapsed"] / case["rtf"]
    cpu[group] += case["cpu"]
    audio[group] += seconds
    worst[group] = max(worst.get(group, (0, "")), (case["cpu"] / seconds, case["routine"]))
print(f"{'group':<10} {'CPU s / h':>9}  {'audio, s':>8}  most")
for group in sorted(cpu):
    most, routine = worst[group]
    print(f"{group:<10} {3600 * cpu[group] / audio[group]:9.1f}  {audio[group]:8.0f}  "
          f"{routine} {3600 * most:.0f}")
