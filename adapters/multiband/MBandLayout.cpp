// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandLayout.h"

#include "core/MException.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace {

// One row for each number of bands.
constexpr double kDefaultLimits[MBandLayout::kMaxBands][MBandLayout::kMaxBands - 1] = {
    {},
    {1000},
    {200, 2000},
    {200, 1000, 5000},
    {100, 500, 2000, 8000},
    {100, 300, 1000, 3000, 8000}};

}  // namespace

void MBandLayout::CheckBandCount(int bandCount) {
    if (bandCount < 1 || bandCount > kMaxBands) throw MException("Invalid number of bands.");
}

std::span<const double> MBandLayout::DefaultLimits(int bandCount) {
    CheckBandCount(bandCount);
    const auto limits = static_cast<std::size_t>(bandCount - 1);
    return std::span(kDefaultLimits[limits]).first(limits);
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
