"""Level out over level in of the compressors, for a tone that holds each level for 3 s."""

import numpy as np

from figure_making import signals
from figure_making.svg import drawing, table

RATE = 44100
HOLD = 3
LEVELS = range(-60, 1, 4)
PROCESSORS = {
    "TestDrc": ("music.wav", "drc_out.wav"),
    "TestMdrc": ("voice.wav", "mdrc.wav"),
}


def measure(bench):
    steps = np.concatenate([signals.tone(HOLD, RATE, 997, level) for level in LEVELS])
    seconds = HOLD * len(LEVELS)
    lines, rows = {}, []
    for routine, (source, target) in PROCESSORS.items():
        got = bench.run(routine, (), {source: (steps, RATE)}, lambda o: (o.wave(target)[0], o.cost(seconds)))
        if got is None:
            continue
        out, cost = got
        # The last third of each step, in which everything has settled; a peak is 3 dB above its RMS.
        ends = [out[int((i + 0.67) * HOLD * RATE) : int((i + 0.95) * HOLD * RATE)] for i in range(len(LEVELS))]
        levels = [signals.level(end) + 3.01 for end in ends]
        lines[routine] = (list(LEVELS), levels)
        at = [f"{np.interp(level, list(LEVELS), levels):.1f}" for level in (-40, -20, -12, 0)]
        rows.append((f"`{routine}`", *at, f"{cost:.1f}"))
    return (drawing("Dynamics, peak of a 997 Hz tone", ("in, dBFS", -60, 0, range(-60, 1, 10)),
                    ("out, dBFS", -60, 6, range(-60, 7, 10)), lines),
            table("Dynamics", ("routine", "out at -40 dBFS in", "at -20", "at -12", "at 0", "CPU, ms/s"), rows))
