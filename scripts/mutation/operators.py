"""What can be broken in a line of C++: each operator makes other lines of one."""

import re
import subprocess

SWAPS = {
    "<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="],
}
# Only with blanks on both sides is an operator surely no template bracket, pointer or sign.
BINARY = re.compile(r"(?<= )(" + "|".join(re.escape(o) for o in sorted(SWAPS, key=len, reverse=True)) + r")(?= )")
NUMBER = re.compile(r"(?<![\w.\"])(\d+\.\d+|\d+)(?=[uUlLfF]*\b)(?![\w.]*\")")
WORD = {"true": "false", "false": "true", "min": "max", "max": "min", "break": "continue",
        "floor": "ceil", "ceil": "floor"}
STATEMENT = re.compile(r"^\s*(?!return\b|using\b|const\b|static\b|constexpr\b|struct\b|class\b|break\b|"
                       r"continue\b|case\b|default\b|namespace\b|public\b|private\b|extern\b|friend\b|typedef\b)"
                       r"[\w:>.\-\[\]()*+ ]+(\(.*\)|\s[-+*/|&]?=\s.*|\+\+|--);\s*(//.*)?$")
DECLARATION = re.compile(r"^\s*[\w:<>,*& ]+\s[*&]?\w+(\(.*\)|\{.*\}|\s=\s.*)?;")
CALL = re.compile(r"(\w+)\(([\w.\[\]>-]+), ([\w.\[\]>-]+)([,)])")
STRING = re.compile(r'"([A-Za-z%][^"\\]*)"')
NOT_CODE = re.compile(r"^\s*(//|#|/?\*|namespace\b|using\b|template\b|static_assert|public:|private:|protected:|"
                      r"class \w+;|struct \w+;|ROUTINE\(|HELPER\(|[{}()\[\]; ]*$)")


def sources(root, paths):
    """The tracked sources (.cc, .h) of the paths, relative to the root, in order."""
    listed = subprocess.run(["git", "-C", str(root), "ls-files", "--", *paths],
                            check=True, capture_output=True, text=True).stdout.split("\n")
    return [name for name in listed if name.endswith((".cc", ".h"))]


def outside_strings(line, start):
    """Whether this place of a line is neither in a string nor in a comment."""
    head = re.sub(r'\\.', "__", line[:start])
    return head.count('"') % 2 == 0 and "//" not in re.sub(r'"[^"]*"', "", head)


def mutants(line):
    """All lines that one operator makes of a line: pairs of what was done and the new line."""
    if NOT_CODE.match(line):
        return []
    found = []

    def put(what, start, end, text):
        new = line[:start] + text + line[end:]
        if new != line:
            found.append((what, new))

    for match in BINARY.finditer(line):
        if outside_strings(line, match.start()):
            for other in SWAPS[match.group()]:
                put(f"{match.group()} to {other}", match.start(), match.end(), other)
    for match in NUMBER.finditer(line):
        if not outside_strings(line, match.start()):
            continue
        text = match.group(1)
        other = str(float(text) * 2) if "." in text else str(int(text) + 1)
        put(f"{text} to {other}", match.start(1), match.end(1), other)
        if "." not in text and int(text) > 0:
            put(f"{text} to {int(text) - 1}", match.start(1), match.end(1), str(int(text) - 1))
    for match in re.finditer(r"\b(" + "|".join(WORD) + r")\b", line):
        if outside_strings(line, match.start()):
            put(f"{match.group()} to {WORD[match.group()]}", match.start(), match.end(), WORD[match.group()])
    for match in re.finditer(r"!(?=[\w(])", line):
        if outside_strings(line, match.start()):
            put("no !", match.start(), match.end(), "")
    for match in re.finditer(r"\bif \(", line):
        if line.rstrip().endswith((";", "{")) and " else " not in line:
            put("if to if not", match.end(), len(line), negated(line[match.end():]))
    for match in CALL.finditer(line):
        if outside_strings(line, match.start()) and match.group(2) != match.group(3):
            put("arguments swapped", match.start(2), match.end(3), f"{match.group(3)}, {match.group(2)}")
    for match in STRING.finditer(line):
        if not line.lstrip().startswith("#"):
            put("string changed", match.start(1), match.start(1), "X")
    if STATEMENT.match(line) and not DECLARATION.match(line):
        put("statement dropped", len(line) - len(line.lstrip()), len(line.rstrip("\n")), ";")
    return found


def negated(rest):
    """The rest of a line behind `if (` with the condition negated, where it ends on this line."""
    depth = 1
    for place, letter in enumerate(rest):
        depth += (letter == "(") - (letter == ")")
        if depth == 0:
            condition = rest[:place]
            plain = ";" not in condition and not re.match(r"\s*(const )?[\w:<>]+[*&]* (const )?\w+ = ", condition)
            return f"!({condition}){rest[place:]}" if plain else rest
    return rest


def mutable_lines(path):
    """Line numbers (from 0) of a file on which some operator does something, and what they can."""
    lines = path.read_text(encoding="utf-8").split("\n")
    return [(number, found) for number, line in enumerate(lines) if (found := mutants(line))]
