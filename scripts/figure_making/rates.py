"""The resampler: what a tone keeps, and what is left of one that the new rate cannot hold."""

import numpy as np

from figure_making import signals
from figure_making.svg import table

SECONDS = 5


def measure(bench):
    rows = []
    for source, target in ((44100, 48000), (48000, 44100), (48000, 16000), (16000, 48000), (44100, 8000)):
        least = min(source, target)
        probe = signals.tone(SECONDS, source, 997, -3)
        high = signals.tone(SECONDS, source, 0.45 * least, -3)
        figures = []
        for sound in (probe, high):
            out, cost = bench.run("TestAudioResamplerEx", ("in.wav", "out.wav", target, 1), {"in.wav": (sound, source)},
                                  lambda o: (o.wave("out.wav")[0], o.cost(SECONDS)))
            middle = out[target : target * (SECONDS - 1)]
            figures.append((middle, cost))
        tone_out = figures[0][0]
        t = np.arange(len(tone_out)) / target
        basis = np.stack([np.sin(2 * np.pi * 997 * t), np.cos(2 * np.pi * 997 * t)], axis=1)
        fit = basis @ np.linalg.lstsq(basis, tone_out, rcond=None)[0]
        noise = signals.level(tone_out - fit) - signals.level(fit)
        alias = "-"
        if target < source:
            above = signals.tone(SECONDS, source, min(0.6 * target, 0.49 * source), -3)
            out = bench.run("TestAudioResamplerEx", ("in.wav", "out.wav", target, 1), {"in.wav": (above, source)},
                            lambda o: o.wave("out.wav")[0])
            alias = f"{signals.level(out[target : target * (SECONDS - 1)]) - signals.level(above):.0f}"
        rows.append((f"{source} to {target}", f"{signals.level(fit) - signals.level(probe):+.2f}",
                     f"{signals.level(figures[1][0]) - signals.level(high):+.2f}", f"{noise:.0f}", alias,
                     f"{figures[0][1]:.1f}"))
    return None, table("Resampler", ("rates, Hz", "gain at 997 Hz, dB", "at 0.45 of the lower rate, dB", "THD+N, dB",
                                     "a tone above half the new rate, dB", "CPU, ms/s"), rows)
