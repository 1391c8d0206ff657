#!/usr/bin/env python3
"""Draws the colours captured last as a row of swatches, in a terminal that shows 24-bit colours.

    python3 palette.py                 # with a pen; Ctrl-C ends
    python3 palette.py --virtual       # with one that needs no Bluetooth
"""
import argparse
import asyncio
import collections
import contextlib
import sys

import inkorakit


def swatch(colour: inkorakit.Colour) -> str:
    red, green, blue = colour.rgb
    ink = 0 if red * 0.299 + green * 0.587 + blue * 0.114 > 128 else 15  # the luma of ITU-R BT.601
    return f"\x1b[48;2;{red};{green};{blue}m\x1b[38;5;{ink}m {colour.hex} \x1b[0m"


async def draw(last: int, count: int) -> None:
    palette: collections.deque[inkorakit.Colour] = collections.deque(maxlen=last)
    async with inkorakit.Pen() as pen:
        print("Looking for a pen …", file=sys.stderr)
        async for colour in pen.colours():
            palette.append(colour)
            print("".join(map(swatch, palette)), flush=True)
            count -= 1
            if not count:
                return


def main() -> int:
    parser = argparse.ArgumentParser(description="Draws the colours that a pen captured last.")
    parser.add_argument("--virtual", action="store_true", help="with a pen that needs no Bluetooth")
    parser.add_argument("--last", type=int, default=8, help="colours to show (8)")
    parser.add_argument("--count", type=int, default=0, help="captures to wait for (no end)")
    options = parser.parse_args()
    if options.virtual:
        inkorakit.VirtualPen().start_capturing(0.5)
    try:
        with contextlib.suppress(KeyboardInterrupt):
            asyncio.run(draw(options.last, options.count))
    except inkorakit.PenError as error:
        print(error, inkorakit.bluetooth_reason(), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
