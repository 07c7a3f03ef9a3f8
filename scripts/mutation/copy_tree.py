"""A copy of the working tree that is broken, built and tested in place of the tree itself."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import time

# The groups whose tests also exercise what stands in a group.
BUILT_ON = {"platform": ["devices", "mixing"], "devices": ["live", "mixing"], "live": ["mixing"],
            "dsp": ["effects", "enhancement", "aec", "mixing"], "common": ["codec", "files", "mixing"],
            "enhancement": ["aec"], "wave": ["common"],
            "base": ["report", "run", "cli"], "files": ["live", "mixing", "run", "report"],
            "process": ["run", "cli", "measure"],
            "guards": ["run"], "recording": ["run", "measure"], "results": ["run", "suite", "measure"],
            "suite": ["measure", "cli"], "tables": ["suite", "measure"], "measure": ["run"], "statistics": ["compare"],
            "compare": ["controls", "cli"], "controls": [], "engines": ["engine"], "replay": [], "selftest": ["measure"],
            "report": ["run", "cli"], "catalogue": ["cli", "run"], "cli": ["run"], "run": ["cli", "process"],
            "harness": [], "engine": ["cli", "run"], "demo": ["cli"], "host": ["cli", "run"]}
STATIONS = {"audio_engine/core": "contract", "audio_engine/desktop": "desktop", "audio_engine/wave": "desktop",
            "host": "host"}
# Sources that are tested in folders of other names.
ELSEWHERE = {"measures": ["tests/measures", "tests/host/selftest", "tests/host/measure"]}
LEAST_SECONDS = 60  # That a test program may take; a busy machine is no killed mutant.


def test_folders(source):
    """Where the tests of a source are: those of its group, then of what builds on it."""
    parts = pathlib.PurePath(source).parts
    if parts[0] in ELSEWHERE:
        return ELSEWHERE[parts[0]]
    station = next((s for prefix, s in STATIONS.items() if source.startswith(prefix)), None)
    group = next((g for g in reversed(parts[:-1]) if g in BUILT_ON or g in ("aec", "codec", "effects", "mixing")), None)
    if station is None or group is None:
        raise SystemExit(f"mutate: it is not known where the tests of {source} are (scripts/mutation/copy_tree.py)")
    everywhere = ["routines"] if station == "contract" else []
    return [f"tests/{station}/{wanted}" for wanted in [group, *BUILT_ON.get(group, []), *everywhere]]


class CopyTree:
    def __init__(self, root, folder):
        self.folder = folder
        self.build = folder / "build" / "mutate"
        self._inputs = {}
        self._seconds = {}
        folder.mkdir(parents=True, exist_ok=True)
        listed = subprocess.run(["git", "-C", str(root), "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                                check=True, capture_output=True).stdout.decode().split("\0")
        for name in filter(None, listed):
            source, target = root / name, folder / name
            if not source.is_file():
                target.unlink(missing_ok=True)
            elif not target.is_file() or source.read_bytes() != target.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)
        self._call(["cmake", "-S", str(folder), "-B", str(self.build), "-G", "Ninja", "-DBUILD_TESTING=ON",
                    "-DCMAKE_BUILD_TYPE=Release"])
        shown = self._call(["ctest", "--test-dir", str(self.build), "--show-only=json-v1"])
        targets = self._call(["ninja", "-C", str(self.build), "-t", "targets", "all"])
        targets = {line.split(":")[0] for line in targets.split("\n")}
        # A test program of the project has the name of its test.
        tests = {test["name"]: test.get("properties", []) for test in json.loads(shown)["tests"]
                 if test["name"] in targets and "fuzz" not in test["name"]}
        self.programs = list(tests)
        self._realTime = {name for name, properties in tests.items()
                          if any(p["name"] == "LABELS" and "realtime" in p["value"] for p in properties)}

    def _call(self, command):
        done = subprocess.run(command, capture_output=True, text=True)
        if done.returncode != 0:
            raise SystemExit("mutate: " + " ".join(command) + "\n" + done.stdout[-3000:] + done.stderr[-3000:])
        return done.stdout

    def _sources_of(self, program):
        """What a program is built from under tests/, objects among it."""
        if program not in self._inputs:
            lines = self._call(["ninja", "-C", str(self.build), "-t", "inputs", program]).split("\n")
            names = {os.path.relpath(line, self.folder) if os.path.isabs(line) else line for line in lines}
            self._inputs[program] = {pathlib.PurePath(n) for n in names if n.startswith("tests/")}
        return self._inputs[program]

    def _tests_of(self, program):
        """The folders under tests/ that the sources of a program stand in."""
        return {str(source.parent) for source in self._sources_of(program)}

    def covering(self, source):
        """Names of the tests that exercise a source: those of its group, then of what builds on it.

        The test of the same name as the source stands first, because it is the likeliest to notice,
        and tests in real time stand last, because they take longest.
        """
        names = []
        for folder in test_folders(source):
            for name in self.programs:
                if name not in names and any(f == folder or f.startswith(folder + "/") for f in self._tests_of(name)):
                    names.append(name)
        namesake = pathlib.PurePath(source).stem + "_test.cc"
        return sorted(names, key=lambda name: (
            name in self._realTime, all(place.name != namesake for place in self._sources_of(name))))

    def compile(self, names):
        """Builds the programs of these tests and what they start; whether that worked."""
        return self._builds(names)

    def compile_alone(self, source):
        """Compiles one source, linking nothing; whether that worked. A header is not compiled."""
        return not source.endswith(".cc") or self._builds([f"{self.folder / source}^"])

    def _builds(self, targets):
        return subprocess.run(["ninja", "-C", str(self.build), *targets],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0

    def fails(self, name, case=None):
        """How a test fails, be it that it takes ten times as long as it took at first; else empty."""
        command = ["ctest", "--test-dir", str(self.build), "-R", f"^{name}$"]
        environment = dict(os.environ, **({"GTEST_FILTER": case} if case else {}))
        environment.setdefault("GTEST_FAIL_FAST", "1")
        most = max(LEAST_SECONDS, 10 * self._seconds.get(name, 100))
        start = time.monotonic()
        with subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              start_new_session=True) as process:
            try:
                failed = process.wait(most) != 0
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                return "took too long"
        if case is None and not failed:
            self._seconds.setdefault(name, time.monotonic() - start)
        return "failed" if failed else ""

    def code_of(self, source):
        """The machine code that stands for a source at the moment; empty for a header."""
        objects = list(self.build.rglob(pathlib.PurePath(source).name + ".o"))
        code = b""
        for place in sorted(o for o in objects if str(pathlib.PurePath(source).parent.name) in str(o)):
            dump = subprocess.run(["objdump", "-d", "-s", "--no-show-raw-insn", str(place)], capture_output=True).stdout
            code += dump[dump.find(b"\n\n"):]
        return code
