"""How much of an echo the cancellers leave, over time, and what they do to the near end."""

import numpy as np

from figure_making import signals
from figure_making.svg import drawing, table

RATE = 16000
# The others are built on the same canceller.
DRAWN = ("SoftwareAec", "AecMobile")
SECONDS = 20
DELAY_MS = 90
CANCELLERS = {
    "SoftwareAec": ("TestZUAec", ("near.wav", "far.wav", "out.wav", "true")),
    "CreateHardwareAec": ("TestZUAec", ("near.wav", "far.wav", "out.wav", "false")),
    "AecMobile": ("TestZUAECProcess", ("far.wav", "near.wav", "out.wav", DELAY_MS)),
    "WebRtcAec, delay estimated": ("TestEchoDelayEstAndAEC", ("far.wav", "near.wav", "out.wav")),
}


def canceled(bench, far, near, routine, arguments):
    inputs = {"far.wav": (far, RATE), "near.wav": (near, RATE)}
    return bench.run(routine, arguments, inputs, lambda o: (o.wave("out.wav")[0], o.cost(SECONDS)))


def measure(bench):
    far = signals.talk(SECONDS, RATE, -26)
    echo = signals.room(far, RATE, DELAY_MS, 120, -6) + signals.noise(SECONDS, RATE, -75)
    # The near end talks alone: nothing comes from the loudspeaker.
    near = signals.talk(SECONDS, RATE, -26, seed=5) + signals.noise(SECONDS, RATE, -75)
    lines, rows = {}, []
    step = RATE
    for name, (routine, arguments) in CANCELLERS.items():
        single = canceled(bench, far, echo, routine, arguments)
        alone = canceled(bench, 1e-4 * far, near, routine, arguments)
        if single is None or alone is None:
            continue
        out, cost = single
        count = min(len(out), len(echo)) // step
        enhancement = [signals.level(echo[i * step : (i + 1) * step]) - signals.level(out[i * step : (i + 1) * step])
                       for i in range(count)]
        if name in DRAWN:
            lines[name] = ([i + 0.5 for i in range(count)], enhancement)
        kept = signals.level(alone[0]) - signals.level(near[: len(alone[0])])
        rows.append((name, f"`{routine}`", f"{np.mean(enhancement[2:5]):.1f}", f"{np.mean(enhancement[10:]):.1f}",
                     f"{kept:+.1f}", f"{cost:.1f}"))
    return (drawing("Echo return loss enhancement, far end alone", ("s", 0, SECONDS, range(0, SECONDS + 1, 5)),
                    ("dB", 0, 60, range(0, 61, 10)), lines),
            table("Echo", ("canceller", "routine", "ERLE 2 to 5 s, dB", "ERLE from 10 s, dB", "near end alone, dB",
                           "CPU, ms/s"), rows))
