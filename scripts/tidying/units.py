"""Which sources can be compiled behind each other, and under which names."""

import re
import subprocess
from pathlib import Path

# A class all of whose functions stand in one unit may still have fields for others.
FLAGS = ['-Wno-unused-private-field', '-ferror-limit=0']
MOST_SOURCES = 60
MOST_LINES = 7500
# What is compiled several times from one source cannot stand behind another.
ALONE = re.compile(r'foreach_target\.h|^#undef|^#define', re.MULTILINE)
DEFINED = [
    re.compile(r'^(?:inline )?(?:template <.*> ?)?(?:struct|class|union|enum(?: class)?) (\w+)', re.M),
    re.compile(r'^(?=\w)(?:extern "C" )?(?:[\w:<>,&*\[\] ]+?[ &*])(\w+)\(', re.M),
    re.compile(r'^(?:inline |static |thread_local |constexpr |constinit |const )+.*?\b(\w+)(?:\[.*?\])*(?: =|\{|;)', re.M),
    re.compile(r'^(?=\w)(?!namespace |class |struct |using )(?:[\w:<>,&* ]+?[ &*>])([A-Za-z_]\w*)(?:\[.*?\])?(?: = | ?\{|;)', re.M),
    re.compile(r'^using (\w+) =', re.M),
]
# Names of elsewhere, which several sources may take up.
TAKEN_UP = re.compile(r'^using (?:\w+::)+(\w+);', re.M)
# Words that stand where a name does in the forms above, and what is told apart by its arguments.
NO_NAMES = {'PrintTo', 'TEST', 'TEST_F', 'TEST_P', 'TYPED_TEST', 'INSTANTIATE_TEST_SUITE_P', 'namespace', 'return'}
UNNAMED = re.compile(r'^namespace \{$.*?^\}  // namespace$', re.M | re.S)
FUZZ_TARGET = re.compile(r'^extern "C" int LLVMFuzzerTestOneInput', re.M)
# Names that mean something elsewhere as well: a test is told by that of its fixture.
SHARED = re.compile(r'(?:\b(?:TYPED_)?TEST(?:_F|_P|_SUITE)?\(|\.|->|::)(\w+)')


def config_of(folder, known={}):
    """How clang-tidy is set up for the sources of a folder."""
    if folder not in known:
        known[folder] = subprocess.run(['clang-tidy-14', '--dump-config', str(folder / 'source.cc')],
                                       capture_output=True, text=True, check=True).stdout
    return known[folder]


def names(text):
    """What a source defines, and what it takes up from elsewhere."""
    found = {name for form in DEFINED for name in form.findall(text)}
    return set(filter(str.isidentifier, found)) - NO_NAMES, set(TAKEN_UP.findall(text))


def leading_includes(source, text):
    """The headers at a source's head, as a file in another folder includes them."""
    found = []
    for line in text.splitlines():
        if line and not line.startswith(('#include ', '//')):
            break
        beside = re.match(r'#include "(.*)"', line)
        if beside and (source.parent / beside[1]).exists():
            line = f'#include "{source.parent / beside[1]}"'
        if line.startswith('#include'):
            found.append(line)
    return found


class Source:
    """A source, and what of it decides which others can stand in its unit."""

    count = 0

    def __init__(self, path, how):
        Source.count += 1
        self.path, self.text, self.number = path, path.read_text(), Source.count
        self.macros, self.folders, rest = how
        self.alike = (config_of(path.parent), rest)
        self.alone = bool(ALONE.search(self.text))
        self.lines = self.text.count('\n') + 1
        defined, self.taken = names(self.text)
        # Of a fuzz target there is one in a program: beside others it is read, not compiled.
        self.compiled = not FUZZ_TARGET.search(self.text)
        mine = UNNAMED.findall(self.text) if self.compiled else [self.text]
        unnamed = {name for part in mine for name in names(part)[0]}
        self.own = unnamed & defined - set(SHARED.findall(self.text))
        self.defined = defined - self.own
        self.includes = leading_includes(path, self.text)
        self.headers = {Path(line.split('"')[1]).name for line in self.includes if '"' in line}

    def keep_names(self):
        self.defined |= self.own
        self.own = set()

    def renamed(self, name):
        return f'{name}_of_{self.number}'

    def renamed_text(self):
        """The text with names of its own."""
        if not self.own:
            return self.text
        found = re.compile(rf'\b(?:{"|".join(sorted(self.own))})\b')
        return found.sub(lambda name: self.renamed(name[0]), self.text)

    def included(self):
        """What a unit of the build says to have this source with names of its own."""
        names = sorted(self.own)
        return [*(f'#define {name} {self.renamed(name)}' for name in names), f'#include "{self.path}"',
                *(f'#undef {name}' for name in names)]


class Unit:
    """Sources that can be compiled as one, and how."""

    def __init__(self, alike):
        self.alike = alike
        self.config, self.rest = alike
        self.sources, self.lines, self.open = [], 0, True
        self.defined, self.taken = set(), set()
        self.macros, self.folders = {}, {}

    def takes(self, source):
        return (self.open and not source.alone and self.alike == source.alike
                and len(self.sources) < MOST_SOURCES and self.lines + source.lines <= MOST_LINES
                and not self.defined & (source.defined | source.taken)
                and not self.taken & source.defined
                and all(self.macros.get(name, word) == word for name, word in source.macros.items()))

    def add(self, source):
        self.sources.append(source)
        self.lines += source.lines
        self.open = not source.alone
        self.defined |= source.defined
        self.taken |= source.taken
        self.macros |= source.macros
        self.folders |= dict.fromkeys(source.folders)

    def without(self, sources):
        return [source for source in self.sources if source not in sources]

    def flags(self):
        beside = sorted({source.path.parent for source in self.sources})
        return [*self.macros.values(), *(word for folder in self.folders for word in folder),
                *(f'-iquote{folder}' for folder in beside), *self.rest, *FLAGS]


def alone(source):
    unit = Unit(source.alike)
    unit.add(source)
    return unit


def units(sources):
    """These sources in as few units as take them, the longest first."""
    made = []
    for source in sources:
        for unit in made:
            if unit.takes(source):
                unit.add(source)
                break
        else:
            made.append(alone(source))
    return sorted(made, key=lambda unit: -unit.lines)
