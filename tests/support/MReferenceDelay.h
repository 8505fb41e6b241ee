// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"
#include "effects/delay/MDelaySettings.h"

#include <array>
#include <vector>

/// The delay written down the plain way: one sample after the other, one channel after the other,
/// with the standard library's tanh. What the engine must equal, and what its speed is compared
/// with.
class MReferenceDelay {
public:
    /// Starts from silence.
    void Prepare(int channels, int sampleRate);
    void Update(const MDelaySettings& settings);
    /// `inputs` and `outputs` are [channels][count] and must not overlap.
    void Process(const MDelaySettings& settings, double tempo, const float* const* inputs,
                 float* const* outputs, int count);

    /// One sample through the saturation with `amount` 0..1.
    static double Saturate(double sample, double amount);

private:
    struct Line {
        std::vector<float> samples;
        std::size_t position = 0;

        void Resize(int length);
        float Read() const { return samples[position]; }
        void Push(float sample);
        float Exchange(float sample);
    };
    struct Channel {
        Line line;
        Line predelay;
        MBiquadState inputLow, inputHigh, low, high;
    };
    using Tap = std::array<Channel, kDelayMaxChannels>;
    /// One block's numbers.
    struct Block {
        const MDelaySettings& all;
        const MDelayTapSettings& tap;
        int count;
    };

    void SetLengths(Tap& tap, const MDelayTapSettings& settings, double tempo);
    void BeginFreeze(bool isOn);
    void ProcessTap(const Block& block, Tap& tap, const float* const* inputs,
                    float* const* outputs);
    void ProcessPingPong(const Block& block, Tap& tap, const float* const* inputs,
                         std::vector<float>* echoes);
    void ProcessChannel(const Block& block, Channel& channel, const float* input,
                        std::vector<float>& echoes);
    void Finish(const Block& block, Channel& channel, double loop, float echo);

    int channels_ = 0;
    int sampleRate_ = 0;
    bool hasLow_ = false, hasHigh_ = false, filtersFeedback_ = false;
    MBiquadCoefficients low_, high_;
    bool isEnabled_[kDelayTaps] = {};
    std::array<Tap, kDelayTaps> taps_;
    bool isFrozen_ = false;
    float position_ = 0, step_ = 0;
};
