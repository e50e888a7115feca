"""The pages that people read, with their links, anchors and blocks of code; and the names that the module has."""

import os
import re
import sys
import textwrap
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FAULTY = "faulty.md"  # wrong on purpose, see check-faults
PAGES_INSTEAD = "TARN_DOCS_PAGE"  # names one page that is checked in place of all
PLACES = ["*.md", "docs/**/*.md", "samples/**/*.md", "tests/**/*.md", "src/**/*.md", "package/**/*.md"]
FENCE = re.compile(r"^( *)(```+)([^\n`]*)\n(.*?)^ *\2 *$", re.M | re.S)
INLINE = re.compile(r"(?<!`)`([^`\n]+)`(?!`)")

sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "script/lib/reference"))
from model import Model  # noqa: E402 (the place has to be known first)


@dataclass
class Block:
    page: Path
    line: int
    language: str
    marks: list  # further words behind the language
    text: str

    @property
    def place(self):
        return f"{self.page.relative_to(ROOT)}:{self.line}"


def list_pages():
    if PAGES_INSTEAD in os.environ:
        return [Path(os.environ[PAGES_INSTEAD]).resolve()]
    return sorted({page for place in PLACES for page in ROOT.glob(place)
                   if page.name != FAULTY})


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def blocks_of(page):
    text = page.read_text(encoding="utf-8")
    for found in FENCE.finditer(text):
        words = found.group(3).split()
        yield Block(page, line_of(text, found.start()) + 1, words[0] if words else "", words[1:],
                    textwrap.dedent(found.group(4)))


def all_blocks(*languages):
    return [block for page in list_pages() for block in blocks_of(page) if block.language in languages]


def prose_of(page):
    """The page without its blocks of code; lines stay where they are."""
    text = page.read_text(encoding="utf-8")
    return FENCE.sub(lambda found: "\n" * found.group(0).count("\n"), text)


def slug(heading):
    """The anchor that repository browsers and Sphinx make of a heading."""
    plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "")
    return re.sub(r"[^\w\- ]", "", plain.strip().lower()).replace(" ", "-")


def anchors_of(page):
    anchors, seen = set(), {}
    for heading in re.findall(r"^#{1,6} +(.*?)\s*#*$", prose_of(page), re.M):
        name = slug(heading)
        count = seen.get(name, 0)
        seen[name] = count + 1
        anchors.add(f"{name}-{count}" if count else name)
    return anchors


def finish(problems, done):
    """Prints what is wrong and gives the result of the check."""
    for problem in problems:
        print(problem)
    print(f"{done}, {len(problems)} to be put right")
    return 1 if problems else 0


def model():
    return Model()
