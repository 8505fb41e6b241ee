// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MModulationSettings.h"

MModulationSettings::MModulationSettings() {
    std::uint32_t seed = 0;
    for (MLFOSettings& modulator : modulators) modulator.modulator.shape.seed = ++seed;
}

MModulationSettings MModulationSettings::Held() const {
    MModulationSettings held;
    for (std::size_t i = 0; i < modulators.size(); ++i) held.modulators[i] = modulators[i].Held();
    for (std::size_t i = 0; i < multiParameters.size(); ++i) {
        held.multiParameters[i] = multiParameters[i].Held();
    }
    return held;
}

void MModulationSettings::StoreModulators(MXMLNode node, const MArchive& archive) {
    std::size_t index = 0;
    for (const MXMLNode element :
         archive.Children(node, "LFO", static_cast<int>(modulators.size()))) {
        modulators[index++].Store(element, archive);
    }
}
