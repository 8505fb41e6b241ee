// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"

#include <cstddef>
#include <vector>

/// One stereo tap in Classic mode the way one writes it at first: a single loop over the frames,
/// all work of a frame inside it, the standard library's tanh. Its settings do not move, so it does
/// no more than the sound needs; what the engine's speed is measured against.
class MPlainDelay {
public:
    struct Settings {
        double feedback = 0.16;  ///< linear
        double gain = 0.5;       ///< linear
        double panorama = 0;
        bool isFiltered = false;
        MBiquadCoefficients highPass, lowPass;
        double saturation = 0;
    };

    MPlainDelay(const Settings& settings, int length);

    /// Clears `outputs` and adds the echoes of `inputs`, both [2][count].
    void Process(const float* const* inputs, float* const* outputs, int count);

private:
    struct Side {
        std::vector<float> line;
        float predelay = 0;
        MBiquadState high, low;
    };

    template <bool isFiltered, bool isSaturated>
    void Run(const float* const* inputs, float* const* outputs, int count);
    template <bool isFiltered, bool isSaturated>
    void Write(Side& side, double loop);

    Settings settings_;
    std::size_t position_ = 0;
    Side left_, right_;
};
