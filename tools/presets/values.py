# SPDX-License-Identifier: GPL-3.0-or-later
"""The texts of the delay's values as numbers of its state, and which keys they have there."""
import math
import re

LENGTHS = ["64", "32", "16", "8", "4", "2", "1", "1/2", "1/4", "1/8", "1/16", "1/32", "1/64", "1/128", "1/256"]
TYPES = {"": 0, "t": 1, "triplets": 1, "d": 2, "dotted": 2, "tuplets": 3}


class Fault(Exception):
    pass


def number(text, units, lowest, highest):
    """The number at the start of `text` times the factor of its unit."""
    match = re.fullmatch(r"([+-]?[0-9]*\.?[0-9]+)\s*(.*)", text)
    if not match or match[2] not in units:
        raise Fault(f'"{text}" is no value')
    value = float(match[1]) * units[match[2]]
    if not lowest - 1e-9 <= value <= highest + 1e-9:
        raise Fault(f'"{text}" is out of range')
    return value


def decibels(text):
    return number(text, {"dB": 1, "": 1}, -24, 24)


def level(text):
    """The square root of an amplitude."""
    return 0.0 if text == "silence" else math.sqrt(10 ** (number(text, {"dB": 1}, -120, 0) / 20))


def mix(text):
    if text == "silence" or text.endswith("dB"):
        return level(text) ** 2
    return percent(text)


def percent(text):
    return number(text, {"%": 0.01}, 0, 1)


def panorama(text):
    if text == "center":
        return 0.0
    return number(text, {"% left": -0.01, "% right": 0.01}, -1, 1)


def seconds(lowest, highest):
    return lambda text: number(text, {"ms": 0.001, "s": 1}, lowest, highest)


def hertz(text):
    return math.log10(number(text, {"Hz": 1, "kHz": 1000}, 20, 20000))


def switch(text):
    return choice("off", "on")(text.lower())


def choice(*names):
    def read(text):
        if text not in names:
            raise Fault(f'"{text}" is not one of {", ".join(names)}')
        return names.index(text)
    return read


EFFECT = {"Delay mode": ("DelayMode", choice("Parallel", "Serial")),
          "Filter mode": ("FilterMode", choice("Input filter", "Feedback filter")),
          "Min frequency": ("MinFrequency", hertz), "Max frequency": ("MaxFrequency", hertz),
          "Resonance": ("Resonance", percent), "Saturation": ("Saturation", percent)}
TAP = {"": ("tap", switch), "Feedback": ("feedback", level), "Gain": ("gain", level),
       "Panorama": ("panorama", panorama), "Delay": ("delay", seconds(0, 0.5)),
       "Left offset": ("LeftOffset", seconds(-0.1, 0.1)), "Right offset": ("RightOffset", seconds(-0.1, 0.1)),
       "Mode": ("mode", choice("Default", "Classic", "PingPong")), "Freeze": ("Freeze", switch)}
GLOBAL = {"Wet": ("DryWet", mix), "Dry": ("DryWet2", mix), "Input gain": ("InputGain", decibels),
          "Output gain": ("OutputGain", decibels)}


def note(text):
    """Length and type of a note such as 1/8d; None for a time."""
    match = re.fullmatch(r"(\d+\s*/\s*\d+)\s*([a-z]*)", text)
    if not match or match[2] not in TYPES:
        return None
    length = match[1].replace(" ", "")
    if length not in LENGTHS:
        raise Fault(f'"{text}" is no note')
    return LENGTHS.index(length), TYPES[match[2]]
