"""The pen with asyncio."""
from __future__ import annotations

import asyncio
import collections
from types import TracebackType
from typing import AsyncIterator, Callable

from . import errors, loop, receiver
from .colour import Colour

_LONGEST_DISCONNECTION = 10  # seconds; BlueZ takes two to three


class Pen:
    """A pen to wait for and to listen to, on the running asyncio loop, without a thread::

        async with inkorakit.Pen() as pen:
            async for colour in pen.colours():
                print(colour.hex)

    The block's beginning starts the kit, and its end disconnects the pen. A link that is lost is
    found again by itself. A failure (a ``PenError``) is raised by all that waits, now or later,
    until a pen is connected after all or ``start`` is called. One pen can be open at a time, and
    once.
    """

    _open: Pen | None = None

    def __init__(self) -> None:
        self._heard = _Heard()

    async def __aenter__(self) -> Pen:
        """Starts the kit. Raises ``AlreadyDoneError`` where a pen is open, or this one was."""
        if Pen._open or self._heard.was_opened:
            raise errors.AlreadyDoneError(-4, "a pen is open, or this one was")
        Pen._open = self
        self._heard.was_opened = self._heard.is_open = True
        try:
            asyncio.get_running_loop().add_reader(loop.descriptor(), loop.run_pending)
            receiver.register(self._heard)
            self._heard.ask_first_battery()
            self.start()
        except BaseException:
            await self.close()
            raise
        return self

    async def __aexit__(self, kind: type[BaseException] | None, error: BaseException | None,
                        traceback: TracebackType | None) -> None:
        await self.close()

    async def close(self) -> None:
        """Disconnects the pen, lets go of the kit, and ends all that waits.

        Takes the time of the disconnection, at most 10 seconds. Harmless when not open.
        """
        if not self._heard.is_open:
            return
        self._heard.is_open = False
        self._heard.changed.set()
        try:
            receiver.stop()
            await self._heard.until_at_last(
                lambda: receiver.link() != receiver.LinkState.DISCONNECTING)
            receiver.unregister()
            await self._heard.until_at_last(lambda: self._heard.is_released)
        finally:
            asyncio.get_running_loop().remove_reader(loop.descriptor())
            Pen._open = None

    def start(self) -> None:
        """Looks for a pen again after a failure, which is forgotten. Otherwise changes nothing."""
        self._heard.expect_open()
        self._heard.failure = None
        try:
            receiver.start()
        except errors.AlreadyDoneError:
            pass

    @property
    def is_connected(self) -> bool:
        """Whether there is a link to a pen."""
        return self._heard.is_connected

    @property
    def name(self) -> str:
        """The pen's advertised name; empty while there is no pen."""
        return self._information()[0]

    @property
    def identifier(self) -> str:
        """The pen's identifier, always the same on one machine; empty while there is no link."""
        return self._information()[1]

    async def wait_connected(self) -> None:
        """Waits until a pen is connected."""
        await self._heard.wait(lambda: self._heard.is_connected)

    async def wait_disconnected(self) -> None:
        """Waits until no pen is connected."""
        await self._heard.wait(lambda: not self._heard.is_connected)

    async def colours(self) -> AsyncIterator[Colour]:
        """The colours as they are captured; first of a connection is the one captured last.

        What nobody has fetched is kept for the next iteration, and each colour goes to one of them.
        They end when the pen is closed.
        """
        while True:
            try:
                await self._heard.wait(lambda: self._heard.colours)
            except errors.PenClosedError:
                return
            yield self._heard.colours.popleft()

    async def battery(self) -> int:
        """The battery level in percent, read from the pen; without one, when there is one.

        On a link that follows one which ended with the adapter (``BluetoothUnavailableError``) it
        comes only when the pen tells it of its own accord: give up with ``asyncio.timeout``.
        """
        self._heard.expect_open()
        self._heard.percent = None
        try:
            receiver.request_battery()
        except errors.TooEarlyError:
            pass  # the first reading of each connection is asked for already
        await self._heard.wait(lambda: self._heard.percent is not None)
        return self._heard.percent or 0

    async def proximity(self) -> int:
        """The signal strength: 57 means -57 dBm, and smaller is nearer.

        Where the system does not tell that of a link it comes with the next advertisement of a pen,
        which may be after the link.
        """
        self._heard.expect_open()
        self._heard.magnitude = None
        receiver.request_proximity()
        await self._heard.wait(lambda: self._heard.magnitude is not None)
        return self._heard.magnitude or 0

    def _information(self) -> tuple[str, str]:
        self._heard.expect_open()
        receiver.request_information()
        return self._heard.name_and_identifier


class _Heard(receiver.Receiver):
    """What the kit has told, and a way to wait for it."""

    def __init__(self) -> None:
        self.colours: collections.deque[Colour] = collections.deque()
        self.percent: int | None = None
        self.magnitude: int | None = None
        self.name_and_identifier = ("", "")
        self.failure: errors.PenError | None = None
        self.is_connected = False
        self.is_released = False
        self.was_opened = False
        self.is_open = False
        self.changed = asyncio.Event()

    def expect_open(self) -> None:
        if not self.is_open:
            raise errors.PenClosedError(0, "the pen is not open")

    async def until(self, is_so: Callable[[], object]) -> None:
        """Waits."""
        while not is_so():
            self.changed.clear()
            await self.changed.wait()

    async def until_at_last(self, is_so: Callable[[], object]) -> None:
        """Waits as long as a disconnection takes."""
        if loop.has_virtual_clock:
            loop.run_for(_LONGEST_DISCONNECTION)
            return
        try:
            await asyncio.wait_for(self.until(is_so), _LONGEST_DISCONNECTION)
        except asyncio.TimeoutError:
            pass

    async def wait(self, is_there: Callable[[], object]) -> None:
        """Waits for something told; raises what prevents it."""
        await self.until(lambda: is_there() or self.failure or not self.is_open)
        if is_there():
            return
        self.expect_open()
        assert self.failure
        raise errors.failure(self.failure.code, str(self.failure))

    def ask_first_battery(self) -> None:
        # Between the connection and this reading the pen must not be asked.
        try:
            receiver.request_battery()
        except errors.TooEarlyError:
            pass

    def bluetooth_unavailable(self, error: errors.BluetoothUnavailableError) -> None:
        self.is_connected = False  # a link ends with the adapter, without a word
        self.failed(error)

    def connected(self) -> None:
        self.is_connected = True
        self.failure = None
        self.changed.set()

    def failed(self, error: errors.PenError) -> None:
        self.failure = error
        self.changed.set()

    def disconnected(self) -> None:
        self.is_connected = False
        if self.is_open:
            self.ask_first_battery()
        self.changed.set()

    def colour_captured(self, colour: Colour) -> None:
        self.colours.append(colour)
        self.changed.set()

    def battery(self, percent: int) -> None:
        self.percent = percent
        self.changed.set()

    def proximity(self, magnitude: int) -> None:
        self.magnitude = magnitude
        self.changed.set()

    def information(self, name: str, identifier: str) -> None:
        self.name_and_identifier = (name, identifier)

    def released(self) -> None:
        self.is_released = True
        self.changed.set()
