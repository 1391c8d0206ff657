"""What can go wrong: calls that are refused, and failures with the pen."""
from __future__ import annotations


class InkoraError(Exception):
    """A call that was refused, or a failure; ``str()`` is its text.

    Out of range numbers raise ``ValueError``, and exhausted memory ``MemoryError``, instead.
    """

    def __init__(self, code: int, text: str) -> None:
        super().__init__(text)
        #: The status of the C interface (negative), or the code of a failure (17, 18 or 19).
        self.code = code


class TooEarlyError(InkoraError):
    """The battery cannot be asked from when a pen is found until its first reading."""


class TooLateError(InkoraError):
    """The virtual radio and clock can be installed before the first start only."""


class AlreadyDoneError(InkoraError):
    """Started already, or there already."""


class NotFoundError(InkoraError):
    """There is no such virtual pen, or no virtual radio."""


class PenClosedError(InkoraError):
    """The ``Pen`` is not open: it is used outside of its ``async with`` block."""


class WrongThreadError(InkoraError):
    """Another thread is inside the kit; have it do the call with ``loop.post``."""


class PenError(InkoraError):
    """A failure that the kit tells of; each kind has a class of its own."""


class BluetoothUnavailableError(PenError):
    """Bluetooth is off, missing or not permitted (17). The kit scans once it is on."""


class ConnectionFailedError(PenError):
    """The pen that was found could not be connected (18). The kit is idle until started again."""


class PenNotFoundError(PenError):
    """No pen was found within 6 seconds (19). The kit is idle until started again."""


_REFUSALS = {-2: TooEarlyError, -3: TooLateError, -4: AlreadyDoneError, -5: NotFoundError,
             -6: WrongThreadError}
_FAILURES = {17: BluetoothUnavailableError, 18: ConnectionFailedError, 19: PenNotFoundError}


def refusal(status: int, text: str) -> Exception:
    """The exception for a status of the C interface that is not success."""
    if status == -1:
        return ValueError(text)
    if status == -7:
        return MemoryError(text)
    return _REFUSALS.get(status, InkoraError)(status, text)


def failure(code: int, text: str) -> PenError:
    """The exception for a failure that the kit tells of."""
    return _FAILURES.get(code, PenError)(code, text)
