"""The declarations for ctypes, beside what the compiler made of the headers, and the search for the library."""

import ctypes
import inspect
import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from kelvarissdk import _abi


def classes(base):
    return {
        name: value for name, value in inspect.getmembers(_abi, inspect.isclass) if issubclass(value, base)
    }


def type_name(kind):
    """The name of a type in kelvarissdk-abi.json."""
    while issubclass(kind, ctypes.Array):
        kind = kind._type_
    if issubclass(kind, ctypes.Structure):
        return kind.__name__
    if kind is ctypes.c_char_p:
        return "pointer"
    for plain in ("bool", "char", "float", "double"):
        if kind is getattr(ctypes, f"c_{plain}"):
            return plain
    signed = kind(-1).value == -1
    return f"{'' if signed else 'u'}int{8 * ctypes.sizeof(kind)}_t"


def dimensions(kind):
    return [kind._length_, *dimensions(kind._type_)] if issubclass(kind, ctypes.Array) else []


class Declarations(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        text = Path(os.environ["KELVARISSDK_ABI"]).read_text().replace("KelvarisSDK_", "")
        cls.compiled = json.loads(text)
        cls.enumerations = {
            f"{name}_{member.name}": member.value
            for name, values in classes(_abi.Enumeration).items()
            for member in values
        }

    def test_records(self):
        ours = classes(ctypes.Structure)
        self.assertEqual(set(ours), set(self.compiled["records"]))
        for name, compiled in self.compiled["records"].items():
            record = ours[name]
            with self.subTest(name):
                self.assertEqual(ctypes.sizeof(record), compiled["size"])
                if name == "in6_addr":  # the system's has a union inside
                    continue
                expected = [
                    (field["name"], field["offset"], field["size"], field.get("dimensions", []))
                    for field in compiled["fields"]
                ]
                found = [
                    (field, getattr(record, field).offset, getattr(record, field).size, dimensions(kind))
                    for field, kind in record._fields_
                ]
                self.assertEqual(found, expected)
                for (field, kind), described in zip(record._fields_, compiled["fields"], strict=True):
                    if described["type"] in self.compiled["enumerations"]:
                        described["type"] = "uint32_t"
                    self.assertEqual(type_name(kind), described["type"], field)
                self.assertEqual(
                    list(inspect.get_annotations(record)), [field for field, _ in record._fields_]
                )

    def test_enumerations(self):
        compiled = {}
        for enumeration in self.compiled["enumerations"].values():
            compiled |= enumeration["values"]
        # The numbers that are the public layer's own: UNKNOWN, CANCELLED.
        ours = {name: value for name, value in self.enumerations.items() if value not in (0xFFFFFFFF, 4096)}
        self.assertEqual(ours, compiled)

    def test_any_other_number_is_unknown(self):
        for enumeration in classes(_abi.Enumeration).values():
            if enumeration is not _abi.Enumeration:
                self.assertIs(enumeration(0x7FFF0001), enumeration.UNKNOWN)
        self.assertEqual(_abi.State.UNKNOWN, 8)
        with self.assertRaises(ValueError):
            _abi.State("CONNECTED")


class Search(unittest.TestCase):
    """Each search runs in an interpreter of its own: what was found stays found."""

    def search(self, **environment):
        code = "from kelvarissdk._library import library; print(library()._name)"
        environment = {"PYTHONPATH": os.environ["PYTHONPATH"], "PATH": os.environ["PATH"], **environment}
        run = subprocess.run([sys.executable, "-c", code], env=environment, capture_output=True, text=True)
        return (run.stdout or run.stderr).splitlines()[-1]

    def test_the_loader_finds_it(self):
        folder = str(Path(os.environ["KELVARISSDK_LIBRARY"]).parent)
        self.assertEqual(self.search(LD_LIBRARY_PATH=folder), "libkelvarissdk.so.12")

    def test_says_what_is_missing(self):
        found = self.search(KELVARISSDK_LIBRARY="/nowhere/libkelvarissdk.so")
        self.assertIn(
            "KELVARISSDK_LIBRARY names a file that can't be loaded: /nowhere/libkelvarissdk.so", found
        )
        found = self.search()
        if found == "libkelvarissdk.so.12":
            self.skipTest("the library is installed on this machine")
        self.assertRegex(found, "isn't installed .*: install the Debian package libkelvarissdk12")

    def test_refuses_other_versions(self):
        # A library with the functions of this one under another version of their names.
        folder = self.enterContext(tempfile.TemporaryDirectory())
        source, map_file, other = (Path(folder, f"other.{end}") for end in ("c", "map", "so"))
        source.write_text("void KelvarisSDK_Destroy(void* handle) { (void)handle; }\n")
        for node, message in (("11", "isn't version 12"), ("12", "is older than version 12.1")):
            map_file.write_text(f"KELVARISSDK_{node} {{ global: KelvarisSDK_*; local: *; }};\n")
            build = ["cc", "-shared", "-fPIC", source, f"-Wl,--version-script={map_file}", "-o", other]
            subprocess.run(build, check=True)
            self.assertIn(message, self.search(KELVARISSDK_LIBRARY=str(other)))


if __name__ == "__main__":
    unittest.main()
