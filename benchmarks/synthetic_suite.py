#!/usr/bin/env python3
"""Shards of a suite that nobody has run, to measure merge and compare with:

    synthetic_suite.py DIR [--cases 100000] [--figures 20] [--shards 16] [--shift 0]

Each case has one output and that many figures; --shift is added to all of them. DIR/1, DIR/2, ...
hold plan.jsonl and cases.jsonl as `audio_bench suite --shard` leaves them.
"""
import argparse
import json
import os
import random

MEASURES = [("si_sdr", "dB", "higher"), ("seg_snr", "dB", "higher"), ("lsd", "dB", "lower"),
            ("stoi", "1", "higher"), ("loudness", "LUFS", "none"), ("true_peak", "dBTP", "none"),
            ("thd_n", "dB", "lower"), ("noise_floor", "dBFS", "lower"), ("delay", "s", "none"),
            ("crest", "dB", "none")]


def figures(count, shift):
    made = []
    for i in range(count):
        name, unit, better = MEASURES[i % len(MEASURES)]
        made.append({"file": f"out{i // len(MEASURES)}.wav", "channel": None, "name": name,
                     "value": random.gauss(20 + i, 3) + shift, "unit": unit, "better": better,
                     "reason": None, "version": 1, "untrusted": False})
    return made


def record(index):
    name = f"call-{index:06}"
    return {"id": name, "index": index, "routine": "TestZUAec",
            "arguments": ["near.wav", "far.wav", "out0.wav", "true"], "group": "voice",
            "tags": ["echo"], "known": None, "cluster": f"speaker-{index % 500}",
            "verdict": "not_run", "exit_code": None, "cause": "not_run",
            "reason": "the suite ended before it", "report": "", "elapsed": None, "cpu": None,
            "rtf": None, "rtf_cpu": None, "results": [], "guards": [], "figures": [], "outputs": []}


def ended(index, options):
    one = record(index)
    seconds = random.uniform(0.5, 1.5)
    one.update(verdict="pass", exit_code=0, cause="none", reason="",
               report=f"reports/{one['id']}.json", elapsed=seconds, cpu=seconds * 0.9,
               rtf=seconds / 10, rtf_cpu=seconds * 0.09, figures=figures(options.figures, options.shift),
               outputs=[{"name": "out0.wav", "path": f"cases/{one['id']}/out0.wav",
                         "sha256": f"{random.getrandbits(256):064x}"}])
    if index % 100 == 99:
        one.update(verdict="fail", exit_code=1, cause="guard", reason="out0.wav: clipped at 1.25 s")
        one["guards"] = [{"name": "clipped", "file": "out0.wav", "at": 1.25, "channel": 0,
                          "fails": True}]
        one["log_tail"] = "one line of the log\n"
    one["fingerprint"] = f"{random.getrandbits(256):064x}"
    return one


def header(shard, options):
    return {"schema_version": 1, "bench": {"version": "1", "commit": {"value": "abc"}},
            "engine": {"name": "desktop engine", "version": {"value": "1"}},
            "host": {"cpu": {"value": "x"}, "processors": {"value": 1, "unit": "1"}},
            "started": "2026-03-01T12:00:00Z", "command": ["audio_bench", "suite", "calls.toml"],
            "suite": "calls.toml", "shard": {"index": shard, "of": options.shards}, "margins": {},
            "chosen": options.cases, "selection": "0123456789abcdef"}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--cases", type=int, default=100000)
    parser.add_argument("--figures", type=int, default=20)
    parser.add_argument("--shards", type=int, default=16)
    parser.add_argument("--shift", type=float, default=0)
    options = parser.parse_args()
    random.seed(options.shift)
    lines = {"separators": (",", ":")}
    for shard in range(1, options.shards + 1):
        folder = os.path.join(options.folder, str(shard))
        os.makedirs(folder)
        with open(folder + "/plan.jsonl", "w") as plan, open(folder + "/cases.jsonl", "w") as cases:
            print(json.dumps(header(shard, options), **lines), file=plan)
            for index in range(shard - 1, options.cases, options.shards):
                print(json.dumps(record(index), **lines), file=plan)
                print(json.dumps(ended(index, options), **lines), file=cases)


main()
