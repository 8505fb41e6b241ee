// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MModulationPlan.h"
#include "core/MXML.h"
#include "plugin/MArchive.h"

#include <array>

/// All modulators and MultiParameters as the user has set them up. At first all are off, each
/// modulator with a seed of its own: of two random ones each shall go its own way.
struct MModulationSettings {
    MModulationSettings();

    std::array<MLFOSettings, MModulationPlan::kModulators> modulators;
    std::array<MMultiParameterSettings, MModulationPlan::kMultiParameters> multiParameters;

    /// With every number within its range. [main]
    MModulationSettings Held() const;

    /// Modulators as "LFO" elements of `node`; reading takes as many as there are. [main]
    void StoreModulators(MXMLNode node, const MArchive& archive);
};
