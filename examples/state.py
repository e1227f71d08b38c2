"""Reads the session's state twice: waiting for the record, and by a callback. The daemon's port may be given.

    python3 state.py [PORT]
"""

import ctypes
import queue
import sys


class CreateSettings(ctypes.Structure):
    _fields_ = [("appName", ctypes.c_char * 32), ("address", ctypes.c_char * 46), ("port", ctypes.c_uint16)]


class BaseResult(ctypes.Structure):
    _fields_ = [
        ("error", ctypes.c_bool),
        ("errorCode", ctypes.c_int32),
        ("errorMessage", ctypes.c_char * 200),
        ("callbackId", ctypes.c_uint64),
    ]


class StateResult(ctypes.Structure):
    _fields_ = [("base", BaseResult), ("state", ctypes.c_uint32)]


StateCallback = ctypes.CFUNCTYPE(ctypes.c_bool, StateResult, ctypes.c_void_p)

library = ctypes.CDLL("libkelvarissdk.so.12")
library.KelvarisSDK_CreateWithSettings.argtypes = [CreateSettings]
library.KelvarisSDK_CreateWithSettings.restype = ctypes.c_void_p
library.KelvarisSDK_Destroy.argtypes = [ctypes.c_void_p]
library.KelvarisSDK_GetState.argtypes = [ctypes.c_void_p, StateCallback, ctypes.c_void_p]
library.KelvarisSDK_GetState.restype = StateResult
library.KelvarisSDK_State_toString.restype = ctypes.c_char_p


def text(result):
    if result.base.error:
        sys.exit(result.base.errorMessage.decode(errors="replace"))
    return library.KelvarisSDK_State_toString(result.state).decode()


settings = CreateSettings()
library.KelvarisSDK_InitializeCreateSettings(ctypes.byref(settings))
if len(sys.argv) > 1:
    settings.port = int(sys.argv[1])
sdk = library.KelvarisSDK_CreateWithSettings(settings)

print(text(library.KelvarisSDK_GetState(sdk, StateCallback(), None)))

results = queue.SimpleQueue()
# It returns false, which ends the subscription. The name keeps it alive for as long as the library may call it.
callback = StateCallback(lambda result, _: bool(results.put(result)))
library.KelvarisSDK_GetState(sdk, callback, None)
print(text(results.get()))
library.KelvarisSDK_Destroy(sdk)
