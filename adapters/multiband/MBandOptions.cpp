// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandOptions.h"

void MBandOptions::Store(MXMLNode node, const MArchive& archive) {
    int number = static_cast<int>(slope);
    archive.Integer(node, "CrossoverMode", number);
    if (number >= 0 && number < static_cast<int>(MAudioFilters::kCrossoverSlopeNames.size())) {
        slope = static_cast<MAudioFilters::CrossoverGeneralizedType>(number);
    }
    archive.Switch(node, "LinearPhaseCrossover", isLinearPhase);
    archive.Switch(node, "LinearPhaseCrossoverFixedQ", hasFixedQ);
    archive.Switch(node, "DryWetAffectsInputGain", dryWetAffectsInputGain);
    archive.Switch(node, "DryWetAffectsInputPan", dryWetAffectsInputPan);
    archive.Switch(node, "Link", isLinked);
    archive.Switch(node, "EditBandPanorama", editsPanorama);
    archive.Switch(node, "DryWet0", wet.off);
    archive.Switch(node, "DryWet100", wet.full);
    archive.Switch(node, "DryWet20", dry.off);
    archive.Switch(node, "DryWet2100", dry.full);
}
