#!/usr/bin/python3
"""Writes the pages of the reference that other files say everything of: the records with their sizes, the examples.

    pages.py kelvarissdk-abi.json FOLDER
"""

from __future__ import annotations

import json
import re
import sys
from itertools import takewhile
from pathlib import Path

HERE = Path(__file__).resolve().parent
SOURCE = HERE.parents[1]
INCLUDE = SOURCE / "sdklibrary/include/kelvarissdk"
EXAMPLES = SOURCE / "examples"

# The headers in the order of the families, each with its group.
GROUPS = {
    "csdkinterface": "c_core",
    "types": "c_types",
    "session": "c_session",
    "settings": "c_settings",
    "adapters": "c_adapters",
    "lists": "c_lists",
    "telemetry": "c_telemetry",
    "safebrowsing": "c_safebrowsing",
}
CHAPTERS = {"": "C, and bindings without a layer", "cpp": "C++ layer", "python": "Python layer"}


def sizes() -> dict[str, tuple[int, int]]:
    """The sizes of the records where pointers and `long` have 64 bits, and where they have 32.

    They are the same in every package, so those of the machine that builds don't do."""
    table = {}
    for line in (SOURCE / "tests/golden/records.txt").read_text().splitlines():
        if found := re.fullmatch(r"(\w+) (\d+)(?:\|(\d+))?", line):
            table["KelvarisSDK_" + found[1]] = (int(found[2]), int(found[3] or found[2]))
    return table


def check(table: dict[str, tuple[int, int]], description: Path) -> None:
    """Ends the build when the compiler or the header's own table says otherwise."""
    abi = json.loads(description.read_text())
    stated = re.findall(r"(KelvarisSDK_\w+) +(\d+)\b", (INCLUDE / "csdkinterface.h").read_text())
    assert len(stated) > 20, "the table of sizes in csdkinterface.h isn't found"
    wrong = [name for name, size in stated if table[name][0] != int(size)]
    if abi["longSize"] == 8:
        seen = {name: record["size"] for name, record in abi["records"].items() if name in table}
        wrong += [name for name in table if seen.get(name) != table[name][0]]
    if wrong:
        sys.exit(f"pages.py: other sizes in the headers or the compiler's view of {wrong}")


def row(name: str, size: tuple[int, int]) -> str:
    """A record's row of a table."""
    wide, narrow = size
    return f"| {name} | {wide}{f' or {narrow}' if narrow != wide else ''} |\n"


def results(table: dict[str, tuple[int, int]]) -> str:
    """The table of the front page: what calls return, by size."""
    names = sorted((name for name in table if name.endswith("Result")), key=lambda name: table[name])
    return "| Record | Bytes |\n|---|---:|\n" + "".join(row(name, table[name]) for name in names)


def records(table: dict[str, tuple[int, int]]) -> str:
    """The page of the records, by families."""
    text = (
        "# Records {#records}\n\n"
        "The records of the C interface, with their sizes in bytes. A call that waits needs that much stack for its record"
        " and up to 4 KiB more; a callback gets its record by value. Where one size is given, it is the same on all"
        " machines; of two, the first holds where `long` has 64 bits, the second where it has 32. On 32-bit x86,"
        " where numbers of 64 bits stand at multiples of 4, some are smaller. `kelvarissdk-abi.json` has those of"
        " the machine that it is installed on, and the place of every field.\n\n"
    )
    titles = dict(re.findall(r"@defgroup (\w+) (.*)", (HERE / "groups.dox").read_text()))
    for header, group in GROUPS.items():
        names = re.findall(r"^typedef struct (\w+) {", (INCLUDE / f"{header}.h").read_text(), re.M)
        text += f"## {titles[group]} {{#records_{header}}}\n\n| Record | Bytes |\n|---|---:|\n"
        for name in names:
            text += row(name, table[name])
        text += "\n"
    return text


def head(path: Path) -> list[str]:
    """What an example says of itself on top, in paragraphs."""
    text = path.read_text()
    if text.startswith('"""'):
        text = text[3 : text.index('"""', 3)]
    elif text.startswith("/*"):
        text = re.sub(r"^ \* ?", "", text[3 : text.index(" */")], flags=re.M)
    else:
        comment = takewhile(lambda line: line.startswith("//"), text.splitlines())
        text = "\n".join(line[2:].removeprefix(" ") for line in comment)
    return text.strip("\n").split("\n\n")


def examples() -> str:
    """The page that lists the examples, and one for each."""
    text = "/** @page programs Example programs\n\nThe package libkelvarissdk-dev has them in"
    text += " /usr/share/doc/libkelvarissdk-dev/examples, with a CMake project that builds them.\n"
    pages = ""
    for folder, title in CHAPTERS.items():
        text += f"\n@section programs_{folder or 'c'} {title}\n\n"
        for path in sorted((EXAMPLES / folder).glob("*.*")):
            if path.name == "CMakeLists.txt":
                continue
            name = str(path.relative_to(EXAMPLES))
            what, *rest = head(path)
            what = " ".join(what.split())
            text += f'- @ref {name} "{name}": {what}\n'
            commands = "\n".join(line.strip() for part in rest for line in part.splitlines())
            pages += f"/** @example {name}\n@details {what}\n\n@verbatim\n{commands}\n@endverbatim\n*/\n"
    return f"{text}*/\n{pages}"


def main() -> None:
    description, folder = map(Path, sys.argv[1:])
    table = sizes()
    check(table, description)
    (folder / "records.md").write_text(records(table))
    (folder / "sizes.txt").write_text(results(table))
    (folder / "examples.dox").write_text(examples())


if __name__ == "__main__":
    main()
