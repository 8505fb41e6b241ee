// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandLayout.h"

#include "core/MException.h"

#include <algorithm>
#include <string>

namespace {

constexpr double kTwoBands[] = {1000};
constexpr double kThreeBands[] = {200, 2000};
constexpr double kFourBands[] = {200, 1000, 5000};
constexpr double kFiveBands[] = {100, 500, 2000, 8000};
constexpr double kSixBands[] = {100, 300, 1000, 3000, 8000};

}  // namespace

void MBandLayout::CheckBandCount(int bandCount) {
    if (bandCount < 1 || bandCount > kMaxBands) throw MException("Invalid number of bands.");
}

std::span<const double> MBandLayout::DefaultLimits(int bandCount) {
    CheckBandCount(bandCount);
    switch (bandCount) {
        case 2:
            return kTwoBands;
        case 3:
            return kThreeBands;
        case 4:
            return kFourBands;
        case 5:
            return kFiveBands;
        case 6:
            return kSixBands;
        default:
            return {};
    }
}

void MBandLayout::SetDefaults(int count) {
    CheckBandCount(count);
    std::fill_n(mute.begin(), count, false);
    std::fill_n(bypass.begin(), count, false);
    editedBand = count / 2;
    bandCount = count;
}

void MBandLayout::DeriveSolo() noexcept {
    const auto heard = std::count(mute.begin(), mute.begin() + bandCount, false);
    for (int band = 0; band < kMaxBands; ++band) {
        solo[band] = bandCount > 1 && band < bandCount && heard == 1 && !mute[band];
    }
}

void MBandLayout::SetSolo(int band, bool on) {
    CheckBand(band);
    for (int other = 0; other < bandCount; ++other) mute[other] = on && other != band;
}

void MBandLayout::CheckBand(int band) const {
    if (band < 0 || band >= bandCount) throw MException("Index out of range.");
}

void MBandLayout::Store(MXMLNode node, const MArchive& archive) {
    int count = bandCount;
    archive.Integer(node, "BandCount", count);
    if (!archive.IsWriting()) {  // a switch that is not there is off
        mute.fill(false);
        bypass.fill(false);
    }
    // All of them: a smaller count loses nothing.
    for (int band = 0; band < kMaxBands; ++band) {
        archive.Switch(node, "Mute" + std::to_string(band), mute[band]);
        archive.Switch(node, "Bypass" + std::to_string(band), bypass[band]);
    }
    CheckBandCount(count);
    if (count != bandCount) editedBand = count / 2;
    bandCount = count;
}
