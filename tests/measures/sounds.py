"""Generated signals and damage to them, for second_opinion.py."""
import numpy as np


def noise(rate, seconds, seed):
    return 0.1 * np.random.default_rng(seed).standard_normal(int(rate * seconds))


def faded(samples, rate):
    """Without what is near half the rate, where nothing can be moved by half a sample."""
    spectrum = np.fft.rfft(samples)
    frequency = np.fft.rfftfreq(len(samples), 1 / rate)
    return np.fft.irfft(spectrum * np.clip((0.45 * rate - frequency) / (0.05 * rate), 0, 1),
                        len(samples))


def coloured(rate, seconds, seed, slope):
    """Noise that falls by 10 * slope dB per decade."""
    spectrum = np.fft.rfft(noise(rate, seconds, seed))
    frequency = np.fft.rfftfreq(int(rate * seconds), 1 / rate)
    return 3 * faded(np.fft.irfft(spectrum / np.maximum(frequency / 100, 0.3) ** (slope / 2),
                                  int(rate * seconds)), rate)


def syllables(samples, rate, pause):
    """On and off four times a second, with a silent part at the end of each second."""
    t = np.arange(len(samples)) / rate
    envelope = 0.02 + np.clip(np.sin(2 * np.pi * 2 * t), 0, 1) ** 0.5
    return samples * np.where(t % 1 < 1 - pause, envelope, 1e-3)


def voice(rate, seconds, seed):
    """Harmonics of a gliding pitch, with breath, in syllables."""
    t = np.arange(int(rate * seconds)) / rate
    phase = 2 * np.pi * np.cumsum(120 + 30 * np.sin(2 * np.pi * 0.7 * t)) / rate
    harmonics = sum(np.sin(k * phase + k * k) / k for k in range(1, 25) if 150 * k < 0.45 * rate)
    return faded(syllables(0.1 * harmonics + 0.1 * coloured(rate, seconds, seed, 0.5), rate, 0.2),
                 rate)


def chords(rate, seconds):
    t = np.arange(int(rate * seconds)) / rate
    sound = 0.003 * noise(rate, seconds, 5)
    for i in range(int(seconds * 2)):
        since = t - i / 2
        for semitone in (0, 4, 7, 12):
            tone = np.sin(2 * np.pi * 220 * 2 ** ((semitone + i % 5) / 12) * since)
            sound += np.where(since >= 0, 0.08 * tone * np.exp(-4 * np.abs(since)), 0)
    return faded(sound, rate)


def sweep(rate, seconds):
    t = np.arange(int(rate * seconds)) / rate
    phase = 2 * np.pi * (100 * t + (0.4 * rate - 100) * t * t / (2 * seconds))
    return faded(0.3 * np.sin(phase), rate)


def drums(rate, seconds):
    sound = np.zeros(int(rate * seconds))
    t = np.arange(rate // 4) / rate
    for i in range(int(seconds * 4)):
        hit = noise(rate, 0.25, i)[:len(t)] * np.exp(-30 * t) * (3 if i % 2 else 1)
        sound[i * rate // 4:i * rate // 4 + len(t)] += hit
    return faded(sound, rate)


def all_sounds():
    for rate in (8000, 44100):
        yield f"voice {rate}", rate, voice(rate, 4, 1)
        yield f"pink {rate}", rate, coloured(rate, 4, 2, 1)
    yield "syllables 16000", 16000, syllables(coloured(16000, 5, 3, 1), 16000, 0.3)
    yield "white 16000", 16000, faded(noise(16000, 4, 4), 16000)
    yield "chords 48000", 48000, chords(48000, 4)
    yield "sweep 32000", 32000, sweep(32000, 4)
    yield "drums 48000", 48000, drums(48000, 4)
    yield "voice 96000", 96000, voice(96000, 3, 6)


def noise_below(samples, decibels, seed):
    random = np.random.default_rng(seed).standard_normal(len(samples))
    return random * np.sqrt(np.mean(samples ** 2)) * 10 ** (-decibels / 20)


def moved(samples, later):
    """Later by a part of a sample too; what comes after the end is silence."""
    padded = np.concatenate([samples, np.zeros(len(samples))])
    turn = np.exp(-2j * np.pi * np.fft.rfftfreq(len(padded)) * later)
    return np.fft.irfft(np.fft.rfft(padded) * turn, len(padded))[:len(samples) + int(later) + 1]


def warped(samples, later, ppm):
    """Later, and longer by the share."""
    reach = 128
    place = np.arange(len(samples)) / (1 + ppm * 1e-6) - later
    whole = np.floor(place).astype(int)
    padded = np.pad(samples, 4 * reach)
    result = np.zeros(len(samples))
    for tap in range(-reach + 1, reach + 1):
        away = tap - (place - whole)
        window = np.i0(12 * np.sqrt(np.maximum(0, 1 - (away / reach) ** 2))) / np.i0(12)
        result += np.sinc(away) * window * padded[np.clip(whole + tap + 4 * reach, 0,
                                                          len(padded) - 1)]
    return result


def band_limited(samples, rate):
    spectrum = np.fft.rfft(samples)
    frequency = np.fft.rfftfreq(len(samples), 1 / rate)
    return np.fft.irfft(spectrum / (1 + (frequency / (0.2 * rate)) ** 12), len(samples))


def coded(samples):
    """Blocks quantised by a step that follows their level, as a codec does."""
    blocks = samples[:len(samples) // 160 * 160].reshape(-1, 160)
    step = 0.2 * np.sqrt(np.mean(blocks ** 2, axis=1, keepdims=True)) + 1e-4
    return np.concatenate([(np.round(blocks / step) * step).ravel(),
                           samples[len(samples) // 160 * 160:]])


def dropped(samples, rate):
    result = samples.copy()
    for start in range(rate // 3, len(samples), rate // 2):
        result[start:start + rate // 100] = 0
    return result


def damages(samples, rate):
    """By name: what became of the samples, and by how many samples it is later."""
    return {"noise": (samples + noise_below(samples, 20, 11), 0),
            "band limit": (band_limited(samples, rate), 0),
            "clip": (np.clip(4 * samples, -1, 1), 0),
            "gain and delay": (-0.4 * moved(samples, 213.37), 213.37),
            "quantisation": (coded(samples), 0),
            "drop-outs": (dropped(samples, rate), 0)}
