#!/usr/bin/env python3
"""The library's figures against figures from the definitions, written a second time:
second_opinion.py MEASURE_FLOATS [RECORDING.wav...]

Ten generated signals, or the first channel of 16-bit recordings, are damaged in six ways; each
figure must agree within the limits below. Exits with 77 where numpy or scipy is missing."""
import pathlib
import re
import subprocess
import sys
import tempfile

try:
    import numpy as np
    from scipy.io import wavfile
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import definitions  # noqa: E402
import sounds  # noqa: E402

# How far figures may lie apart: so much, or such a share of the figure.
LIMITS = {"peak": (0.001, 0), "rms": (0.001, 0), "crest": (0.001, 0), "noise_floor": (0.001, 0),
          "dc": (1e-7, 1e-4), "clipped": (1e-9, 1e-4), "bandwidth": (0, 1e-4),
          "bandwidth_40db": (0, 1e-4), "active_level": (0.1, 0), "activity": (0, 0.023),
          "loudness": (0.1, 0), "delay": (0, 0), "snr": (0.001, 0), "si_sdr": (0.001, 0),
          "seg_snr": (0.001, 0), "fw_seg_snr": (0.001, 0), "cepstral_distance": (0.001, 0),
          "lsd": (0.001, 0), "band_difference": (0.001, 0), "band_difference_worst": (0.001, 0),
          "stoi": (1e-3, 0), "estoi": (1e-3, 0)}
DELAY_LIMIT = 0.1  # Samples.
DRIFT_LIMIT = 2  # ppm


def measured(tool, folder, rate, reference, output):
    """What the library says, by name; None where it has no figure."""
    reference.astype("<f4").tofile(folder / "reference.f32")
    output.astype("<f4").tofile(folder / "output.f32")
    run = subprocess.run([tool, str(folder), str(rate)], check=True, capture_output=True, text=True)
    figures = {}
    for line in run.stdout.splitlines():
        name, value = line.split(" ")[:2]
        figures[name] = None if value == "-" else float(value)
    return figures


def loudness(folder, rate):
    """What ffmpeg says, or None below the gate."""
    run = subprocess.run(["ffmpeg", "-hide_banner", "-nostats", "-f", "f32le", "-ar", str(rate),
                          "-ac", "1", "-i", str(folder / "output.f32"), "-af", "ebur128", "-f",
                          "null", "-"], check=True, capture_output=True, text=True)
    value = float(re.findall(r"I:\s+(-?[\d.]+) LUFS", run.stderr)[-1])
    return value if value > -70 else None


def expected(folder, rate, later):
    """The same by the definitions, of what the library has aligned."""
    def read(name):
        return np.fromfile(folder / name, "<f4").astype(float)
    figures = definitions.levels(read("output.f32"), rate)
    figures["loudness"] = loudness(folder, rate)
    reference, output = read("aligned_reference.f32"), read("aligned_output.f32")
    figures.update(definitions.differences(reference, output, rate))
    figures.update(definitions.spectra(reference, output, rate))
    figures.update(definitions.intelligibility(read("10k_reference.f32"), read("10k_output.f32")))
    figures["delay"] = later / rate
    return figures


def compare(got, wanted, rate, worst, where):
    """Notes the largest difference per measure; the differences above the limits."""
    found = []
    for name, (absolute, relative) in LIMITS.items():
        a, b = got[name], wanted[name]
        if a is None or b is None:
            if a is not b:
                found.append(f"{where}: {name} is {a}, expected {b}")
            continue
        limit = DELAY_LIMIT / rate if name == "delay" else max(absolute, relative * abs(b))
        worst[name] = max(worst.get(name, (0, "")), (abs(a - b), where))
        if not abs(a - b) <= limit:
            found.append(f"{where}: {name} is {a}, expected {b}")
    return found


def recordings(names):
    for name in names:
        rate, samples = wavfile.read(name)
        samples = samples if samples.ndim == 1 else samples[:, 0]
        yield pathlib.Path(name).stem, rate, samples[:rate * 10] / 32768


def drift(tool, folder):
    """50 ppm over 30 s with noise 20 dB below."""
    rate = 16000
    reference = sounds.voice(rate, 30, 9)
    output = sounds.warped(reference, 12.3, 50) + sounds.noise_below(reference, 20, 7)
    got = measured(tool, folder, rate, reference, output)["drift"]
    print(f"drift: {got} ppm of 50")
    return [] if abs(got - 50) <= DRIFT_LIMIT else [f"drift is {got} ppm, expected 50"]


def main():
    tool, names = sys.argv[1], sys.argv[2:]
    found, worst, count = [], {}, 0
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        for name, rate, reference in recordings(names) if names else sounds.all_sounds():
            for damage, (output, later) in sounds.damages(reference, rate).items():
                got = measured(tool, folder, rate, reference, output)
                found += compare(got, expected(folder, rate, later), rate, worst,
                                 f"{name}, {damage}")
                count += 1
        if not names:
            found += drift(tool, folder)
    for name, (difference, where) in worst.items():
        print(f"{name:22} {difference:.2e}  {where}")
    print(f"{count} pairs, {len(found)} differences above the limits")
    print(*found, sep="\n", file=sys.stderr)
    return 1 if found or count == 0 or set(worst) != set(LIMITS) else 0


sys.exit(main())
