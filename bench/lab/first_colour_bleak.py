#!/usr/bin/python3
"""The steps of FirstColour.cpp by bleak: prints the seconds from the start of the search to the
first colour. The time that Python takes to load is not counted."""
import asyncio
import time

from bleak import BleakClient, BleakScanner

ADAPTER = "hci0"  # the other one is the pen's
COLOUR = "00001f14-0000-1000-8000-00805f9b34fb"
BATTERY = "00001f17-0000-1000-8000-00805f9b34fb"


def is_pen(device, advertisement):
    name = advertisement.local_name or ""
    return "HuveloPen" in name or "InkoraPen" in name


async def main():
    began = time.monotonic()
    pen = await BleakScanner.find_device_by_filter(is_pen, timeout=20, adapter=ADAPTER)
    async with BleakClient(pen, adapter=ADAPTER) as client:
        await client.read_gatt_char(COLOUR)
        print("%.3f" % (time.monotonic() - began), flush=True)
        await client.start_notify(COLOUR, lambda sender, data: None)
        await client.read_gatt_char(BATTERY)
        await client.start_notify(BATTERY, lambda sender, data: None)


asyncio.run(main())
