# SPDX-License-Identifier: GPL-3.0-or-later
"""The sound that each host plays, the settings that it is given, and what the plug-in makes of them by
kestrune-render, which no host has a part in."""
import json
import math
import subprocess
import sys
import warnings
from pathlib import Path

import numpy as np
from scipy.io import wavfile

ROOT = Path(__file__).resolve().parents[2]
RENDERER = ROOT / "build/release/kestrune-render"
RATE = 48000
TEMPO = 137
BLOCK = 512
BLOCKS = 375  # four seconds
LATENCY = 3072  # samples, of the linear-phase crossover
PARAMETERS = 208
IDENTIFIER = 0x67783735  # what projects find the plug-in by
LOWEST = math.log10(20)  # the lowest limit of a band, log10 of hertz
LARGEST_DIFFERENCE = 1e-6  # -120 dB

# What hosts call a parameter, the position that they give it, in single precision, and what a user would
# type. A delay has a whole number of samples, so its position has to be exact.
SETTINGS = [
    ("Wet", 0.6, "60%"),
    ("Dry", 0.5, "50%"),
    ("B1 T1 Delay", 0.25, "125 ms"),
    ("B2 T1 Feedback", 0.75, f"{40 * math.log10(0.75)} dB"),
    ("B2 T1 Panorama", 0.3, "40% left"),
    ("B3 T2 On", 1, "On"),
    ("B3 T2 Sync On", 1, "On"),
    ("B3 T2 Sync Length", 8 / 14, "1 / 4"),
]
NEW = ("--bands", 3)  # what an instance begins with
# Three bands, the lowest muted, and what splits them: no parameter tells of these, a state does.
BANDS = ('<settings BandCount="3" Limit0="2.5" Limit1="3.5" Mute0="1" LinearPhaseCrossover="1"><band0/></settings>')
BAND_SETTINGS = [
    ("Wet", 0.6, "60%"),
    ("Band limit 1", (2.5 - LOWEST) / 3, f"{10**2.5} Hz"),
    ("Band limit 2", (3.5 - LOWEST) / 3, f"{10**3.5} Hz"),
    ("B2 T1 Delay", 0.25, "125 ms"),
    ("B3 T1 Feedback", 0.75, f"{40 * math.log10(0.75)} dB"),
]


def make_sound(channels=2):
    """Bursts of noise and a sweep, different on left and right, then silence for the echoes."""
    generator = np.random.default_rng(1)
    time = np.arange(BLOCKS * BLOCK) / RATE
    sound = 0.2 * np.sin(2 * np.pi * (60 * time + 1500 * time**2))[:, None] * [1, 0.5]
    sound += generator.normal(0, 0.1, sound.shape) * (time % 0.5 < 0.1)[:, None]
    sound[len(sound) // 2:] = 0
    return sound[:, :channels].astype(np.float32)


def write_sound(path, channels=2):
    wavfile.write(path, RATE, make_sound(channels))


def read_sound(path):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", wavfile.WavFileWarning)  # chunks besides the samples
        sound = wavfile.read(path)[1].astype(float)
    return sound if sound.ndim == 2 else sound[:, None]


def renderer(*arguments):
    done = subprocess.run([str(part) for part in (RENDERER, *arguments)], capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"{RENDERER.name} failed: {done.stderr}")
    return done.stdout


def write_state(path):
    """The bytes that a host would have saved of the bands and their settings."""
    text = path.with_suffix(".xml")
    text.write_text(BANDS)
    renderer("--state", text, *sets(BAND_SETTINGS), "--save-state", path, "--overwrite")


def sets(settings):
    return [part for name, _, text in settings for part in ("--set", f"{name}={text}")]


def render(folder, *arguments, start=NEW, channels=2, settings=SETTINGS, tempo=TEMPO):
    """What the plug-in plays of the sound."""
    source, target = folder / "reference-in.wav", folder / "reference-out.wav"
    write_sound(source, channels)
    renderer(source, target, "--overwrite", "--quiet", "--tail", "none", "--no-latency-compensation", "--bpm", tempo,
             "--block-size", BLOCK, *start, *sets(settings), *arguments)
    return read_sound(target)


def automate(folder, name, positions):
    """The renderer's arguments for a position at the start of each block."""
    file = folder / "automation.json"
    points = [{"time": block * BLOCK, "value": {"normalised": float(position)}}
              for block, position in enumerate(positions)]
    file.write_text(json.dumps({"unit": "samples", "lanes": [{"parameter": name, "points": points}]}))
    return "--automation", file


def check(condition, what):
    print(f"{'ok' if condition else 'FAILED'}: {what}")
    return bool(condition)


def check_sound(played, expected, what):
    """Both channels, each by itself."""
    length = len(expected)
    if played.shape[1] != expected.shape[1] or len(played) < length:
        return check(False, f"{what}: {played.shape} samples instead of {expected.shape}")
    apart = np.abs(played[:length] - expected).max(axis=0)
    sounds = np.abs(expected).max(axis=0) > 0.05
    return check(np.all(apart < LARGEST_DIFFERENCE) and np.all(sounds),
                 f"{what} ({', '.join(f'{difference:.1e}' for difference in apart)} apart)")
