"""The measures of suppressors, cancellers, codecs and music, from their definitions."""
import numpy as np
from scipy import signal

from definitions import active_level, blocks, hann, power_of_two

BLOCK_SECONDS = 0.02


def energies(x, rate):
    n = round(rate * BLOCK_SECONDS)
    return (x[: len(x) // n * n].reshape(-1, n) ** 2).sum(axis=1)


def activity(x, rate, limit=None):
    """Active, talk and pause for each block."""
    if limit is None:
        limit = active_level(x, rate)[0] - 15.9
    power = energies(x, rate) / round(rate * BLOCK_SECONDS)
    active = power >= 10 ** (limit / 10)
    talk = np.convolve(active, np.ones(11))[: len(active)] > 0
    before = np.convolve(active[::-1], np.ones(4))[: len(active)][::-1] > 0
    return active, talk, ~(talk | before)


def samples_of(blocks, rate):
    return np.repeat(blocks, round(rate * BLOCK_SECONDS))


def suppression(s, x, y, rate, activities):
    active, _, pause = activities
    ex, ey = energies(x, rate), energies(y, rate)
    on = samples_of(active, rate)
    s, xs, ys = s[: len(on)][on], x[: len(on)][on], y[: len(on)][on]
    snr = [10 * np.log10(e[active].mean() / e[pause].mean() - 1) for e in (ex, ey)]
    return {
        "noise_reduction": 10 * np.log10(ex[pause].sum() / ey[pause].sum()),
        "speech_retained": 20 * np.log10(abs(np.dot(ys, s) / np.dot(xs, s))),
        "delta_snr": snr[1] - snr[0],
        "musical": np.log(kurtosis(y, pause, rate) / kurtosis(x, pause, rate)),
    }


def kurtosis(x, pause, rate):
    size = power_of_two(rate * 0.02)
    window = hann(size)
    marks = samples_of(pause, rate)
    edges = np.flatnonzero(np.diff(np.concatenate(([0], marks.astype(int), [0]))))
    powers = []
    for begin, end in zip(edges[::2], edges[1::2]):
        for start in range(begin, end - size + 1, size // 2):
            powers.append(abs(np.fft.rfft(x[start : start + size] * window)) ** 2)
    powers = np.array(powers)[:, 2:-2]
    powers = powers / powers.mean(axis=0)
    return (powers**4).mean() / (powers**2).mean() ** 2


def echo(far, mic, near, out, rate, later):
    active, _, _ = activity(far, rate)
    before, after = energies(mic[later:], rate), energies(out[later:], rate)
    _, _, pause = activity(near[later:], rate)
    count = min(len(active), len(before))
    alone = np.flatnonzero(active[:count] & pause[:count])
    ten = np.ones(10)
    track = 10 * np.log10(np.convolve(before[alone], ten, "valid")
                          / np.convolve(after[alone], ten, "valid"))
    return {"erle": np.median(track), "convergence": np.argmax(track >= 20) * BLOCK_SECONDS}


def near_sdr(near, far, out, rate):
    both = samples_of(activity(near, rate)[1] & activity(far, rate)[1], rate)
    s, y = near[: len(both)][both], out[: len(both)][both]
    target = np.dot(y, s) / np.dot(s, s) * s
    return 10 * np.log10(np.sum(target**2) / np.sum((target - y) ** 2))


def smooth_long_term(x, rate):
    size = power_of_two(rate * 0.08)
    _, power = signal.welch(x, rate, "hann", size, detrend=False, scaling="spectrum",
                            return_onesided=False)
    power = power[: size // 2 + 1]
    power[:2] = 0
    count = np.convolve(np.ones(len(power)), np.ones(9), "same")
    return np.convolve(power, np.ones(9), "same") / count, rate / size


def band_limit(x, y, rate):
    (before, hertz), (after, _) = smooth_long_term(x, rate), smooth_long_term(y, rate)
    excess = 10 * np.log10(after / after.sum() * before.sum() / before) + 20
    kept = np.flatnonzero((before >= before.max() * 1e-7) & (excess >= 0))[-1]
    if kept + 1 == len(before) or before[kept + 1] < before.max() * 1e-7:
        return kept * hertz
    return (kept + excess[kept] / (excess[kept] - excess[kept + 1])) * hertz


def pitches(x, rate):
    """Of each block, 0 where it is not voiced."""
    window, most = rate // 40, rate // 60 + 2
    lags = np.arange(most + 1)
    starts = range(0, len(x) - window - most + 1, rate // 100)
    found = []
    for start in starts:
        block = x[start : start + window + most]
        later = np.lib.stride_tricks.sliding_window_view(block, window)[: most + 1]
        d = ((block[:window] - later) ** 2).sum(axis=1)
        with np.errstate(invalid="ignore", divide="ignore"):
            n = np.where(lags > 0, d * lags / np.cumsum(d), 1)
        below = np.flatnonzero(n[rate // 1000 : most] < 0.1)
        found.append((0, np.sum(block[:window] ** 2)))
        if len(below) == 0:
            continue
        lag = below[0] + rate // 1000
        while lag < most and n[lag + 1] < n[lag]:
            lag += 1
        if lag == most:
            continue
        a, b, c = d[lag - 1 : lag + 2]
        pitch = rate / (lag + (a - c) / (2 * (a - 2 * b + c)))
        if 60 <= pitch <= 1000:
            found[-1] = pitch, found[-1][1]
    found, energy = np.array(found).T
    return np.where(energy >= energy.max() * 1e-3, found, 0)


def pitch_cents(x, y, rate):
    x, y = pitches(x, rate), pitches(y, rate)
    x = x[np.arange(len(y)) * len(x) // len(y)]
    both = (x > 0) & (y > 0)
    return 1200 * np.median(np.log2(y[both] / x[both]))


def tempo(x, rate):
    step, size = round(0.01 * rate), power_of_two(0.04 * rate)
    power = abs(np.fft.rfft(blocks(x, size, step) * hann(size))) ** 2
    edges = np.round(np.geomspace(60, min(16000, rate / 2), 25) * size / rate).astype(int)
    bands = np.array([power[:, a:b].sum(axis=1) for a, b in zip(edges, edges[1:])])
    levels = np.log(bands + 1e-4 * np.mean(x**2) * size * 3 / 8)
    onsets = np.concatenate(([0], np.maximum(0, np.diff(levels, axis=1)).sum(axis=0)))
    for _ in range(4):
        onsets = np.convolve(onsets, [1, 2, 1], "same")
    around = np.ones(100)
    mean = np.convolve(onsets, around, "same") / np.convolve(np.ones(len(onsets)), around, "same")
    onsets = onsets - mean
    n = len(onsets)
    r = np.correlate(onsets, onsets, "full")[n - 1 :] / (n - np.arange(n))
    r = (r / r[0])[: n // 2]
    per_minute = 60 * rate / step
    lags = np.arange(int(per_minute / 240), int(np.ceil(per_minute / 40)) + 1)
    peaks = lags[(r[lags] >= r[lags - 1]) & (r[lags] >= r[lags + 1])]
    beat = peaks[np.argmax(r[peaks] * np.exp(-np.log2(per_minute / peaks / 120) ** 2 / 2))]
    for beats in (1, 2, 4, 8):
        near = round(beats * beat)
        if beats > 1 and beats * beat + 4 > len(r):
            break
        best = near - 2 + np.argmax(r[near - 2 : near + 3])
        a, b, c = r[best - 1 : best + 2]
        beat = (best + np.clip((a - c) / (2 * (a - 2 * b + c)), -0.5, 0.5)) / beats
    return per_minute / beat
