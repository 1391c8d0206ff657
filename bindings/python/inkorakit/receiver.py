"""The kit by callbacks: a receiver, and what it is asked for."""
from __future__ import annotations

import ctypes
import enum
import itertools
from typing import Any

from . import _library, errors
from .colour import Colour


class Receiver:
    """What hears from the kit: override what is of interest.

    All is called on the thread that runs the loop; ``information``, and ``bluetooth_unavailable``
    in answer to ``start``, before the call returns that asks. What a callback raises disturbs
    nothing: it leaves through the call that ran the loop, or that asked.
    """

    def bluetooth_unavailable(self, error: errors.BluetoothUnavailableError) -> None:
        """Bluetooth is off, missing or not permitted. The kit scans by itself once it is on."""

    def connected(self) -> None:
        """A pen is connected. Its colours follow, the last one that it captured to begin with."""

    def failed(self, error: errors.PenError) -> None:
        """No pen was found in time, or the one found could not be connected: ``start`` again."""

    def disconnected(self) -> None:
        """The link has ended. Unless the host has stopped the kit, a new scan follows at once."""

    def colour_captured(self, colour: Colour) -> None:
        """A colour was captured. One equal to the last is not told again."""

    def battery(self, percent: int) -> None:
        """The battery level in percent, once for each request."""

    def proximity(self, magnitude: int) -> None:
        """The signal strength, once for each request: 57 means -57 dBm, and smaller is nearer."""

    def information(self, name: str, identifier: str) -> None:
        """The pen's advertised name and its identifier, both empty while there is no pen."""

    def released(self) -> None:
        """The last call: the receiver was unregistered, or another one took its place."""


class LinkState(enum.IntEnum):
    """How far the kit is with a pen."""

    #: No pen, and no scan for one.
    NONE = 0
    #: Looking for a pen.
    SCANNING = 1
    #: A pen was found.
    CONNECTING = 2
    #: The pen is connected, and its battery not known yet.
    CONNECTED = 3
    #: All requests can be made.
    READY = 4
    #: Stopped, and the link not down yet.
    DISCONNECTING = 5


# Those that the kit holds, by the context under which they were registered.
_receivers: dict[int, Receiver] = {}
_contexts = itertools.count(1)


def _tell(context: int, name: str, *arguments: Any) -> None:
    try:
        getattr(_receivers[context], name)(*arguments)
    except BaseException as error:  # nothing may be raised into C
        _library.raised.append(error)


def _table() -> _library.Callbacks:
    def event(name: str) -> Any:
        return _library.Event(lambda context: _tell(context, name))

    def failure(name: str) -> Any:
        return _library.Failure(lambda context, code, text: _tell(
            context, name, errors.failure(code, text.decode(errors="replace"))))

    def number(name: str) -> Any:
        return _library.Number(lambda context, value: _tell(context, name, value))

    def captured(context: int, colour: Any) -> None:
        components = colour.contents
        _tell(context, "colour_captured", Colour(components.red, components.green,
                                                 components.blue, components.alpha))

    def information(context: int, name: bytes, identifier: bytes) -> None:
        _tell(context, "information", name.decode(errors="replace"), identifier.decode())

    def released(context: int) -> None:
        _tell(context, "released")
        del _receivers[context]

    return _library.Callbacks(
        ctypes.sizeof(_library.Callbacks), failure("bluetooth_unavailable"), event("connected"),
        failure("failed"), event("disconnected"), _library.Captured(captured), number("battery"),
        number("proximity"), _library.Texts(information), _library.Event(released))


_callbacks = _table()


def register(receiver: Receiver) -> None:
    """Makes this the one receiver, from the loop's next pass on; any thread.

    The kit keeps it until it is ``released``: when it is unregistered or another takes its place.
    """
    context = next(_contexts)
    _receivers[context] = receiver
    _library.call("register", ctypes.byref(_callbacks), context)


def unregister() -> None:
    """Drops the receiver in the loop's next pass; any thread. A link stays up: ``stop`` first."""
    _library.call("unregister")


def start() -> None:
    """Looks for a pen and connects to the first one found; after a loss it is looked for again.

    Raises ``AlreadyDoneError`` while the kit scans or has a pen.
    """
    _library.call_with_callbacks("start")


def stop() -> None:
    """Ends the scan, or disconnects the pen without looking for it again.

    Run the loop while ``link`` is ``DISCONNECTING``, two to three seconds on BlueZ. Inside
    ``connected``, post it: the kit has steps to do there. Bluetooth that comes back begins a scan
    all the same.
    """
    _library.call("stop")


def link() -> LinkState:
    """How far the kit is with a pen."""
    state = _library.function("link")()
    if state < 0:
        raise errors.refusal(state, _library.text_of("last_error"))
    return LinkState(state)


def bluetooth_reason() -> str:
    """Why Bluetooth cannot be used, for people; empty when nothing is known."""
    return _library.text_of("bluetooth_reason")


def request_battery() -> None:
    """Asks for the battery level. Without a pen the request waits for the next one.

    Raises ``TooEarlyError`` from when a pen is found until its first reading (``LinkState.READY``),
    and after one that could not be connected: ask before the start, or in ``disconnected``.
    """
    _library.call("request_battery")


def request_proximity() -> None:
    """Asks for the signal strength. It may wait for the next advertisement of a pen."""
    _library.call("request_proximity")


def request_information() -> None:
    """Asks for name and identifier, which ``information`` hears before this returns."""
    _library.call_with_callbacks("request_information")
