// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayFilters.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kLowest = 20, kHighest = 20000;  // hertz
constexpr double kSwitchWidth = 1.0;              // hertz

void DesignIfNew(MBiquad& section, BiquadType type, double frequency, double q, double sampleRate) {
    const bool isKnown = section.DesignCounter() > 0 && section.Frequency() == frequency &&
                         section.Quality() == q && section.SampleRate() == sampleRate;
    if (!isKnown) section.Design(type, frequency, q, sampleRate);
}

}  // namespace

void MDelayFilterStates::Wake(MActiveSections before, MActiveSections now) noexcept {
    if (now.lowPass && !before.lowPass) std::fill_n(lowPass, kDelayMaxChannels, MBiquadState());
    if (now.highPass && !before.highPass) std::fill_n(highPass, kDelayMaxChannels, MBiquadState());
}

void MDelayFilters::Design(const MDelaySettings& settings, int sampleRate) {
    active_.lowPass = std::abs(settings.maxFrequency - kHighest) >= kSwitchWidth;
    active_.highPass = std::abs(kLowest - settings.minFrequency) >= kSwitchWidth;
    filtersFeedback_ = settings.filtersFeedback;

    const double q = static_cast<double>(static_cast<float>(0.1 + 0.8 * settings.resonance));
    const double highest = 0.49 * sampleRate;
    if (active_.lowPass) {
        DesignIfNew(lowPass_, BiquadType::LowPass, std::min(settings.maxFrequency, highest), q,
                    sampleRate);
    }
    if (active_.highPass) {
        DesignIfNew(highPass_, BiquadType::HighPass, std::min(settings.minFrequency, highest), q,
                    sampleRate);
    }
}

MFilterPair MDelayFilters::ForInput(MDelayFilterStates& states, int channel) const noexcept {
    return {.first = LowPass(),
            .second = HighPass(),
            .firstStates = states.lowPass + channel,
            .secondStates = states.highPass + channel};
}

MFilterPair MDelayFilters::ForFeedback(MDelayFilterStates& states, int channel) const noexcept {
    return {.first = HighPass(),
            .second = LowPass(),
            .firstStates = states.highPass + channel,
            .secondStates = states.lowPass + channel};
}
