"""Runs of routines in workspaces that are gone afterwards."""

import json
import pathlib
import subprocess
import tempfile
import wave

import numpy as np


def write_wave(path, samples, rate):
    """samples: floats in [-1, 1), shape (frames,) or (frames, channels)."""
    path.parent.mkdir(parents=True, exist_ok=True)
    rounded = np.clip(np.rint(np.asarray(samples) * 32768), -32768, 32767).astype("<i2")
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1 if rounded.ndim == 1 else rounded.shape[1])
        file.setsampwidth(2)
        file.setframerate(rate)
        file.writeframes(rounded.tobytes())


def read_wave(path):
    """The first channel as floats, and the rate. Reads to the end of the file, whatever the header says."""
    with wave.open(str(path), "rb") as file:
        channels, rate = file.getnchannels(), file.getframerate()
    samples = np.frombuffer(path.read_bytes()[44:], "<i2")
    return samples[: len(samples) // channels * channels][::channels] / 32768, rate


class Outcome:
    def __init__(self, report, folder):
        self.report = report
        self._folder = folder

    def wave(self, name):
        return read_wave(self._folder / name)

    def size(self, name):
        return (self._folder / name).stat().st_size

    def cost(self, seconds):
        """Milliseconds of CPU for each second of audio, the start of the process included."""
        return 1000 * self.report["cpu"]["value"] / seconds


class Bench:
    def __init__(self, program):
        self._program = pathlib.Path(program).resolve()

    def run(self, routine, arguments, inputs, look):
        """Runs a routine on inputs {name in the workspace: (samples, rate)}; look(outcome) is the answer.

        None when the routine did not pass, as a codec that this build lacks does.
        """
        with tempfile.TemporaryDirectory() as folder:
            work = pathlib.Path(folder)
            for name, (samples, rate) in inputs.items():
                write_wave(work / name, samples, rate)
            done = subprocess.run([self._program, "run", routine, "--work", work, "--json", work / "report.json",
                                   "--", *map(str, arguments)], capture_output=True, text=True, check=False)
            report = json.loads((work / "report.json").read_text())
            if done.returncode != 0:
                return None
            return look(Outcome(report, work))
