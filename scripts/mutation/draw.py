"""Mutants drawn by chance from the code lines of sources, one table row each."""

import pathlib
import random

from mutation import operators
from mutation.copy_tree import CopyTree

KILLED, SURVIVED, INVALID, EQUAL = "killed", "survived", "does not compile", "same code"


def choices(root, sources, seed):
    """All lines in a drawn order, each with one operator drawn for it: (source, number, what, new line)."""
    lines = [(source, number, found) for source in sources
             for number, found in operators.mutable_lines(root / source)]
    chance = random.Random(seed)
    chance.shuffle(lines)
    return [(source, number, *chance.choice(found)) for source, number, found in lines]


def read_table(table):
    """The rows of an earlier call: {(source, line, what): result}."""
    rows = {}
    if table.is_file():
        for line in table.read_text(encoding="utf-8").split("\n")[1:]:
            fields = line.split("\t")
            if len(fields) == 6:
                rows[(fields[0], fields[1], fields[2])] = fields[3]
    return rows


def judge(tree, source, number, new):
    """Breaks one line in the copy, and says what became of it and which test noticed."""
    names = tree.covering(source)
    if not names:
        return SURVIVED, "no test covers it"
    path = tree.folder / source
    whole = path.read_text(encoding="utf-8")
    if not tree.compile_alone(source):
        raise SystemExit(f"mutate: {source} cannot be compiled unbroken")
    before = tree.code_of(source)
    lines = whole.split("\n")
    lines[number] = new
    try:
        path.write_text("\n".join(lines), encoding="utf-8")
        if not tree.compile_alone(source):
            return INVALID, ""
        if before and tree.code_of(source) == before:
            return EQUAL, ""
        # One program after the other: most mutants never reach the second one.
        for name in names:
            if not tree.compile([name]):
                return INVALID, ""
            if how := tree.fails(name):
                return KILLED, name if how == "failed" else f"{name} {how}"
        return SURVIVED, ""
    finally:
        path.write_text(whole, encoding="utf-8")


def unbroken(tree, sources):
    """Sees all tests of the sources pass, so that a failure later is the mutant's."""
    names = sorted({name for source in sources for name in tree.covering(source)})
    if not tree.compile(names):
        raise SystemExit("mutate: the unbroken tree cannot be built")
    red = [name for name in names if tree.fails(name)]
    if red:
        raise SystemExit("mutate: red without a mutant: " + ", ".join(red))


def run(root, sources, count, seed, table):
    drawn = choices(root, sources, seed)
    rows = read_table(table)
    table.parent.mkdir(parents=True, exist_ok=True)
    tree = CopyTree(root, root / "build" / "mutate" / "tree")
    unbroken(tree, {source for source, *_ in drawn[:4 * count]})
    if not rows:
        table.write_text("source\tline\toperator\tresult\ttest\tnew line\n", encoding="utf-8")
    counted = {KILLED: 0, SURVIVED: 0}
    for source, number, what, new in drawn:
        if sum(counted.values()) >= count:
            break
        key = (source, str(number + 1), what)
        if key not in rows:
            rows[key], test = judge(tree, source, number, new)
            with table.open("a", encoding="utf-8") as out:
                out.write("\t".join([*key, rows[key], test, new.strip()]) + "\n")
            print(f"{rows[key]:16} {source}:{number + 1}  {what}  {test}", flush=True)
        if rows[key] in counted:
            counted[rows[key]] += 1
    print(f"{counted[KILLED]} of {sum(counted.values())} killed, seed {seed}: {pathlib.Path(table)}")
    return 0
