"""The C interface: where its library is, what its functions take, and what their statuses mean."""
from __future__ import annotations

import ctypes
import os
import pathlib
from ctypes import (CFUNCTYPE, POINTER, Structure, c_bool, c_char_p, c_double, c_int, c_int64,
                    c_size_t, c_uint8, c_uint32, c_uint64, c_void_p)
from typing import Any

from . import errors

_NAME = "libInkoraKit.so.1"


class CColour(Structure):
    """inkora_colour."""

    _fields_ = [("red", c_double), ("green", c_double), ("blue", c_double), ("alpha", c_double)]


Event = CFUNCTYPE(None, c_void_p)
Failure = CFUNCTYPE(None, c_void_p, c_int64, c_char_p)
Captured = CFUNCTYPE(None, c_void_p, POINTER(CColour))
Number = CFUNCTYPE(None, c_void_p, c_int64)
Texts = CFUNCTYPE(None, c_void_p, c_char_p, c_char_p)


class Callbacks(Structure):
    """inkora_callbacks."""

    _fields_ = [("size", c_size_t), ("bluetooth_unavailable", Failure), ("connected", Event),
                ("failed", Failure), ("disconnected", Event), ("colour_captured", Captured),
                ("battery", Number), ("proximity", Number), ("information", Texts),
                ("released", Event)]


# What the functions take. They give a status, but for those in _RESULTS.
_ARGUMENTS: dict[str, list[Any]] = {
    "status_text": [c_int], "last_error": [], "version": [],
    "register": [POINTER(Callbacks), c_void_p], "unregister": [],
    "start": [], "stop": [], "link": [], "bluetooth_reason": [],
    "request_battery": [], "request_proximity": [], "request_information": [],
    "loop_descriptor": [], "loop_run_once": [c_double, POINTER(c_bool)],
    "loop_run_pending": [c_double, POINTER(c_bool)], "loop_post": [Event, c_void_p],
    "loop_now": [], "loop_time_until_due": [],
    "virtual_clock_install": [], "virtual_radio_install": [],
    "virtual_radio_set_powered": [c_bool],
    "virtual_pen_add": [c_uint64], "virtual_pen_remove": [c_uint64],
    "virtual_pen_capture": [c_uint64, c_uint8, c_uint8, c_uint8],
    "virtual_pen_start_capturing": [c_uint64, c_double, c_uint32],
    "virtual_pen_stop_capturing": [c_uint64], "virtual_pen_set_battery": [c_uint64, c_uint8],
    "virtual_pen_set_distance": [c_uint64, c_int], "virtual_pen_set_refusing": [c_uint64, c_bool],
    "virtual_pen_drop_link": [c_uint64], "virtual_pen_lose_link": [c_uint64],
}
_RESULTS: dict[str, Any] = {
    "status_text": c_char_p, "last_error": c_char_p, "version": c_char_p,
    "bluetooth_reason": c_char_p, "loop_now": c_double, "loop_time_until_due": c_double,
}


def _path() -> str:
    """The library named by INKORAKIT_LIBRARY; else the one installed along with this package; else
    the one that the system finds."""
    named = os.environ.get("INKORAKIT_LIBRARY")
    if named:
        return named
    package = pathlib.Path(__file__).resolve().parent
    note = package / "library-path"
    if note.exists():
        installed = package / note.read_text().strip()
        if installed.exists():
            return str(installed)
    return _NAME


def _load() -> ctypes.CDLL:
    path = _path()
    try:
        library = ctypes.CDLL(path)
        for name, arguments in _ARGUMENTS.items():
            function = getattr(library, f"inkora_{name}")
            function.argtypes = arguments
            function.restype = _RESULTS.get(name, c_int)
    except (OSError, AttributeError) as error:
        raise ImportError(f"InkoraKit's library cannot be used: {error}. Install it, or name it "
                          "in the environment variable INKORAKIT_LIBRARY.", path=path) from error
    return library


_library = _load()

#: What callbacks have raised: it leaves through the call that ran them, one by one.
raised: list[BaseException] = []
_depth = 0  # of calls that run callbacks, from inside callbacks


def function(name: str) -> Any:
    """The function of the C interface, bare."""
    return getattr(_library, f"inkora_{name}")


def text_of(name: str) -> str:
    """The text that a function of the C interface gives."""
    text: bytes = function(name)()
    return text.decode(errors="replace")


def call(name: str, *arguments: Any) -> None:
    """Calls a function of the C interface that gives a status; raises what the status means."""
    status = function(name)(*arguments)
    if status:
        raise errors.refusal(status, text_of("last_error"))


def call_with_callbacks(name: str, *arguments: Any) -> None:
    """The same for one that runs callbacks; the outermost raises what they have raised."""
    global _depth
    _depth += 1
    try:
        call(name, *arguments)
    finally:
        _depth -= 1
    if raised and not _depth:
        raise raised.pop(0)


def call_busy(name: str, seconds: float) -> bool:
    """The same for a run of the loop, which tells whether anything was due."""
    was_busy = c_bool()
    call_with_callbacks(name, seconds, ctypes.byref(was_busy))
    return was_busy.value


def version() -> str:
    """The version of the library in use, as "1.0.0"."""
    return text_of("version")
