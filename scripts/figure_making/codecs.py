"""Bit rate, bandwidth, delay and noise of every codec that TestZUCodecNew takes."""

import numpy as np

from figure_making import signals
from figure_making.svg import drawing, table

SECONDS = 10
# Rates in Hz and channels. A codec is measured in the first that it takes.
FORMS = ((8000, 1), (16000, 1), (32000, 1), (44100, 1), (44100, 2), (48000, 1), (48000, 2))
IDS = (0, 2, 3, 21, 22, 23, 35, 36, 40, 41, 42, 43, 44, 45, 50, 51, 52, 53)
SHOWN_KHZ = np.linspace(0.1, 24, 240)
DRAWN = (2, 35, 40, 45, 51)


def sound(rate):
    """Noise that falls by 6 dB an octave from 200 Hz on, with pauses."""
    white = signals.noise(SECONDS, rate, 0)
    shape = np.minimum(1, 200 / np.maximum(np.fft.rfftfreq(len(white), 1 / rate), 1))
    colored = np.fft.irfft(np.fft.rfft(white) * shape, len(white))
    gate = 0.2 + 0.8 * (np.sin(2 * np.pi * 1.5 * np.arange(len(white)) / rate) > -0.5)
    colored *= gate
    return colored * 10 ** (-24 / 20) / np.sqrt(np.mean(colored**2))


def coded(bench, codec):
    """The first form in which a codec takes it: rate, channels, output, bytes of the stream and cost."""
    for rate, channels in FORMS:
        source = sound(rate)
        both = source if channels == 1 else np.stack([source, source], axis=1)
        got = bench.run("TestZUCodecNew", ("in.wav", "out.wav", codec), {"in.wav": (both, rate)},
                        lambda o: (o.wave("out.wav.dec.wav"), o.size("out.wav.enc"), o.cost(SECONDS))
                        if o.report["verdict"] == "pass" else None)
        if got and len(got[0][0]) > SECONDS * got[0][1] / 2:
            return rate, channels, source, got
    return None


def measure(bench):
    lines, rows = {}, []
    for codec in IDS:
        got = coded(bench, codec)
        if got is None:
            continue
        rate, channels, source, ((out, out_rate), size, cost) = got
        frequencies, power_in = signals.spectrum(source, rate)
        own, power_out = signals.spectrum(out, out_rate)
        gain = 10 * np.log10(np.maximum(np.interp(frequencies, own, power_out), 1e-20) / power_in)
        gain = np.convolve(np.pad(gain, 8, mode="edge"), np.ones(17) / 17, mode="valid")
        wide = frequencies[(gain > -10) & (frequencies > 200)]
        late = signals.lag(out, source, rate // 2) if out_rate == rate else None
        rows.append((codec, rate, channels, f"{8 * size / SECONDS / 1000:.1f}",
                     f"{wide.max() / 1000:.1f}" if len(wide) else "-",
                     f"{1000 * late / rate:.0f}" if late is not None else "-", f"{cost:.1f}"))
        if codec in DRAWN:
            here = SHOWN_KHZ[SHOWN_KHZ <= rate / 2000]
            lines[f"id {codec}, {8 * size / SECONDS / 1000:.0f} kbit/s"] = (here, np.interp(1000 * here, frequencies, gain))
    return (drawing("Codecs, spectrum out against in", ("kHz", 0, 24, range(0, 25, 4)),
                    ("dB", -40, 10, range(-40, 11, 10)), lines),
            table("Codecs", ("id", "rate, Hz", "channels", "kbit/s", "bandwidth, kHz", "delay, ms", "CPU, ms/s"), rows))
