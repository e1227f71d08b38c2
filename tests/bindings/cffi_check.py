#!/usr/bin/env python3
"""Reads the preprocessed C headers with cffi, compares what it makes of them with the compiler's own description, and
calls the library. Usage: HEADERS DESCRIPTION LIBRARY"""

import json
import re
import sys

import cffi

SYSTEM_TYPES = """
struct in_addr { uint32_t s_addr; };
struct in6_addr { union { uint8_t bytes[16]; uint32_t words[4]; } u; };
struct tm {
    int tm_sec, tm_min, tm_hour, tm_mday, tm_mon, tm_year, tm_wday, tm_yday, tm_isdst;
    long tm_gmtoff;
    char const *tm_zone;
};
"""

headers, description, library_path = sys.argv[1:]
with open(headers, encoding="utf-8") as file:
    declarations = file.read()
with open(description, encoding="utf-8") as file:
    described = json.load(file)
ffi = cffi.FFI()
ffi.cdef(SYSTEM_TYPES + declarations)

for name, record in described["records"].items():
    if name.startswith("KelvarisSDK_"):
        fields = [(field, found.offset, ffi.sizeof(found.type)) for field, found in ffi.typeof(name).fields]
        expected = [(field["name"], field["offset"], field["size"]) for field in record["fields"]]
        assert (ffi.sizeof(name), fields) == (record["size"], expected), name

library = ffi.dlopen(library_path)
for enumeration in described["enumerations"].values():
    for name, number in enumeration["values"].items():
        assert getattr(library, name) == number, name
functions = re.findall(r"\b(KelvarisSDK_\w+)\s*\([^)]*\)\s*;", declarations)
assert all(getattr(library, name) for name in functions) and len(functions) == len(set(functions)) > 100

settings = ffi.new("KelvarisSDK_CreateSettings *")
library.KelvarisSDK_InitializeCreateSettings(settings)
assert (ffi.string(settings.address), settings.port) == (b"127.0.0.1", 9330)
sdk = library.KelvarisSDK_CreateWithSettings(settings[0])
# Refused before anything is sent; the record comes back by value.
method = 1 + library.KelvarisSDK_AutoConnectMethod_PROXY
refused = library.KelvarisSDK_SetConnectMethodAuto(sdk, method, ffi.NULL, ffi.NULL)
assert refused.base.error and refused.base.errorCode == library.KelvarisSDK_ErrorType_INVALID_ARGUMENT
library.KelvarisSDK_Destroy(sdk)
