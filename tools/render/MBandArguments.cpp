// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MBandArguments.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MValueFrequency.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>
#include <string_view>

namespace {

using Crossover = MBandSetup::Crossover;

std::vector<double> ReadLimits(const std::vector<std::string>& typed) {
    std::vector<double> limits;
    for (const std::string& text : typed) {
        const auto hertz = MValueFrequency::Parse(text);
        if (!hertz || !(*hertz >= 20 && *hertz <= 20000)) {
            FailUsage(MFormat("--limits does not take \"{0}\"; it takes 20 Hz to 20 kHz", text));
        }
        if (!limits.empty() && *hertz <= limits.back()) FailUsage("--limits must go upwards");
        limits.push_back(*hertz);
    }
    return limits;
}

/// The limits say how many bands there are, unless that is said outright.
int ReadCount(const std::optional<int>& bands, std::size_t limits) {
    const int count = bands.value_or(static_cast<int>(limits) + 1);
    if (count < 1 || count > MBandSetup::kMaxBands) {
        FailUsage(MFormat("there are 1 to {0} bands, not {1}", MBandSetup::kMaxBands, count));
    }
    if (limits > 0 && static_cast<int>(limits) != count - 1) {
        FailUsage(MFormat("--bands {0} takes {1} --limits, not {2}", count, count - 1,
                          static_cast<int>(limits)));
    }
    return count;
}

Crossover ReadCrossover(const std::string& typed) {
    constexpr std::string_view kNames[] = {"analog", "linear", "hybrid"};
    for (const auto kind : {Crossover::Analog, Crossover::LinearPhase, Crossover::Hybrid}) {
        if (MText::EqualsIgnoringCase(typed, kNames[static_cast<int>(kind)])) return kind;
    }
    FailUsage(
        MFormat("--crossover does not take \"{0}\"; it takes analog, linear or hybrid", typed));
}

MAudioFilters::CrossoverGeneralizedType ReadSlope(int typed) {
    const auto slope = MAudioFilters::FindCrossoverSlope(MFormat("{0}dB/oct", typed));
    if (!slope)
        FailUsage(MFormat("--slope does not take {0}; it takes 12, 24, 48, 72, 96 or 120", typed));
    return *slope;
}

void CheckBands(const char* option, const std::vector<int>& bands, int count) {
    for (const int band : bands) {
        if (band >= 1 && band <= count) continue;
        FailUsage(MFormat("{0} {1}: there is no such band, --bands is {2}", option, band, count));
    }
}

}  // namespace

bool MBandArguments::IsEmpty() const {
    return !bands && !crossover && !slope && limits.empty() && mute.empty() && solo.empty() &&
           bypassBands.empty();
}

MBandSetup MBandArguments::Read() const {
    MBandSetup setup;
    setup.limits = ReadLimits(limits);
    setup.count = ReadCount(bands, setup.limits.size());
    if (setup.count == 1 && (crossover || slope)) {
        FailUsage("--crossover and --slope need --bands 2 or more");
    }
    if (crossover) setup.crossover = ReadCrossover(*crossover);
    // Kept for whatever crossover runs, as the plug-in keeps it; only the analog one is shaped by
    // it.
    if (slope) setup.slope = ReadSlope(*slope);
    CheckBands("--mute", mute, setup.count);
    CheckBands("--solo", solo, setup.count);
    CheckBands("--bypass-band", bypassBands, setup.count);
    setup.muted = mute;
    for (int band = 1; band <= setup.count && !solo.empty(); ++band) {
        if (std::find(solo.begin(), solo.end(), band) == solo.end()) setup.muted.push_back(band);
    }
    setup.bypassed = bypassBands;
    return setup;
}
