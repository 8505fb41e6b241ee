// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// A number that moves by a fixed step per sample: sample i has start + i * step.
struct MLinearRamp {
    double start = 0;
    double step = 0;
};
