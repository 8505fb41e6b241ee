// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/crossover/MCrossoverPoints.h"
#include "plugin/MArchive.h"

#include <array>
#include <span>

/// How many bands there are and which of them are heard. Plain data; whoever shares it locks it.
struct MBandLayout {
    static constexpr int kMaxBands = kMaxCrossoverBands;
    static constexpr int kDefaultBands = 3;

    int bandCount = kDefaultBands;  ///< 1 .. 6
    std::array<bool, kMaxBands> mute{};
    std::array<bool, kMaxBands> solo{};  ///< a view of mute, see DeriveSolo
    std::array<bool, kMaxBands> bypass{};
    int editedBand = kDefaultBands / 2;  ///< the one that the editor shows

    /// Throws MException "Invalid number of bands." outside 1 .. 6. [any]
    static void CheckBandCount(int bandCount);
    /// Limits in hertz of `bandCount` bands, ascending, one less than bands. [any]
    static std::span<const double> DefaultLimits(int bandCount);

    /// Makes `count` bands of which all are heard; bands above keep their switches. Throws as
    /// CheckBandCount. [any]
    void SetDefaults(int count);
    /// A band is soloed when it alone is not muted, of several. [any]
    void DeriveSolo() noexcept;
    /// Says the same by mute: on, all others are muted; off, none is. Throws MException "Index out
    /// of range." for a band that does not run. [any]
    void SetSolo(int band, bool on);
    /// Throws the same unless `band` runs. [any]
    void CheckBand(int band) const;

    /// Reads or writes the layout as states keep it. Throws MException "Invalid number of bands."
    /// for such a count; the count stays then, the rest has been read. [main]
    void Store(MXMLNode node, const MArchive& archive);
};
