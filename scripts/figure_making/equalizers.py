"""The frequency responses of the equalisers, from white noise in and out."""

import numpy as np

from figure_making import signals
from figure_making.svg import drawing, table

RATE = 44100
SECONDS = 20
EQUALIZERS = {
    "TestIIREq": ((), "C/44100_2_music.wav", "C/44100_2_music_eq.wav"),
    "TestAudioEffectModule": ((), "input.wav", "effect_out.wav"),
    "TestHPFProcess": (("in.wav", "out.wav"), "in.wav", "out.wav"),
}


def measure(bench):
    white = signals.noise(SECONDS, RATE, -40)
    stereo = np.stack([white, white], axis=1)
    lines, rows = {}, []
    shown = np.geomspace(20, 20000, 200)
    for routine, (arguments, source, target) in EQUALIZERS.items():
        got = bench.run(routine, arguments, {source: (stereo, RATE)},
                        lambda o: (o.wave(target)[0], o.cost(SECONDS)))
        if got is None:
            continue
        out, cost = got
        frequencies, power_in = signals.spectrum(white, RATE, 16384)
        _, power_out = signals.spectrum(out, RATE, 16384)
        gain = 10 * np.log10(np.maximum(power_out, 1e-20) / power_in)
        smooth = np.convolve(np.pad(gain, 3, mode="edge"), np.ones(7) / 7, mode="valid")
        lines[routine] = (shown, np.interp(shown, frequencies, smooth))
        at = [f"{np.interp(f, frequencies, smooth):+.1f}" for f in (31, 125, 500, 2000, 8000, 16000)]
        rows.append((f"`{routine}`", *at, f"{cost:.1f}"))
    return (drawing("Equalisers, gain over frequency", ("Hz", 20, 20000, (20, 50, 100, 200, 500, 1000, 2000, 5000, 10000)),
                    ("dB", -24, 18, range(-24, 19, 6)), lines, logarithmic=True),
            table("Equalisers", ("routine", "31 Hz, dB", "125", "500", "2000", "8000", "16000", "CPU, ms/s"), rows))
