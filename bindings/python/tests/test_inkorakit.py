"""The package against virtual pens; by a clock that stands still but for runs of the kit's loop."""
import asyncio
import itertools
import os
import pathlib
import re
import signal
import subprocess
import sys
import threading
import time
import unittest

import inkorakit
from inkorakit import LinkState, VirtualPen, loop

WHITE, RED = inkorakit.Colour(1, 1, 1), inkorakit.Colour(1, 0, 0)


def setUpModule():
    inkorakit.install_virtual_clock()
    inkorakit.install_virtual_radio()


class Log(inkorakit.Receiver):
    """Keeps what it hears, and does now and then what it is told to."""

    def __init__(self):
        self.heard = []
        self.on = {}

    def hear(self, event, *details):
        self.heard.append((event, *details))
        self.on.get(event, lambda: None)()

    def bluetooth_unavailable(self, error):
        self.hear("unavailable", error.code, str(error))

    def connected(self):
        self.hear("connected", inkorakit.link())

    def failed(self, error):
        self.hear(type(error).__name__, error.code, str(error))

    def disconnected(self):
        self.hear("disconnected")

    def colour_captured(self, colour):
        self.hear("colour", colour.hex)

    def battery(self, percent):
        self.hear("battery", percent)

    def proximity(self, magnitude):
        self.hear("proximity", magnitude)

    def information(self, name, identifier):
        self.hear("information", name, len(identifier))

    def released(self):
        self.hear("released")

    def take(self):
        heard, self.heard = self.heard, []
        return heard


class Callbacks(unittest.TestCase):
    def setUp(self):
        self.log = Log()
        inkorakit.register(self.log)

    def tearDown(self):
        inkorakit.stop()
        loop.run_for(10)
        inkorakit.unregister()
        loop.run_for(0)
        self.assertEqual(self.log.take()[-1:], [("released",)])

    def test_pen_is_found_used_lost_and_found_again(self):
        with VirtualPen() as pen:
            inkorakit.start()
            loop.run_for(1)
            self.assertEqual(self.log.take(), [("connected", LinkState.CONNECTED),
                                               ("colour", "#000000")])
            self.assertEqual(pen.capture(255, 128, 0).hex, "#ff8000")
            pen.set_distance(inkorakit.Distance.FAR)
            inkorakit.request_battery()
            inkorakit.request_proximity()
            inkorakit.request_information()
            loop.run_for(1)
            self.assertEqual(self.log.take(), [
                ("information", "InkoraPen", 36), ("colour", "#ff8000"), ("battery", 100),
                ("proximity", 100)])
            pen.lose_link()
            loop.run_for(5)
            self.assertEqual([event for event, *_ in self.log.take()],
                             ["disconnected", "connected", "colour"])
        loop.run_for(7)
        self.assertEqual(self.log.take(), [
            ("disconnected",), ("PenNotFoundError", 19, "Device is timed out to connect.")])

    def test_what_callbacks_raise_leaves_through_the_runs_one_by_one(self):
        self.log.on = {"connected": lambda: 1 / 0, "colour": lambda: {}["key"]}
        with VirtualPen():
            inkorakit.start()
            with self.assertRaises(ZeroDivisionError):
                loop.run_for(1)
            with self.assertRaises(KeyError):
                loop.run_for(1)
            loop.run_for(1)
            self.assertEqual([event for event, *_ in self.log.take()], ["connected", "colour"])

    def test_mistakes_are_refused(self):
        with VirtualPen() as pen:
            for mistake, error in [
                    (lambda: VirtualPen(), inkorakit.AlreadyDoneError),
                    (lambda: VirtualPen(-1), ValueError),
                    (lambda: pen.capture(256, 0, 0), ValueError),
                    (lambda: pen.capture(1.5, 0, 0), TypeError),
                    (lambda: pen.set_battery(101), ValueError),
                    (lambda: pen.set_distance(4), ValueError),
                    (lambda: pen.start_capturing(0), ValueError),
                    (lambda: loop.run_for(float("nan")), ValueError),
                    (lambda: loop.run_once(-1), ValueError)]:
                self.assertRaises(error, mistake)
        self.assertRaises(inkorakit.NotFoundError, pen.drop_link)
        with VirtualPen() as pen:
            pen.set_refusing(True)
            inkorakit.start()
            self.assertRaises(inkorakit.TooEarlyError, lambda: (loop.run_for(1),
                                                                inkorakit.request_battery()))

    def test_other_threads_post_and_stop(self):
        refused = []

        def meddle():
            while not refused:
                try:
                    inkorakit.link()
                except inkorakit.WrongThreadError as error:
                    refused.append(str(error))
            loop.post(lambda: refused.append("posted"))
            loop.stop()

        # Inside the kit, and not where Python waits for it.
        loop.post(lambda: (other.start(), [time.sleep(0.01) for _ in range(500) if not refused]))
        other = threading.Thread(target=meddle)
        loop.run()
        other.join()
        loop.run_for(0)
        self.assertIn("inkora_loop_post", refused[0])
        self.assertEqual(refused[1], "posted")

    def test_interrupt_ends_a_run_at_once(self):
        loop.run_for(0)
        loop.post(threading.Timer(0.1, os.kill, (os.getpid(), signal.SIGINT)).start)
        self.assertRaises(KeyboardInterrupt, loop.run)


class Asyncio(unittest.IsolatedAsyncioTestCase):
    async def test_colours_come_through_a_loss(self):
        async with inkorakit.Pen() as pen:
            with VirtualPen() as virtual:
                virtual.capture(255, 255, 255)
                await inkorakit.advance(1)
                colours = pen.colours()
                self.assertEqual(await anext(colours), WHITE)
                self.assertEqual((pen.name, len(pen.identifier)), ("InkoraPen", 36))
                for _ in range(2):
                    virtual.drop_link()
                    while pen.is_connected:
                        loop.run_once(1)
                    await pen.wait_disconnected()
                    self.assertEqual((pen.name, pen.identifier), ("", ""))
                    await inkorakit.advance(1)
                    await pen.wait_connected()
                    self.assertEqual(await anext(colours), WHITE)
                waiting = asyncio.ensure_future(anext(colours))
                await inkorakit.advance(0)
                virtual.capture(255, 0, 0)
                await inkorakit.advance(1)
                self.assertEqual(await waiting, RED)
                last = [asyncio.ensure_future(anext(colours, "the end")),
                        asyncio.ensure_future(pen.battery())]
                await inkorakit.advance(1)
                self.assertEqual(await last[1], 100)
                await pen.close()
                self.assertEqual(await last[0], "the end")
                self.assertFalse(pen.is_connected)
        self.assertEqual(inkorakit.link(), LinkState.NONE)
        with self.assertRaises(inkorakit.PenClosedError):
            await pen.battery()

    async def test_battery_may_be_asked_at_any_time(self):
        with VirtualPen() as virtual:
            async with inkorakit.Pen() as pen:
                asked = [asyncio.ensure_future(pen.battery())]  # without a pen
                await asyncio.sleep(0)
                virtual.set_battery(42)
                while inkorakit.link() != LinkState.CONNECTED:
                    loop.run_once(1)
                asked += [asyncio.ensure_future(pen.battery()),  # too early
                          asyncio.ensure_future(pen.proximity())]
                await inkorakit.advance(1)
                self.assertEqual(await asyncio.gather(*asked), [42, 42, 60])

    async def test_failures_are_raised_until_they_have_passed(self):
        async with inkorakit.Pen() as pen:
            waiting = asyncio.ensure_future(anext(pen.colours()))
            await inkorakit.advance(7)
            with self.assertRaises(inkorakit.PenNotFoundError):
                await waiting
            with self.assertRaises(inkorakit.PenNotFoundError):
                await pen.battery()
            with VirtualPen():
                pen.start()
                await inkorakit.advance(1)
                await pen.wait_connected()
                inkorakit.set_virtual_bluetooth(False)
                await pen.wait_disconnected()
                with self.assertRaisesRegex(inkorakit.BluetoothUnavailableError, "disabled"):
                    await pen.wait_connected()
                self.assertTrue(inkorakit.bluetooth_reason())
                inkorakit.set_virtual_bluetooth(True)
                await inkorakit.advance(1)
                await pen.wait_connected()
            with self.assertRaises(inkorakit.AlreadyDoneError):
                await inkorakit.Pen().__aenter__()


class Documents(unittest.TestCase):
    """Each ```python block that a ```text block follows is a program, and the second its output."""

    def test_examples_print_what_they_say(self):
        root = pathlib.Path(__file__).parents[3]
        text = (root / "docs" / "python.md").read_text()
        blocks = re.findall(r"^```(\w+)\n(.*?)^```$", text, re.M | re.S)
        examples = [(program, output) for (language, program), (following, output)
                    in itertools.pairwise(blocks) if (language, following) == ("python", "text")]
        self.assertGreater(len(examples), 2)
        for program, output in examples:
            with self.subTest(program=program):
                self.assertEqual(run(["-c", program]), output)

    def test_example_draws_the_last_colours(self):
        example = pathlib.Path(__file__).parents[1] / "examples" / "palette.py"
        drawn = run([str(example), "--virtual", "--count", "3"])
        self.assertEqual(drawn.count("\x1b[48;2;127;10;172m"), 2)  # the second colour stays

    def test_library_that_is_none_is_named(self):
        error = run(["-c", "try: import inkorakit\nexcept ImportError as e: print(e)"],
                    INKORAKIT_LIBRARY="/dev/null")
        self.assertRegex(error, "cannot be used: /dev/null.*INKORAKIT_LIBRARY")


def run(arguments, **environment):
    return subprocess.run([sys.executable, *arguments], env={**os.environ, **environment},
                          check=True, capture_output=True, text=True, timeout=60).stdout


if __name__ == "__main__":
    unittest.main()
