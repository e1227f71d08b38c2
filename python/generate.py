#!/usr/bin/python3
"""Writes kelvarissdk/_abi.py, the C interface for ctypes, from the C headers to standard output.

The headers go through the C preprocessor and pycparser, a parser of C. What they include of the system is
small and the same everywhere, so that it stands here: the result doesn't depend on the machine.
"""

from __future__ import annotations

import re
import subprocess
import tempfile
from pathlib import Path

from pycparser import c_ast, c_parser

PREFIX = "KelvarisSDK_"
HEADERS = Path(__file__).resolve().parent.parent / "sdklibrary" / "include"
WIDTH = 110

# What the public headers take from the system's. The members of `struct tm` are those of glibc.
SYSTEM_HEADERS = {
    "stdbool.h": "#define bool _Bool\n",
    "stdint.h": "".join(
        f"typedef {unsigned} {kind} {'u' if unsigned else ''}int{bits}_t;\n"
        for unsigned in ("", "unsigned")
        for bits, kind in ((8, "char"), (16, "short"), (32, "int"), (64, "long long"))
    ),
    "time.h": """struct tm {
    int tm_sec, tm_min, tm_hour, tm_mday, tm_mon, tm_year, tm_wday, tm_yday, tm_isdst;
    long tm_gmtoff;
    char const* tm_zone;
};
""",
    "netinet/in.h": """#include <stdint.h>
struct in_addr { uint32_t s_addr; };
struct in6_addr { uint32_t s6_addr32[4]; };
""",
}

# The type of ctypes, and the type that Python sees, for each type of C.
PLAIN = {
    "_Bool": ("c_bool", "bool"),
    "char": ("c_char", "bytes"),
    "unsigned char": ("c_ubyte", "int"),
    "unsigned short": ("c_ushort", "int"),
    "int": ("c_int", "int"),
    "unsigned int": ("c_uint", "int"),
    "long": ("c_long", "int"),
    "long long": ("c_longlong", "int"),
    "unsigned long long": ("c_ulonglong", "int"),
    "float": ("c_float", "float"),
    "double": ("c_double", "float"),
    **{f"{sign}int{bits}_t": (f"c_{sign}int{bits}", "int") for sign in ("", "u") for bits in (8, 16, 32, 64)},
}

TOP = '''"""The C interface for ctypes: enumerations, structures, callback types, prototypes.

Written by generate.py from the C headers; don't edit it. Names are those of the C interface without their
prefix.
"""

from __future__ import annotations

import ctypes
from typing import Any

from ._enumeration import Enumeration
'''

BIND = '''

def bind(library: ctypes.CDLL) -> None:
    """Gives a loaded library's functions their prototypes. AttributeError: it doesn't have one of them."""
    for name, (result, arguments) in FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
'''


def preprocessed(*options: str) -> str:
    """The C headers after the preprocessor."""
    with tempfile.TemporaryDirectory() as folder:
        for name, text in SYSTEM_HEADERS.items():
            header = Path(folder, name)
            header.parent.mkdir(exist_ok=True)
            header.write_text(f"#pragma once\n{text}")
        command = ["gcc", "-E", "-P", "-nostdinc", "-U__GNUC__", "-D__attribute__(words)=", *options]
        command += ["-I", folder, "-I", str(HEADERS), str(HEADERS / "kelvarissdk" / "csdkinterface.h")]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def short(name: str) -> str:
    """A name of the C interface without its prefix."""
    return name.removeprefix(PREFIX)


def documentation() -> dict[str, str]:
    """The first paragraph of the comment on each structure and enumeration of the headers."""
    found = {}
    comment = re.compile(
        r"/\*\*((?:(?!\*/).)*)\*/\s*(?:typedef )?(?:struct|enum) (?:\w+\()?(\w+)[^;{]*\{", re.DOTALL
    )
    for header in sorted((HEADERS / "kelvarissdk").glob("*.h")):
        for text, name in comment.findall(header.read_text()):
            lines = [line.strip().removeprefix("*").strip() for line in text.strip().splitlines()]
            paragraph = " ".join(lines).strip()
            found[name] = re.sub(rf"\b{PREFIX}", "", paragraph)
    return found


def listed(before: str, items: list[str], after: str, indent: int = 0) -> str:
    """A list on one line where it fits, between two lines, or in a line for each item: as black has it."""
    margin = " " * indent
    whole = f"{margin}{before}{', '.join(items)}{after}"
    if len(whole) <= WIDTH and "\n" not in whole:
        return whole + "\n"
    inner = f"{margin}    {', '.join(items)}"
    if len(inner) <= WIDTH:
        return f"{margin}{before}\n{inner}\n{margin}{after}\n"
    lines = "".join(f"{margin}    {item},\n" for item in items)
    return f"{margin}{before}\n{lines}{margin}{after}\n"


class Interface:
    """The declarations of the headers, and the Python that says the same."""

    def __init__(self) -> None:
        self.notes = documentation()
        self.typedefs: dict[str, c_ast.Node] = {}
        self.enumerations: list[c_ast.EnumeratorList] = []
        self.structures: dict[str, list[c_ast.Decl]] = {}
        self.callbacks: dict[str, c_ast.FuncDecl] = {}
        self.functions: dict[str, c_ast.FuncDecl] = {}
        for node in c_parser.CParser().parse(preprocessed()).ext:
            self.take(node)

    def take(self, node: c_ast.Node) -> None:
        """Sorts one declaration in."""
        kind = node.type
        if isinstance(kind, c_ast.FuncDecl):
            self.functions[node.name] = kind
        elif isinstance(kind, c_ast.PtrDecl) and isinstance(kind.type, c_ast.FuncDecl):
            self.callbacks[node.name] = kind.type
        else:
            if isinstance(node, c_ast.Typedef):
                self.typedefs[node.name] = kind
            inner = kind.type if isinstance(kind, c_ast.TypeDecl) else kind
            if isinstance(inner, c_ast.Struct) and inner.decls:
                self.structures[inner.name or node.name] = inner.decls
            elif isinstance(inner, c_ast.Enum) and inner.values:
                self.enumerations.append(inner.values)

    def enumeration_name(self, values: c_ast.EnumeratorList) -> str:
        """The type of an enumeration's values: the longest that the names of all of them begin with."""
        names = [value.name for value in values.enumerators]
        return max(
            (kind for kind in self.typedefs if all(name.startswith(f"{kind}_") for name in names)), key=len
        )

    def plain(self, kind: c_ast.Node) -> tuple[str, str]:
        """The type of ctypes and that of Python for a type that is neither array nor pointer."""
        inner = kind.type
        name = inner.name if isinstance(inner, c_ast.Struct) else " ".join(inner.names)
        if name in PLAIN:
            native, python = PLAIN[name]
            return f"ctypes.{native}", python
        if name in self.structures:
            return short(name), short(name)
        return self.plain(self.typedefs[name])

    def kind(self, kind: c_ast.Node) -> tuple[str, str]:
        """The type of ctypes and that of Python for any type but void."""
        if isinstance(kind, c_ast.TypeDecl):
            if isinstance(kind.type, c_ast.IdentifierType) and kind.type.names[0] in self.callbacks:
                return short(kind.type.names[0]), "Any"
            return self.plain(kind)
        if isinstance(kind, c_ast.ArrayDecl):
            native, _ = self.kind(kind.type)
            length = int(kind.dim.value)
            factor = native if native.isidentifier() or native.startswith("ctypes.") else f"({native})"
            return (
                f"{factor} * {length}",
                "bytes" if native == "ctypes.c_char" else f"ctypes.Array[{self.item(kind.type)}]",
            )
        return self.pointer(kind.type), "Any"

    def item(self, kind: c_ast.Node) -> str:
        """What an array holds, as an annotation."""
        if isinstance(kind, c_ast.ArrayDecl):
            return f"ctypes.Array[{self.item(kind.type)}]"
        return self.kind(kind)[0]

    def pointer(self, target: c_ast.Node) -> str:
        """The type of ctypes for a pointer: a text, something opaque, or a pointer to elements."""
        if isinstance(target, c_ast.TypeDecl):
            name = target.type.name if isinstance(target.type, c_ast.Struct) else target.type.names[0]
            if name == "char":
                return "ctypes.c_char_p"
            if name in ("void", f"{PREFIX}Handle"):
                return "ctypes.c_void_p"
        return f"ctypes.POINTER({self.kind(target)[0]})"

    def returned(self, function: c_ast.FuncDecl) -> str:
        """The type of a function's result."""
        kind = function.type
        nothing = isinstance(kind, c_ast.TypeDecl) and getattr(kind.type, "names", None) == ["void"]
        return "None" if nothing else self.kind(kind)[0]

    def arguments(self, function: c_ast.FuncDecl) -> list[str]:
        """The types of a function's parameters."""
        return [self.kind(parameter.type)[0] for parameter in function.args.params]

    def docstring(self, name: str) -> str:
        """The comment of the headers, as the documentation of a class."""
        note = self.notes.get(name)
        if note is None:
            return ""
        words, lines = note.split(" "), ['    """']
        for word in words:
            if len(lines[-1]) + len(word) + 4 > WIDTH:
                lines.append("   ")
            lines[-1] += word if lines[-1].endswith('"""') else f" {word}"
        return "\n".join(lines) + ('"""\n\n' if len(lines) == 1 else '\n    """\n\n')

    def python_enumeration(self, values: c_ast.EnumeratorList) -> str:
        """An enumeration. One without a value for unknown numbers gets one that the interface doesn't use."""
        name = self.enumeration_name(values)
        text = f"\n\nclass {short(name)}(Enumeration):\n{self.docstring(name)}"
        following, members = 0, {}
        for value in values.enumerators:
            following = int(value.value.value, 0) if value.value else following
            members[value.name.removeprefix(f"{name}_")] = f"{following}"
            following += 1
        if name == f"{PREFIX}ErrorType":
            members["CANCELLED"] = "4096"  # of the public layer
        members.setdefault("UNKNOWN", "0xFFFFFFFF")
        return text + "".join(f"    {member} = {number}\n" for member, number in members.items())

    def python_structure(self, name: str) -> str:
        """A structure, with annotations for who reads its fields."""
        text = f"\n\nclass {short(name)}(ctypes.Structure):\n{self.docstring(name)}"
        types = {field.name: self.kind(field.type) for field in self.structures[name]}
        text += "".join(f"    {field}: {python}\n" for field, (_, python) in types.items())
        fields = "".join(f'        ("{field}", {native}),\n' for field, (native, _) in types.items())
        return f"{text}    _fields_ = [\n{fields}    ]\n"

    def python_functions(self) -> str:
        """The table of prototypes."""
        text = "\n# The type of the result and those of the arguments.\n"
        text += "FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {\n"
        for name, function in sorted(self.functions.items()):
            result, arguments = self.returned(function), self.arguments(function)
            line = f'    "{name}": ({result}, [{", ".join(arguments)}]),\n'
            if len(line) > WIDTH + 1:
                line = f'    "{name}": (\n        {result},\n{listed("[", arguments, "],", 8)}    ),\n'
            text += line
        return text + "}\n"

    def module(self) -> str:
        """The whole module."""
        numbers = re.findall(
            r"^#define KELVARISSDK_(VERSION_[A-Z]+) (\d+)$", preprocessed("-dM"), re.MULTILINE
        )
        text = TOP + "\n# The version of the headers.\n"
        text += "".join(f"{name} = {number}\n" for name, number in sorted(numbers))
        text += "".join(map(self.python_enumeration, self.enumerations))
        text += "".join(map(self.python_structure, self.structures))
        text += "\n\n# Who makes one keeps it while the library may call it. Made without an argument it is null.\n"
        for name, function in self.callbacks.items():
            arguments = [self.returned(function), *self.arguments(function)]
            text += listed(f"{short(name)} = ctypes.CFUNCTYPE(", arguments, ")")
        return text + self.python_functions() + BIND


if __name__ == "__main__":
    print(Interface().module(), end="")
