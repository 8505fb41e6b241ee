// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DelaySettingsMaker.h"

#include <cmath>

namespace {

double Uniform(std::mt19937& generator, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(generator);
}

bool Toss(std::mt19937& generator, double probability) {
    return Uniform(generator, 0, 1) < probability;
}

double Frequency(std::mt19937& generator) { return std::pow(10.0, Uniform(generator, 1.5, 4.2)); }

MBlockRamp Onward(const MBlockRamp& previous, double value) { return {previous.End(), value}; }

MDelayTapSettings RandomTap(std::mt19937& generator, const MDelayTapSettings& previous,
                            double highestFeedback) {
    MDelayTapSettings tap;
    const bool moves = Toss(generator, 0.5);
    tap.isEnabled = Toss(generator, 0.8);
    tap.feedback = Onward(previous.feedback,
                          moves ? Uniform(generator, 0, highestFeedback) : previous.feedback.End());
    tap.gain = Onward(previous.gain, moves ? Uniform(generator, 0, 1) : previous.gain.End());
    const double side = Toss(generator, 0.5) ? 0 : Uniform(generator, -1, 1);
    tap.panorama = Onward(previous.panorama, moves ? side : previous.panorama.End());
    tap.delay = Toss(generator, 0.3) ? Uniform(generator, 0, 0.001) : Uniform(generator, 0, 0.05);
    if (Toss(generator, 0.5)) tap.delay = previous.delay;
    tap.leftOffset = Toss(generator, 0.5) ? 0 : Uniform(generator, -0.01, 0.01);
    tap.rightOffset = Toss(generator, 0.5) ? 0 : Uniform(generator, -0.01, 0.01);
    tap.mode = static_cast<MDelayMode>(std::uniform_int_distribution<int>(0, 2)(generator));
    tap.isFrozen = Toss(generator, 0.2);
    tap.isSynchronised = Toss(generator, 0.2);
    tap.syncLength = std::uniform_int_distribution<int>(9, 14)(generator);
    tap.syncType =
        static_cast<MTempoSync::Type>(std::uniform_int_distribution<int>(0, 3)(generator));
    return tap;
}

}  // namespace

MDelaySettings DefaultDelaySettings() {
    constexpr double kGain = 0.7071067811865;
    MDelaySettings settings;
    for (MDelayTapSettings& tap : settings.taps) {
        tap.feedback = {0.4, 0.4};
        tap.gain = {kGain, kGain};
        tap.delay = 0.1;
    }
    settings.taps[0].isEnabled = true;
    return settings;
}

MDelaySettings RandomDelaySettings(std::mt19937& generator, const MDelaySettings& previous,
                                   double highestFeedback) {
    MDelaySettings settings;
    settings.isSerial = Toss(generator, 0.5);
    settings.filtersFeedback = Toss(generator, 0.5);
    settings.minFrequency = Toss(generator, 0.5) ? 20 : Frequency(generator);
    settings.maxFrequency = Toss(generator, 0.5) ? 20000 : Frequency(generator);
    settings.resonance = Uniform(generator, 0, 1);
    settings.saturation = Toss(generator, 0.5) ? 0 : Uniform(generator, 0, 1);
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        settings.taps[tap] = RandomTap(generator, previous.taps[tap], highestFeedback);
    }
    return settings;
}

MDelaySettings Arrived(const MDelaySettings& settings) {
    MDelaySettings arrived = settings;
    for (MDelayTapSettings& tap : arrived.taps) {
        for (MBlockRamp* const ramp : {&tap.feedback, &tap.gain, &tap.panorama}) {
            *ramp = {ramp->End(), ramp->End()};
        }
    }
    return arrived;
}
