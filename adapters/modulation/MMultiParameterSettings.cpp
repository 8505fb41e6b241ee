// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MMultiParameterSettings.h"

#include "adapters/modulation/MStoredField.h"

void MMultiParameterSettings::Store(MXMLNode node, const MArchive& archive) {
    MStoredField::Choice(archive, node, "Mode", mode, {0, 2, 0});
    MModulationTarget::StoreList(node, archive, targets);
}

MMultiParameterSettings MMultiParameterSettings::Held() const {
    MMultiParameterSettings held = *this;
    MModulationTarget::Hold(held.targets);
    for (MModulationTarget& target : held.targets) target.motion.mode = MTargetMode::Range;
    return held;
}
