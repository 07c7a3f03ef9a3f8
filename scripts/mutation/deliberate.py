"""The deliberate oddities of the routines: each has a patch that mends it and a test that then fails.

tests/deliberate/<group>.txt holds blocks that blank lines part:

    file: audio_engine/core/bench/aec/echo_delay.cc
    - the line, or lines, as they stand
    + what a reader who takes the oddity for a mistake would write; further pairs may follow
    test: contract_aec_test EchoDelay.FeedsTheHeader

A block with `none: REASON` in place of lines and test says why nothing can notice. A file has as
many blocks as it has comments that begin with "Deliberate:".
"""

import collections
import sys

from mutation.copy_tree import CopyTree


def lines(texts):
    return "".join(text + "\n" for text in texts)


class Oddity:
    def __init__(self, place):
        self.place = place  # "aec.txt:12", for messages.
        self.file = self.program = self.case = self.none = ""
        self.hunks = []  # Pairs of lists of lines: as they stand, as they are mended.

    def fault(self, root):
        """What is wrong with the block itself; empty when it can be tried."""
        path = root / self.file
        if not self.file or not path.is_file():
            return f"{self.place}: no such file: {self.file!r}"
        if self.none:
            return ""
        if not self.hunks or not self.case:
            return f"{self.place}: a block has lines and a test, or says none"
        text = path.read_text(encoding="utf-8")
        for old, _ in self.hunks:
            if (times := text.count(lines(old))) != 1:
                return f"{self.place}: its lines stand {times} times in {self.file}"
        return ""

    def mend(self, text):
        for old, new in self.hunks:
            text = text.replace(lines(old), lines(new), 1)
        return text


def read_lists(folder):
    oddities = []
    for path in sorted(folder.glob("*.txt")):
        current = None
        for number, line in enumerate(path.read_text(encoding="utf-8").split("\n"), 1):
            if line.startswith("file: "):
                current = Oddity(f"{path.name}:{number}")
                current.file = line[len("file: "):]
                oddities.append(current)
            elif line.startswith("- ") or line == "-":
                if not current.hunks or current.hunks[-1][1]:
                    current.hunks.append(([], []))
                current.hunks[-1][0].append(line[2:])
            elif line.startswith("+ ") or line == "+":
                current.hunks[-1][1].append(line[2:])
            elif line.startswith("test: "):
                current.program, current.case = line[len("test: "):].split(" ", 1)
            elif line.startswith("none: "):
                current.none = line[len("none: "):]
            elif line.strip():
                raise SystemExit(f"mutate: {path.name}:{number}: not a line of a block: {line}")
    return oddities


def faults(root, oddities):
    """What is wrong with the lists as a whole."""
    found = [fault for oddity in oddities if (fault := oddity.fault(root))]
    listed = collections.Counter(oddity.file for oddity in oddities)
    for path in sorted((root / "audio_engine").rglob("*.*")):
        if path.suffix not in (".cc", ".h"):
            continue
        name = path.relative_to(root).as_posix()
        count = path.read_text(encoding="utf-8").count("// Deliberate:")
        if listed[name] != count:
            found.append(f"{name}: {count} deliberate oddities, {listed[name]} in the lists")
    return found


def survives(tree, oddity):
    """Whether the mended oddity is noticed by nobody; a text that says how it ended otherwise."""
    path = tree.folder / oddity.file
    whole = path.read_text(encoding="utf-8")
    try:
        path.write_text(oddity.mend(whole), encoding="utf-8")
        if not tree.compile([oddity.program]):
            return "does not compile"
        return "killed" if tree.fails(oddity.program, oddity.case) else "survived"
    finally:
        path.write_text(whole, encoding="utf-8")


def run(root, files, check_only):
    oddities = read_lists(root / "tests" / "deliberate")
    wrong = faults(root, oddities)
    for line in wrong:
        print("mutate: " + line, file=sys.stderr)
    if wrong or check_only:
        print(f"{len(oddities)} deliberate oddities, {sum(bool(o.none) for o in oddities)} without a test")
        return 1 if wrong else 0
    tree = CopyTree(root, root / "build" / "mutate" / "tree")
    alive = 0
    for oddity in oddities:
        if oddity.none or (files and oddity.file not in files):
            continue
        if not tree.compile([oddity.program]) or tree.fails(oddity.program, oddity.case):
            result = "red before it is mended"
        else:
            result = survives(tree, oddity)
        alive += result != "killed"
        print(f"{result:24} {oddity.place}  {oddity.file}  {oddity.case}", flush=True)
    print(f"{alive} not noticed")
    return 1 if alive else 0
