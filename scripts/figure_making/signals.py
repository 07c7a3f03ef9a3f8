"""Signals of known properties, the same on every machine."""

import numpy as np


def noise(seconds, rate, level_db, seed=1):
    """White Gaussian noise, level as RMS in dBFS."""
    return np.random.default_rng(seed).standard_normal(int(seconds * rate)) * 10 ** (level_db / 20)


def tone(seconds, rate, frequency, level_db):
    """A sine, level as peak in dBFS."""
    return 10 ** (level_db / 20) * np.sin(2 * np.pi * frequency * np.arange(int(seconds * rate)) / rate)


def band(samples, rate, low, high):
    """What lies between two frequencies."""
    spectrum = np.fft.rfft(samples)
    frequencies = np.fft.rfftfreq(len(samples), 1 / rate)
    spectrum[(frequencies < low) | (frequencies > high)] = 0
    return np.fft.irfft(spectrum, len(samples))


def talk(seconds, rate, level_db, seed=1):
    """Voice-like: a buzz of moving pitch through moving formants, 3 syllables a second, with pauses."""
    rng = np.random.default_rng(seed)
    count = int(seconds * rate)
    t = np.arange(count) / rate
    pitch = 120 * (1 + 0.2 * np.sin(2 * np.pi * 0.7 * t + rng.uniform(0, 6)))
    phase = 2 * np.pi * np.cumsum(pitch) / rate
    voice = np.zeros(count)
    for k in range(1, int(min(4000, rate / 2 - 200) / 150)):
        formants = sum(gain / (1 + ((k * pitch - center * (1 + 0.2 * np.sin(2 * np.pi * speed * t))) / 120) ** 2)
                       for center, gain, speed in ((500, 1, 1.1), (1500, 0.5, 1.7), (2600, 0.3, 0.9)))
        voice += formants * np.sin(k * phase)
    syllables = np.clip(np.sin(2 * np.pi * 3 * t + rng.uniform(0, 6)), 0, None) ** 0.5
    words = np.repeat(rng.random(int(seconds / 0.5) + 1) < 0.75, int(0.5 * rate))[:count]
    speech = (voice + 0.05 * rng.standard_normal(count)) * syllables * words
    return speech * 10 ** (level_db / 20) / np.sqrt(np.mean(speech**2))


def room(samples, rate, delay_ms, tail_ms, level_db, seed=7):
    """As heard by a microphone: delayed, through a tail that decays by 60 dB, changed in level."""
    count = int(tail_ms * rate / 1000)
    response = np.random.default_rng(seed).standard_normal(count) * 10 ** (-3 * np.arange(count) / count)
    response /= np.sqrt(np.sum(response**2))
    size = len(samples) + count
    heard = np.fft.irfft(np.fft.rfft(samples, size) * np.fft.rfft(response, size), size)[: len(samples)]
    delay = int(delay_ms * rate / 1000)
    return np.concatenate([np.zeros(delay), heard])[: len(samples)] * 10 ** (level_db / 20)


def level(samples):
    """RMS in dBFS, -120 at the least."""
    return 10 * np.log10(max(np.mean(np.square(samples)), 1e-12)) if len(samples) else -120.0


def spectrum(samples, rate, size=4096):
    """Frequencies and the mean power of Hann-windowed blocks that overlap by half."""
    window = np.hanning(size)
    blocks = [samples[i : i + size] * window for i in range(0, len(samples) - size, size // 2)]
    return np.fft.rfftfreq(size, 1 / rate), np.mean([np.abs(np.fft.rfft(b)) ** 2 for b in blocks], axis=0)


def lag(late, early, most):
    """By how many samples the first signal is late, up to `most`."""
    size = 1 << (len(late) + len(early)).bit_length()
    product = np.fft.rfft(late, size) * np.conj(np.fft.rfft(early, size))
    return int(np.argmax(np.fft.irfft(product, size)[:most]))
