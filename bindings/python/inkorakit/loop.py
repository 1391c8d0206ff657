"""The kit's run loop: run it, or watch its descriptor in a loop of your own."""
from __future__ import annotations

import itertools
import math
import select
from typing import Callable

from . import _library, errors

_posted: dict[int, Callable[[], object]] = {}
_numbers = itertools.count(1)
_is_stopped = False
_LONGEST_WAIT = 1e6  # in seconds, so that a poll can be told

#: Whether the loop goes by a clock that jumps to the next deadline: see ``install_virtual_clock``.
has_virtual_clock = False


def descriptor() -> int:
    """What is readable for as long as there is something to do; then call ``run_pending``.

    It is the kit's: never read or close it. By a virtual clock it shows only what is due already.
    -1 on systems other than Linux.
    """
    number: int = _library.function("loop_descriptor")()
    return number


def now() -> float:
    """The time by the loop's clock, in seconds since any fixed moment."""
    return _seconds("loop_now")


def time_until_due() -> float:
    """Seconds until there is something to do; ``math.inf`` when nothing is scheduled."""
    return _seconds("loop_time_until_due")


def run() -> None:
    """Runs until ``stop``. Ctrl-C raises ``KeyboardInterrupt`` at once."""
    _run_until(math.inf)


def run_for(seconds: float) -> None:
    """Runs for so many seconds of the loop's clock, or until ``stop``."""
    if not 0 <= seconds <= 1e9:
        raise ValueError(f"the time to run is {seconds}, and not from 0 to 1e9 seconds")
    _run_until(now() + seconds)


def run_once(longest_wait: float = 0) -> bool:
    """One pass: waits at most so many seconds for something to do, and does what is due.

    Answers whether anything was. Ctrl-C waits for its end.
    """
    return _library.call_busy("loop_run_once", longest_wait)


def run_pending(budget: float = 0.005) -> bool:
    """Does what is due without waiting, for about ``budget`` seconds at most.

    Answers whether anything was. What is left is for the next call.
    """
    return _library.call_busy("loop_run_pending", budget)


def stop() -> None:
    """Ends the run in progress, or the next one if there is none. Any thread."""
    global _is_stopped
    _is_stopped = True
    post(lambda: None)  # wakes it


def post(work: Callable[[], object]) -> None:
    """Has the loop call ``work`` once, in the order of posting, never inside this call. Any thread.

    What it raises leaves through the run that called it.
    """
    number = next(_numbers)
    _posted[number] = work
    _library.call("loop_post", _trampoline, number)


def _run_posted(number: int) -> None:
    try:
        _posted.pop(number)()
    except BaseException as error:  # nothing may be raised into C
        _library.raised.append(error)


_trampoline = _library.Event(_run_posted)


def _seconds(name: str) -> float:
    seconds: float = _library.function(name)()
    if math.isnan(seconds):
        raise errors.WrongThreadError(-6, _library.text_of("last_error"))
    return seconds


# Waits in Python and not in the library, where no signal would be handled.
def _run_until(when: float) -> None:
    global _is_stopped
    poll = select.poll()
    poll.register(descriptor(), select.POLLIN)
    while not _is_stopped:
        is_busy = run_once()
        left = when - now()
        if left < 0 or (left == 0 and not is_busy):
            break
        if is_busy:
            continue
        wait = min(left, time_until_due())
        if has_virtual_clock and wait < math.inf:
            run_once(wait)  # which jumps
        else:
            poll.poll(math.ceil(min(wait, _LONGEST_WAIT) * 1000))
    _is_stopped = False
