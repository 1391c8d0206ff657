"""A pen, a radio and a clock that need no Bluetooth and no waiting, for demos and tests.

They take the place of the real ones for the rest of the process.
"""
from __future__ import annotations

import asyncio
import enum
import operator
from types import TracebackType

from . import _library, loop
from .colour import Colour


class Distance(enum.IntEnum):
    """How far from the adapter a virtual pen is."""

    #: -40 dBm.
    IMMEDIATE = 0
    #: -70 dBm.
    NEAR = 1
    #: -100 dBm.
    FAR = 2
    #: Not heard; a link is lost after 4 seconds, and found again when the pen is back.
    OUT_OF_RANGE = 3


def install_virtual_clock() -> None:
    """Has the kit's loop go by a clock that jumps to the next deadline, and begins at 0.

    Time then goes by in the runs of ``loop`` alone, within moments, and in ``advance``. Harmless
    when called again; raises ``TooLateError`` after the first start.
    """
    _library.call("virtual_clock_install")
    loop.has_virtual_clock = True


async def advance(seconds: float) -> None:
    """With asyncio and a virtual clock: lets tasks go on until they wait, and has time go by."""
    await asyncio.sleep(0)
    loop.run_for(seconds)


def install_virtual_radio() -> None:
    """Has the kit use a virtual radio that no pen is near; a ``VirtualPen`` does so as well.

    Harmless when called again; raises ``TooLateError`` after the first start on another radio.
    """
    _library.call("virtual_radio_install")


def set_virtual_bluetooth(is_on: bool) -> None:
    """Switches the virtual radio's adapter on or off. Raises ``NotFoundError`` without one."""
    _library.call("virtual_radio_set_powered", is_on)


class VirtualPen:
    """A pen without a pen, near the virtual radio: black at first, with a full battery.

    It is there until it is closed, by ``close`` or at the end of a ``with`` block. A second pen
    needs a serial number of its own; one that is taken raises ``AlreadyDoneError``. The methods of
    a closed pen raise ``NotFoundError``.
    """

    def __init__(self, serial_number: int = 0) -> None:
        self._serial_number = _whole(serial_number, 2**64 - 1, "the serial number")
        self._call("add")

    def __enter__(self) -> VirtualPen:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 traceback: TracebackType | None) -> None:
        self.close()

    def close(self) -> None:
        """Takes the pen away for good. A link to it is lost."""
        self._call("remove")

    def capture(self, red: int, green: int, blue: int) -> Colour:
        """Captures a colour, with components from 0 to 255; returns it as the kit tells it."""
        components = [_whole(value, 255, "a component") for value in (red, green, blue)]
        self._call("capture", *components)
        return Colour(*(component / 255 for component in components))

    def start_capturing(self, interval: float, seed: int = 0) -> None:
        """Captures a colour every ``interval`` seconds, at least 0.001, while the kit listens.

        The seed decides on all of them. Starts anew where it was under way.
        """
        self._call("start_capturing", interval, _whole(seed, 2**32 - 1, "the seed"))

    def stop_capturing(self) -> None:
        """Ends what ``start_capturing`` began."""
        self._call("stop_capturing")

    def set_battery(self, percent: int) -> None:
        """Sets the battery's level, from 0 to 100."""
        self._call("set_battery", _whole(percent, 100, "the battery level"))

    def set_distance(self, distance: Distance) -> None:
        """Moves the pen."""
        self._call("set_distance", distance)

    def set_refusing(self, refuses: bool) -> None:
        """Whether attempts to connect fail; they do not at first."""
        self._call("set_refusing", refuses)

    def drop_link(self) -> None:
        """Closes the link from the pen's side, which the kit hears at once, and looks again."""
        self._call("drop_link")

    def lose_link(self) -> None:
        """Falls silent, as when the battery is taken out: the link is lost after 4 seconds."""
        self._call("lose_link")

    def _call(self, name: str, *arguments: float) -> None:
        _library.call(f"virtual_pen_{name}", self._serial_number, *arguments)


# C would take the lowest bits of any number.
def _whole(value: int, most: int, what: str) -> int:
    whole = operator.index(value)
    if not 0 <= whole <= most:
        raise ValueError(f"{what} is {whole}, and not from 0 to {most}")
    return whole
