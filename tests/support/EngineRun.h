// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/delay/MDelayEngine.h"
#include "tests/support/DelaySettingsMaker.h"
#include "tests/support/Sound.h"

#include <algorithm>
#include <vector>

/// A setting that does not move.
inline MBlockRamp Held(double value) { return {value, value}; }

/// A prepared engine; its settings may be changed between runs.
class EngineRun {
public:
    EngineRun(int channels, int sampleRate, const MDelaySettings& initial = DefaultDelaySettings())
        : settings(initial) {
        engine.Prepare(channels, sampleRate);
        engine.Update(settings);
    }

    /// Sends `input` through in blocks of `block`. Ramps happen in the first one.
    Sound Run(const Sound& input) {
        const int length = static_cast<int>(input.front().size());
        // What the outputs hold before must not matter.
        Sound output = Constant(static_cast<int>(input.size()), length, 9);
        for (int start = 0; start < length; start += block) {
            std::vector<const float*> inputs;
            std::vector<float*> outputs;
            for (const std::vector<float>& channel : input)
                inputs.push_back(channel.data() + start);
            for (std::vector<float>& channel : output) outputs.push_back(channel.data() + start);
            engine.Process(settings, tempo, inputs.data(), outputs.data(),
                           std::min(block, length - start));
            settings = Arrived(settings);
        }
        return output;
    }
    /// The same after an update.
    Sound UpdateAndRun(const Sound& input) {
        engine.Update(settings);
        return Run(input);
    }

    MDelaySettings settings;
    double tempo = 120;
    int block = 256;
    MDelayEngine engine;
};
