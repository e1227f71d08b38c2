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


def function(name, result, *arguments):
    """One of the library's functions. Without its types ctypes would cut pointers to 32 bits."""
    declared = getattr(library, "KelvarisSDK_" + name)
    declared.restype = result
    declared.argtypes = arguments
    return declared


initialize = function("InitializeCreateSettings", None, ctypes.POINTER(CreateSettings))
create = function("CreateWithSettings", ctypes.c_void_p, CreateSettings)
destroy = function("Destroy", None, ctypes.c_void_p)
get_state = function("GetState", StateResult, ctypes.c_void_p, StateCallback, ctypes.c_void_p)
state_text = function("State_toString", ctypes.c_char_p, ctypes.c_uint32)
error_text = function("ErrorType_toString", ctypes.c_char_p, ctypes.c_uint32)


def show(result):
    if result.base.error:
        message = result.base.errorMessage.decode(errors="replace")
        sys.exit(f"{error_text(result.base.errorCode).decode()}: {message}")
    print(state_text(result.state).decode())


def show_twice(sdk):
    show(get_state(sdk, StateCallback(), None))

    results = queue.SimpleQueue()
    # It returns false, which ends the subscription. The name keeps it alive for as long as the library may call it.
    callback = StateCallback(lambda result, _: bool(results.put(result)))
    registered = get_state(sdk, callback, None)
    show(registered if registered.base.error else results.get())


settings = CreateSettings()
initialize(ctypes.byref(settings))
if len(sys.argv) > 1:
    settings.port = int(sys.argv[1])
sdk = create(settings)
try:
    show_twice(sdk)
finally:
    destroy(sdk)
