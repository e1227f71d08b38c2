#!/usr/bin/python3
"""Writes the reference of the Python layer, pages of Markdown, from the modules' documentation.

    reference.py FOLDER
"""

from __future__ import annotations

import ast
import inspect
import re
import sys
import textwrap
from collections.abc import Iterator
from pathlib import Path

PACKAGE = Path(__file__).resolve().parent / "kelvarissdk"

# The modules and what they are about, in the order of the pages.
CHAPTERS = {
    "_client": "The client that waits",
    "_aio": "The client for asyncio",
    "_link": "The link",
    "types": "First calls",
    "session": "Account and session",
    "settings": "Settings",
    "adapters": "Adapters",
    "lists": "Lists",
    "telemetry": "Telemetry",
    "safebrowsing": "Safe browsing",
    "errors": "Errors",
}


def parsed(module: str) -> ast.Module:
    """A module of the package."""
    return ast.parse((PACKAGE / f"{module}.py").read_text())


def exported(module: str) -> list[str]:
    """The names that `__all__` has, or else the public classes."""
    body = parsed(module).body
    for node in body:
        if isinstance(node, ast.Assign) and ast.unparse(node.targets[0]) == "__all__":
            return list(ast.literal_eval(node.value))
    return [node.name for node in body if isinstance(node, ast.ClassDef) and node.name[0] != "_"]


def public_names() -> set[str]:
    """What the package offers: the names that it imports, and all those of the modules that it imports whole."""
    names = set()
    for node in parsed("__init__").body:
        if isinstance(node, ast.ImportFrom) and node.module:
            taken = {alias.name for alias in node.names}
            names |= set(exported(node.module)) if "*" in taken else taken
    return names


def plain_types() -> dict[str, str]:
    """The types behind the names that tell the converter a unit or what means "none"."""
    return {
        ast.unparse(node.target): ast.unparse(node.value.slice.elts[0])
        for node in parsed("_values").body
        if isinstance(node, ast.AnnAssign)
        and isinstance(node.value, ast.Subscript)
        and isinstance(node.value.slice, ast.Tuple)
    }


def attributes(body: list[ast.stmt]) -> Iterator[str]:
    """The fields of a class or the members of an enumeration, each with the text behind it."""
    for node, following in zip(body, [*body[1:], None]):
        if isinstance(node, ast.AnnAssign):
            kind = ast.unparse(node.annotation)
            node.annotation = ast.parse(PLAIN_TYPES.get(kind, kind), mode="eval").body
        member = isinstance(node, ast.Assign) and isinstance(node.value, ast.Constant)
        shown = ast.unparse(node)
        if (member or isinstance(node, ast.AnnAssign)) and shown[0] != "_":
            note = ""
            if isinstance(following, ast.Expr) and isinstance(following.value, ast.Constant):
                note = ": " + " ".join(inspect.cleandoc(str(following.value.value)).split())
            yield f"- `{shown}`{note}\n"


def methods(body: list[ast.stmt]) -> Iterator[str]:
    """The calls and other methods. A subscription stands below the call that it begins with."""
    for node in body:
        if isinstance(node, (ast.FunctionDef, ast.AsyncFunctionDef)) and node.name[0] != "_":
            decorators = {ast.unparse(each).split("(")[0] for each in node.decorator_list}
            node.args.args = node.args.args[1:]
            arguments = "" if "property" in decorators else f"({ast.unparse(node.args)})"
            result = f" -> {ast.unparse(node.returns)}" if node.returns else ""
            kind = "Subscription: " if "listener" in decorators else ""
            start = "await " if isinstance(node, ast.AsyncFunctionDef) else ""
            note = textwrap.indent(ast.get_docstring(node) or "", "  ")
            yield f"- {kind}`{start}{node.name}{arguments}{result}`\n\n{note}\n\n"
        elif isinstance(node, ast.Assign) and ast.unparse(node.value).startswith("stream("):
            yield f"- Subscription: `{ast.unparse(node.targets[0])}()`\n\n"


def class_text(node: ast.ClassDef) -> str:
    """A class with its documentation, its fields and its methods."""
    fields = "".join(attributes(node.body))
    bases = [ast.unparse(base) for base in node.bases]
    kind = f", an exception ({', '.join(bases)})" if node.name.endswith("Error") else ""
    text = f"## {node.name}{kind} {{#python_{node.name}}}\n\n{ast.get_docstring(node) or ''}\n\n{fields}\n"
    return text + "".join(methods(node.body))


def front_page() -> str:
    """The package's documentation, with titles and the titles of its numbered list standing out, and the chapters."""
    text = (ast.get_docstring(parsed("__init__")) or "").replace("\nCONVENTIONS\n", "\n## Conventions\n")
    text = re.sub(r"^(\d+\. )([A-Z][^.,;`]{3,40}\.) ", r"\1**\2** ", text, flags=re.M)
    chapters = "".join(f"- @subpage python_{module.strip('_')}\n" for module in CHAPTERS)
    return f"# Python layer {{#python}}\n\n{text}\n\n## All of it\n\n{chapters}"


def chapter(module: str, title: str, public: set[str], enumerations: dict[str, ast.ClassDef]) -> str:
    """A module's page: its documentation, then its classes and the enumerations that it takes over."""
    tree = parsed(module)
    text = f"# {title} {{#python_{module.strip('_')}}}\n\n"
    if module[0] != "_":
        text += f"{ast.get_docstring(tree)}\n\n"
    own = {node.name: node for node in tree.body if isinstance(node, ast.ClassDef)}
    taken = [enumerations[name] for name in exported(module) if name in enumerations and name not in own]
    calls = {f"{module.capitalize()}Calls", "SafeBrowsingCalls", "FirstCalls"}
    return text + "".join(class_text(node) for node in [*taken, *own.values()] if node.name in public | calls)


def main() -> None:
    """Writes a page for the package and one for each module."""
    folder = Path(sys.argv[1])
    public = public_names()
    enumerations = {node.name: node for node in parsed("_abi").body if isinstance(node, ast.ClassDef)}
    (folder / "python.md").write_text(front_page())
    for module, title in CHAPTERS.items():
        text = chapter(module, title, public, enumerations)
        (folder / f"python_{module.strip('_')}.md").write_text(text)


PLAIN_TYPES = plain_types()

if __name__ == "__main__":
    main()
