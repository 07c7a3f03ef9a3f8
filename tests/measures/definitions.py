"""The measures once more, from their definitions and not from the library, for
second_opinion.py."""
import numpy as np
from scipy import signal


def decibels(power):
    return 10 * np.log10(power)


def blocks(samples, size, hop):
    starts = np.arange(0, len(samples) - size + 1, hop)
    return samples[starts[:, None] + np.arange(size)]


def hann(size):
    return signal.get_window("hann", size, fftbins=True)


def long_term(samples, size):
    """Power per bin of the spectrum on both sides."""
    return np.sum(np.abs(np.fft.rfft(blocks(samples, size, size // 2) * hann(size))) ** 2, axis=0)


def power_of_two(least):
    return 1 << int(np.ceil(np.log2(least)))


def clipped(samples):
    """The share in runs of three or more at full scale, of one sign."""
    share = 0
    for sign in (1, -1):
        full = np.concatenate([[0], (sign * samples >= 1).astype(int), [0]])
        edges = np.flatnonzero(np.diff(full))
        lengths = edges[1::2] - edges[::2]
        share += np.sum(lengths[lengths >= 3])
    return share / len(samples)


def bandwidths(samples, rate):
    size = power_of_two(rate * 0.08)
    power = long_term(samples, size)
    power[:2] = 0
    energy = power * 2
    energy[-1] /= 2
    # Edges between the bins, half a bin away from each; the last one has a lower half alone.
    edges = np.concatenate([np.arange(len(power)) - 0.5, [len(power) - 1]])
    of_energy = np.interp(0.99, np.concatenate([[0], np.cumsum(energy) / np.sum(energy)]), edges)
    level = decibels(np.maximum(power, 1e-300)) - decibels(np.max(power))
    last = np.flatnonzero(level >= -40)[-1]
    place = last
    if last + 1 < len(level):
        place += (level[last] + 40) / (level[last] - level[last + 1])
    return of_energy * rate / size, place * rate / size


def active_level(samples, rate):
    """ITU-T P.56, method B: level and activity."""
    keep = np.exp(-1 / (0.03 * rate))
    envelope = np.abs(samples)
    for _ in range(2):
        envelope = signal.lfilter([1 - keep], [1, -keep], envelope)
    hangover = int(np.ceil(0.2 * rate))
    energy = np.sum(samples ** 2)
    places = np.arange(len(samples))
    before = None
    for exponent in range(-20, 4):
        threshold = 2.0 ** exponent
        last = np.maximum.accumulate(np.where(envelope >= threshold, places, -10 * len(samples)))
        active = np.count_nonzero(places - last <= hangover)
        if active == 0:
            return None, None
        level = decibels(energy / active)
        above = level - 20 * np.log10(threshold)
        if above <= 15.9:
            part = (before[1] - 15.9) / (before[1] - above)
            level = before[0] + part * (level - before[0])
            return level, 10 ** ((decibels(energy / len(samples)) - level) / 10)
        before = level, above
    return None, None


def levels(samples, rate):
    peak = 20 * np.log10(np.max(np.abs(samples)))
    rms = decibels(np.mean(samples ** 2))
    size = round(rate * 0.02)
    floor = np.percentile(np.sqrt(np.mean(blocks(samples, size, size) ** 2, axis=1)), 10)
    bandwidth, bandwidth_40db = bandwidths(samples, rate)
    level, activity = active_level(samples, rate)
    return {"peak": peak, "rms": rms, "crest": peak - rms, "dc": np.mean(samples),
            "clipped": clipped(samples), "noise_floor": 20 * np.log10(floor) if floor else None,
            "bandwidth": bandwidth, "bandwidth_40db": bandwidth_40db, "active_level": level,
            "activity": activity}


def differences(reference, output, rate):
    def ratio(wanted, error):
        return min(120.0, decibels(np.sum(wanted ** 2) / max(np.sum(error ** 2), 1e-300)))
    a, b = reference - np.mean(reference), output - np.mean(output)
    target = np.dot(b, a) / np.dot(a, a) * a
    size = round(rate * 0.02)
    segments = [np.clip(ratio(x, x - y), -10, 35)
                for x, y in zip(blocks(reference, size, size), blocks(output, size, size))
                if np.any(x)]
    return {"snr": ratio(reference, reference - output), "si_sdr": ratio(target, target - b),
            "seg_snr": np.mean(segments)}


CENTRES = np.array([[50, 120, 190, 260, 330, 400, 470, 540, 617.372, 703.378, 798.717, 904.128,
                     1020.38, 1148.30, 1288.72, 1442.54, 1610.70, 1794.16, 1993.93, 2211.08,
                     2446.71, 2701.97, 2978.04, 3276.17, 3597.63]]).T
WIDTHS = np.array([[70] * 7 + [77.3724, 86.0056, 95.3398, 105.411, 116.256, 127.914, 140.423,
                               153.823, 168.154, 183.457, 199.776, 217.153, 235.631, 255.255,
                               276.072, 298.126, 321.465, 346.136]]).T


def weighted_snr(a, b, rate, size):
    frequency = np.arange(size // 2 + 1) * rate / size
    weights = np.exp(-11 * ((frequency - CENTRES) / WIDTHS) ** 2)
    weights = np.where(weights < 1e-3, 0, weights) * 70 / WIDTHS
    wanted, got = np.sqrt(a) @ weights.T, np.sqrt(b) @ weights.T
    counts = wanted > 1e-3 * np.sqrt(np.max(a, axis=1, keepdims=True))
    snr = np.clip(20 * np.log10(wanted / np.maximum(np.abs(wanted - got), 1e-300)), -10, 35)
    share = np.where(counts, wanted, 0) ** 0.2
    some = np.any(counts, axis=1)
    return np.mean(np.sum(share * snr, axis=1)[some] / np.sum(share, axis=1)[some])


def cepstra(windowed, order):
    """From the poles of the predictors: sum of their powers over the power."""
    lags = np.stack([np.sum(windowed[:, :windowed.shape[1] - k] * windowed[:, k:], axis=1)
                     for k in range(order + 1)], axis=1)
    lags[:, 0] *= 1 + 1e-9
    toeplitz = lags[:, np.abs(np.arange(order)[:, None] - np.arange(order))]
    predictor = np.linalg.solve(toeplitz, lags[:, 1:, None])[:, :, 0]
    companion = np.zeros((len(lags), order, order))
    companion[:, 0] = predictor
    companion[:, np.arange(1, order), np.arange(order - 1)] = 1
    poles = np.linalg.eigvals(companion)
    return np.stack([np.sum(poles ** n, axis=1).real / n for n in range(1, order + 1)], axis=1)


def band_levels(samples, rate):
    size = power_of_two(rate * 0.16)
    power = long_term(samples, size)
    total = np.concatenate([[0], np.cumsum(power)])
    edges = np.arange(len(power) + 1) - 0.5
    centres = 1000 * 10 ** (np.arange(-13, 25) / 10)
    centres = centres[centres * 10 ** 0.05 <= rate / 2]
    low, high = (np.interp(centres * 10 ** side * size / rate, edges, total)
                 for side in (-0.05, 0.05))
    return high - low


def spectra(reference, output, rate):
    window, hop = round(rate * 0.03), int(rate * 0.0075 + 0.5)
    size = power_of_two(window)
    a, b = (blocks(x, window, hop) * hann(window) for x in (reference, output))
    some = np.any(a, axis=1)
    powers = [np.abs(np.fft.rfft(x, size)) ** 2 for x in (a[some], b[some])]
    floor = 1e-6 * np.max(powers[0])
    apart = decibels(np.maximum(powers[0], floor) / np.maximum(powers[1], floor))
    order = 10 if rate < 10000 else 16
    both = np.any(a, axis=1) & np.any(b, axis=1)
    distance = 10 / np.log(10) * np.sqrt(
        2 * np.sum((cepstra(a[both], order) - cepstra(b[both], order)) ** 2, axis=1))
    distance = np.sort(np.minimum(distance, 10))[:max(1, int(0.95 * np.sum(both) + 0.5))]
    wanted, got = band_levels(reference, rate), band_levels(output, rate)
    count = wanted >= 1e-6 * np.max(wanted)
    bands = np.abs(decibels(np.maximum(got, 1e-10 * np.max(wanted))[count] / wanted[count]))
    return {"fw_seg_snr": weighted_snr(*powers, rate, size), "cepstral_distance": np.mean(distance),
            "lsd": np.mean(np.sqrt(np.mean(apart ** 2, axis=1))), "band_difference": np.mean(bands),
            "band_difference_worst": np.max(bands)}


def envelopes(samples, window):
    power = np.abs(np.fft.rfft(blocks(samples, 256, 128) * window, 512)) ** 2
    bins = np.arange(257) * 10000 / 512
    rows = []
    for band in range(15):
        low, high = (np.argmin(np.abs(bins - 150 * 2 ** ((2 * band + side) / 6)))
                     for side in (-1, 1))
        rows.append(np.sqrt(np.sum(power[:, low:high], axis=1)))
    return np.array(rows)


def normalised(values, axis):
    values = values - np.mean(values, axis=axis, keepdims=True)
    norm = np.linalg.norm(values, axis=axis, keepdims=True)
    return np.divide(values, norm, out=np.zeros_like(values), where=norm > 0)


def intelligibility(reference, output):
    window = np.hanning(258)[1:-1]
    a, b = (blocks(x, 256, 128) * window for x in (reference, output))
    energy = np.sum(a ** 2, axis=1)
    kept = energy > np.max(energy) * 1e-4
    joined = []
    for windowed in (a[kept], b[kept]):
        samples = np.zeros(128 * (len(windowed) + 1))
        for i, block in enumerate(windowed):
            samples[128 * i:128 * i + 256] += block
        joined.append(envelopes(samples, window))
    count = joined[0].shape[1] - 29
    if count < 1:
        return {"stoi": None, "estoi": None}
    stoi, estoi = [], []
    for start in range(count):
        x, y = (rows[:, start:start + 30] for rows in joined)
        norms = np.linalg.norm(y, axis=1, keepdims=True)
        scale = np.divide(np.linalg.norm(x, axis=1, keepdims=True), norms,
                          out=np.zeros_like(norms), where=norms > 0)
        limited = np.minimum(y * scale, x * (1 + 10 ** (15 / 20)))
        stoi.append(np.mean(np.sum(normalised(x, 1) * normalised(limited, 1), axis=1)))
        x, y = (normalised(normalised(rows, 1), 0) for rows in (x, y))
        estoi.append(np.sum(x * y) / 30)
    return {"stoi": np.mean(stoi), "estoi": np.mean(estoi)}
