"""Colours as the pen captures them."""
from __future__ import annotations

from typing import NamedTuple


class Colour(NamedTuple):
    """A colour in sRGB, with components from 0 to 1."""

    #: Red, from 0 to 1.
    red: float
    #: Green, from 0 to 1.
    green: float
    #: Blue, from 0 to 1.
    blue: float
    #: Opacity, from 0 to 1; 1 for all that a pen captures.
    alpha: float = 1.0

    @property
    def rgb(self) -> tuple[int, int, int]:
        """Red, green and blue from 0 to 255, as the pen sends them."""
        return round(self.red * 255), round(self.green * 255), round(self.blue * 255)

    @property
    def hex(self) -> str:
        """The colour as in CSS: ``"#ff8000"``."""
        return "#{:02x}{:02x}{:02x}".format(*self.rgb)
