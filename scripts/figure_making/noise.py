"""What the suppressors leave of noise in pauses, and of the voice."""

import numpy as np

from figure_making import signals
from figure_making.svg import table

RATE = 16000
SECONDS = 20
SUPPRESSORS = {
    "CAudioDenoise": ("TestDenoiseProcess", (), "ns_in.wav", "ns_out.wav"),
    "Ns": ("TestAecDenoiseInternal", ("in.wav", "out.wav"), "in.wav", "out.wav"),
}


def measure(bench):
    voice = signals.talk(SECONDS, RATE, -26)
    quiet = np.repeat(np.abs(voice).reshape(-1, RATE // 10).max(axis=1) < 1e-4, RATE // 10)
    settled = np.arange(len(voice)) > 5 * RATE
    rows = []
    for snr in (0, 10, 20):
        noisy = voice + signals.noise(SECONDS, RATE, -26 - snr)
        for name, (routine, arguments, source, target) in SUPPRESSORS.items():
            got = bench.run(routine, arguments, {source: (noisy, RATE)},
                            lambda o: (o.wave(target)[0], o.cost(SECONDS)))
            if got is None:
                continue
            out, cost = got
            late = signals.lag(out, noisy, RATE // 4)
            out = np.concatenate([out[late:], np.zeros(late)])[: len(noisy)]
            out = np.pad(out, (0, len(noisy) - len(out)))
            pause, speech = quiet & settled, ~quiet & settled
            rows.append((name, f"`{routine}`", snr, f"{signals.level(noisy[pause]) - signals.level(out[pause]):.1f}",
                         f"{signals.level(out[speech]) - signals.level(voice[speech]):+.1f}",
                         f"{1000 * late / RATE:.0f}", f"{cost:.1f}"))
    return None, table("Noise", ("suppressor", "routine", "SNR in, dB", "noise taken off in pauses, dB",
                                 "level of speech, dB", "delay, ms", "CPU, ms/s"), rows)
