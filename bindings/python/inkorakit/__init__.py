"""Talks to a hand-held colour-capturing pen over Bluetooth LE.

With asyncio, on its own loop and without a thread::

    async with inkorakit.Pen() as pen:
        async for colour in pen.colours():
            print(colour.hex)

or with callbacks: subclass ``Receiver``, ``register`` it, ``start``, and run the kit's loop
(``inkorakit.loop``). ``VirtualPen`` stands in for a pen in tests and demos.

The kit is one for the process: one receiver, or one open ``Pen``, at a time. It starts no thread.
All of it belongs on one thread, the one that runs its loop, except where a docstring says
otherwise; a call from another one, while that is inside the kit, raises ``WrongThreadError``.
"""
from . import loop
from ._library import version
from .colour import Colour
from .errors import (AlreadyDoneError, BluetoothUnavailableError, ConnectionFailedError,
                     InkoraError, NotFoundError, PenClosedError, PenError, PenNotFoundError,
                     TooEarlyError, TooLateError, WrongThreadError)
from .pen import Pen
from .receiver import (LinkState, Receiver, bluetooth_reason, link, register, request_battery,
                       request_information, request_proximity, start, stop, unregister)
from .virtual import (Distance, VirtualPen, advance, install_virtual_clock,
                      install_virtual_radio, set_virtual_bluetooth)

#: The version of the library in use, as "1.0.0".
__version__ = version()

__all__ = [
    "AlreadyDoneError", "BluetoothUnavailableError", "Colour", "ConnectionFailedError",
    "Distance", "InkoraError", "LinkState", "NotFoundError", "Pen", "PenClosedError",
    "PenError", "PenNotFoundError", "Receiver", "TooEarlyError", "TooLateError", "VirtualPen",
    "WrongThreadError", "advance", "bluetooth_reason", "install_virtual_clock",
    "install_virtual_radio", "link", "loop", "register", "request_battery",
    "request_information", "request_proximity", "set_virtual_bluetooth", "start", "stop",
    "unregister",
]
