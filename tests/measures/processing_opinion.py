#!/usr/bin/env python3
"""What the measures of suppressors, cancellers, codecs and music say, worked out a second time.

processing_opinion.py MEASURE_FLOATS: on signals that are made here, each figure of the library
against one that is worked out from its header with numpy, scipy and mir_eval. Exits with 77 where
one of these is missing, with 1 where two figures differ by more than 0.001 dB, or 1e-4 of their
value where they are not in dB."""
import os
import pathlib
import subprocess
import sys
import tempfile

try:
    import mir_eval
    import numpy as np
    from scipy import signal
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import processing_definitions as defined  # noqa: E402


def speech_like(random, rate, seconds, pitch):
    """Words of a voice with harmonics, of 0.3 to 0.9 s, and pauses between them."""
    time = np.arange(int(rate * seconds)) / rate
    voice = sum(np.sin(2 * np.pi * pitch * n * time + n * n) / n
                for n in range(1, int(0.4 * rate / pitch)))
    voice = voice + 0.2 * random.standard_normal(len(time))
    gate, place = np.zeros(len(time)), 0.5
    while place < seconds - 1:
        length = random.uniform(0.3, 0.9)
        gate[int(place * rate) : int((place + length) * rate)] = random.uniform(0.5, 1)
        place += length + random.uniform(0.5, 1)
    return 0.05 * voice * signal.lfilter([0.01], [1, -0.99], gate)


def moved(x, samples):
    return np.concatenate((np.zeros(samples), x[: len(x) - samples]))


def measured(program, rate, **signals):
    with tempfile.TemporaryDirectory() as folder:
        for name, values in signals.items():
            kind = np.float64 if name.endswith("beats") else np.float32
            suffix = "f64" if kind is np.float64 else "f32"
            np.asarray(values, kind).tofile(os.path.join(folder, f"{name}.{suffix}"))
        lines = subprocess.run([program, folder, str(rate)], check=True, text=True,
                               stdout=subprocess.PIPE).stdout.splitlines()
    return {line.split()[0]: line.split(maxsplit=1)[1] for line in lines}


def floats(x):
    return np.asarray(x, np.float32).astype(np.float64)


def suppressor_case(program, random, rate):
    clean = speech_like(random, rate, 12, 140)
    noisy = floats(clean + 0.01 * random.standard_normal(len(clean)))
    _, _, bins = signal.stft(noisy, rate, nperseg=512)
    gains = np.maximum(1 - 3 * np.median(abs(bins), axis=1, keepdims=True) / abs(bins), 0.05)
    _, out = signal.istft(bins * gains, rate, nperseg=512)
    out, clean = floats(out[: len(noisy)]), floats(clean)
    limits = defined.activity(clean, rate)
    wanted = defined.suppression(clean, noisy, out, rate, limits)
    yield measured(program, rate, reference=clean, input=noisy, output=out), wanted


def echo_case(program, random, rate):
    far, near = speech_like(random, rate, 16, 110), speech_like(random, rate, 16, 190)
    far += moved(speech_like(random, rate, 16, 90), rate // 5)
    near[: 8 * rate] = 0
    later = rate // 10 + 7
    echo_only = 0.4 * moved(far, later)
    hiss = 0.0002 * random.standard_normal(len(far))
    fade = np.maximum(0.02, np.exp(-np.arange(len(far)) / rate))
    far, near, mic = floats(far), floats(near), floats(echo_only + near + hiss)
    out = floats(fade * echo_only + near + 0.3 * hiss)
    wanted = defined.echo(far, mic, near, out, rate, later)
    wanted["near_sdr"] = defined.near_sdr(near, far, out, rate)
    yield measured(program, rate, reference=near, input=mic, far=far, near=near, output=out), wanted


def codec_case(program, random, rate):
    x = floats(signal.lfilter([1], [1, -0.9], 0.02 * random.standard_normal(8 * rate)))
    for share in (0.3, 0.6):
        y = floats(0.8 * moved(signal.sosfiltfilt(signal.butter(8, share, output="sos"), x), 311))
        wanted = {"band_limit": defined.band_limit(x, y, rate), "codec_delay": 311 / rate}
        yield measured(program, rate, reference=x, input=x, output=y), wanted


def pitch_case(program, random, rate):
    x = floats(speech_like(random, rate, 6, 180))
    for cents in (-350, 20, 500):
        y = floats(speech_like(random, rate, 4, 180 * 2 ** (cents / 1200)))
        wanted = {"pitch_cents": defined.pitch_cents(x, y, rate),
                  "length_factor": len(y) / len(x)}
        yield measured(program, rate, reference=x, input=x, output=y), wanted


def beats_case(program, random, rate):
    x = 0.1 * random.standard_normal(rate)
    for spread in (0.01, 0.05, 0.1):
        true = np.arange(0.3, 40, 0.47)
        found = np.sort(true + spread * random.standard_normal(len(true)))
        found = found[random.random(len(found)) < 0.9]
        found = np.sort(np.append(found, random.uniform(0, 40, 9)))
        trim = mir_eval.beat.trim_beats
        wanted = {"beat_f": mir_eval.beat.f_measure(trim(true), trim(found))}
        yield measured(program, rate, reference=x, output=x, beats=found, true_beats=true), wanted


def tempo_case(program, random, rate):
    for bpm in (71.3, 118, 152.9):
        x = 0.002 * random.standard_normal(15 * rate)
        for n, second in enumerate(np.arange(0.2, 14.5, 30 / bpm)):
            time = np.arange(rate // 5) / rate
            note = 0.2 * np.exp(-time / 0.05) * np.sin(2 * np.pi * random.uniform(100, 3000) * time)
            begin = int(second * rate)
            x[begin : begin + len(note)] += note * (1 if n % 2 == 0 else 0.1)
        x = floats(x)
        yield measured(program, rate, reference=x, output=x), {"tempo": defined.tempo(x, rate)}


IN_DECIBELS = {"noise_reduction", "speech_retained", "delta_snr", "erle", "near_sdr"}


def main():
    worst, faults = {}, 0
    for case in (suppressor_case, echo_case, codec_case, pitch_case, tempo_case,
                 beats_case):
        for rate in (8000, 16000, 48000):
            for figures, wanted in case(sys.argv[1], np.random.default_rng(rate), rate):
                for name, value in wanted.items():
                    try:
                        apart = abs(float(figures[name]) - value)
                    except ValueError:
                        apart = np.inf
                    limit = 0.001 if name in IN_DECIBELS else 1e-4 * max(abs(value), 1e-4)
                    worst[name] = max(worst.get(name, 0), apart / limit)
                    if apart > limit:
                        faults += 1
                        print(f"{name} at {rate} Hz: {figures[name]}, not {value}")
    for name, share in worst.items():
        print(f"{name}: at most {share:.3f} of what it may be off")
    sys.exit(1 if faults else 0)


main()
