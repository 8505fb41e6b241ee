# SPDX-License-Identifier: GPL-3.0-or-later
"""Modulators as kestrune-render --modulate takes them, and MultiParameters in the same words, written as
the elements of the plug-in's state."""
import re
from pathlib import Path
from xml.sax.saxutils import quoteattr

from values import (EFFECT, GLOBAL, LENGTHS, TAP, TYPES, Fault, decibels, hertz, level, mix, number, panorama, percent,
                    seconds, switch)


def shapes():
    header = Path(__file__).resolve().parents[2] / "dsp" / "modulation" / "MModulationShape.h"
    return re.findall(r'"(\w+)"', re.search(r"kShapeNames = .*?{(.*?)}", header.read_text(), re.S)[1])


SHAPES = shapes()
SOURCES = {**dict.fromkeys(SHAPES, 0), "follower": 1, "envelope": 2, "walk": 3}
MODES = {"+-": 1, "+": 2, "-": 3, "..": 4}
ENDS = {mix: (0, 1), percent: (0, 1), level: (0, 1), decibels: (-24, 24), panorama: (-1, 1),
        hertz: (hertz("20 Hz"), hertz("20 kHz")), TAP["Delay"][1]: (0, 0.5), TAP["Left offset"][1]: (-0.1, 0.1),
        TAP["Right offset"][1]: (-0.1, 0.1)}
SWITCHED = {switch: (0, 1)}
KNOBS = ["continuous", "switch", "momentary"]
UP_TO_A_MINUTE = seconds(0, 60)


def hertz_of_rate(text):
    return number(text, {"Hz": 1}, 0.01, 50)


def signed_percent(text):
    return number(text, {"%": 0.01}, -1, 1)


def loudness(lowest, highest):
    return lambda text: number(text, {"dB": 1}, lowest, highest)


def seed(text):
    return int(number(text, {"": 1}, 0, 2**32 - 1))


COMMON = {"depth": ("Depth", percent), "offset": ("Offset", signed_percent), "lag": ("OutputSmoothing", UP_TO_A_MINUTE)}
FOLLOWER = {"attack": ("FollowerAttack", UP_TO_A_MINUTE), "release": ("FollowerRelease", UP_TO_A_MINUTE),
            "threshold": ("FollowerThreshold", loudness(-120, 24)), "knee": ("FollowerKnee", loudness(0, 48)),
            "range": ("FollowerRange", loudness(0, 144))}
ENVELOPE = {"attack": ("Attack", UP_TO_A_MINUTE), "decay": ("Decay", UP_TO_A_MINUTE), "sustain": ("Sustain", percent),
            "release": ("Release", UP_TO_A_MINUTE), "velocity": ("VelocityAmount", percent)}
WALK = {"seed": ("Seed", seed), "smoothness": ("WalkSmoothness", percent)}
OSCILLATOR = {"seed": ("Seed", seed), "phase": ("Phase", percent), "width": ("Width", percent),
              "glide": ("Smoothing", percent)}
OPTIONS = [OSCILLATOR, FOLLOWER, ENVELOPE, WALK]


def source(text):
    """The attributes of an element "LFO", as far as they differ from the defaults."""
    name, *words = re.sub(r"(?<=\d) (?=(Hz|ms|s|dB|%)( |$))", "", text).split()
    if name not in SOURCES:
        raise Fault(f'"{name}" is no source of modulation')
    kind = SOURCES[name]
    values = {"Enabled": 1, "Source": kind}
    if name in SHAPES:
        values["Shape"] = SHAPES.index(name)
    options = {**COMMON, **OPTIONS[kind]}
    while words:
        word = words.pop(0)
        if word == "invert":
            values["Invert"] = 1
        elif word in options and words:
            key, read = options[word]
            values[key] = read(words.pop(0))
        elif kind == 3:
            values["WalkRate"] = hertz_of_rate(word)
        elif kind == 0:
            oscillator_word(word, words, values)
        else:
            raise Fault(f'"{word}" means nothing to a source without a rate')
    return values


def oscillator_word(word, words, values):
    if match := re.fullmatch(r"(\d+/\d+)([dt]?)", word):
        values.update(Synchronized=1, SyncLength=LENGTHS.index(match[1]), SyncType=TYPES[match[2]])
    elif word == "once":
        values["OneShot"] = 1
    elif word == "values":
        steps = []
        while words and re.fullmatch(r"[01]?(\.\d+)?", words[0]):
            steps.append(words.pop(0))
        values.update(StepCount=len(steps), Steps=" ".join(steps))
    else:
        values["Rate"] = hertz_of_rate(word)


def parameters(name, bands):
    """What a name means with so many bands: key, long name and reader of each parameter."""
    if name in GLOBAL:
        return [(name, name, GLOBAL[name][1])]
    if match := re.fullmatch(r"Band (limit [1-5]|gain [1-6]|panorama [1-6])", name):
        return [(name, name, {"l": hertz, "g": decibels, "p": panorama}[match[1][0]])]
    match = re.fullmatch(r"(?:Band ([1-6]) )?(?:Tap ([12]) )?(.+)", name)
    found = range(int(match[1]), int(match[1]) + 1) if match[1] else range(1, bands + 1)
    if max(found) > bands:
        raise Fault(f"there is no band {match[1]}")
    setting = match[3]
    if setting in EFFECT and not match[2]:
        return [(f"B{band} {setting}", f"Band {band} - {setting}", EFFECT[setting][1]) for band in found]
    if setting in TAP:
        tap = match[2] or 1
        return [(f"B{band} T{tap} {setting}", f"Band {band} - Tap {tap} - {setting}", TAP[setting][1]) for band in found]
    raise Fault(f'"{name}" is no parameter')


def targets(text, bands, ends=ENDS):
    """The elements "Target" of, for example, "Wet: 20% .. 60%; Delay: +-10%"; `ends` has the readers of
    what may be moved."""
    for part in text.split(";"):
        name, separator, way = (piece.strip() for piece in part.partition(":"))
        match = re.fullmatch(r"(\+-|\+|-)([0-9.]+%)|(.*?) *\.\. *(.*)", way)
        if not separator or not match:
            raise Fault(f'"{part.strip()}" does not say how far')
        for key, long_name, read in parameters(name, bands):
            if read not in ends:
                raise Fault(f"{name} is switched, not moved")
            values = {"ID": key, "Name": long_name, "Mode": MODES[match[1] or ".."]}
            if match[1]:
                values["Depth"] = percent(match[2]) * (2 if match[1] == "+-" else 1)
            else:
                low, high = ends[read]
                values["Min"], values["Max"] = ((read(end) - low) / (high - low) for end in (match[3], match[4]))
            yield f"<Target{attributes(values)}/>"


def multiparameter(text, bands):
    """One element "MultiParameter", such as "switch -> Freeze: off .. on"."""
    mode, arrow, right = (piece.strip() for piece in text.partition("->"))
    if not arrow or mode not in KNOBS:
        raise Fault(f'"{text}" does not say how a MultiParameter moves what')
    return (f"<MultiParameter{attributes({'Mode': KNOBS.index(mode)})}>"
            f"{''.join(targets(right, bands, {**ENDS, **SWITCHED}))}</MultiParameter>")


def attributes(values):
    return "".join(f" {key}={quoteattr(value if isinstance(value, str) else repr(value))}" for key, value in values.items())


def modulator(text, bands):
    """One element "LFO"."""
    left, arrow, right = text.partition("->")
    if not arrow:
        raise Fault(f'"{text}" is no modulation')
    return f"<LFO{attributes(source(left))}>{''.join(targets(right, bands))}</LFO>"
