// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandLayout.h"
#include "adapters/multiband/MBandParameters.h"
#include "core/MXML.h"

/// A band layout on its own, as presets of band settings and the clipboard keep it: attributes of
/// one element.
///
/// The keys of a list lose one letter at their start with each entry ("BandLimit", "andLimit",
/// "ndLimit", ...). That is no accident to be mended: existing files have them.
struct MBandLayoutRecord {
    int bandCount = 1;
    MBandParameters::Limits limits{};  ///< log10 of hertz
    std::array<bool, MBandLayout::kMaxBands> mute{};
    std::array<bool, MBandLayout::kMaxBands> bypass{};

    /// Writes what the bands that run have. [main]
    void Save(MXMLNode node) const;
    /// Reads what is there over what the record has. Throws MException "Invalid number of bands."
    /// for a count outside 1 .. 6 and changes nothing. [main]
    void Load(const MXMLNode& node);
};
